#include "link/transfer.h"
#include "support/link_test.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <random>

namespace quoravel {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kTrack = 2560;

/// Whole transfers, one after the other on one link, through a line that loses, doubles, changes
/// and delays bytes.
class LinkSoak : public LinkTest {
  protected:
    /// A disc as discs are: some full tracks, some with few values, most of them empty.
    Bytes Disc(std::size_t tracks) {
        Bytes disc(tracks * kTrack);
        for (std::size_t track = 0; track < tracks; ++track)
            for (std::size_t i = 0, kind = random() % 12; kind < 2 && i < kTrack; ++i)
                disc[track * kTrack + i] =
                    static_cast<std::uint8_t>(kind == 0 ? random() % 27 : random() / 99 % 3 * 13);
        return disc;
    }

    void Damage(std::string& bytes) {
        const auto at = static_cast<std::ptrdiff_t>(random() % bytes.size());
        ++faults;
        const auto kind = random() % 3;
        if (kind == 0)
            bytes.erase(bytes.begin() + at);
        else if (kind == 1)
            bytes.insert(bytes.begin() + at, bytes[static_cast<std::size_t>(at)]);
        else
            bytes[static_cast<std::size_t>(at)] ^= 32;
    }

    /// What goes over the line with a check suffers; a message that bears none would be obeyed as
    /// it came.
    void SpoilTheLine() {
        micro.garble = [this](std::string& bytes) {
            if (bytes.size() == 1 && bytes != "*" && random() % 4000 == 0)
                Damage(bytes);
        };
        micro.spoil = [this](CompanionDouble::Reply& reply) {
            const bool checked = reply.to[0] == 'G' || reply.to[0] == 'g' || reply.to == "track";
            if (!checked || random() % 12 != 0)
                return;
            if (random() % 3 != 0)
                return Damage(reply.bytes);
            ++faults;
            // Within the host's patience: what comes later can be taken for the next answer.
            reply.delay = std::chrono::milliseconds(random() % 4900);
        };
    }

    void SendOne() {
        const Bytes disc = Disc(1 + random() % 20);
        desktop.files = {folder.File("out.ssd", disc)};
        micro.discs[0].clear();
        TX_DISC(0, true, desk);
        EXPECT_TRUE(WasTold() || micro.discs[0] == disc);
    }

    void ReceiveOne() {
        micro.discs[2] = Disc(40);
        desktop.files = {folder.path() / "in.ssd"};
        std::filesystem::path file;
        EXPECT_NE(RX_SSD(2, desk, file), WasTold());
        EXPECT_TRUE(file.empty() || BytesOf(file) == micro.discs[2]);
    }

    /// Bytes that come after the end of a transfer spoil the start of the next one, which says so.
    bool WasTold() {
        const bool was_told = !desktop.TakeBoxTexts().empty();
        told += was_told ? 1 : 0;
        return was_told;
    }

    std::minstd_rand random{2026};
    int faults = 0, told = 0;
};

TEST_F(LinkSoak, EveryTransferThroughALineThatFailsIsRightToTheByte) {
    constexpr int kTransfers = 1000;
    SpoilTheLine();
    for (int i = 0; i < kTransfers && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        desktop.DoEvents(20000); // until the next one is asked for
        static_cast<void>(micro.Give(desktop.now));
        desktop.now = 0ns; // each may take its time
        i % 2 == 0 ? SendOne() : ReceiveOne();
    }
    EXPECT_GT(faults, kTransfers);
    EXPECT_LE(told, kTransfers / 100);
    std::cout << kTransfers << " transfers, " << faults << " faults, " << told << " told\n";
}

} // namespace
} // namespace quoravel
