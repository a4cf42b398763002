#include "disc/disc_block.h"
#include "support/link_window_test.h"

#include <algorithm>

namespace quoravel {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Both sides of a disc: mostly empty, as discs are, with full tracks between, some with as many
/// escapes as a micro may send.
Bytes WholeDisc() {
    Bytes image(kDiscBytes);
    for (std::size_t track = 0; track < 160; track += 23)
        for (std::size_t i = 0; i < kTrackBytes; ++i)
            image[track * kTrackBytes + i] =
                static_cast<std::uint8_t>(track % 2 == 1 && i % 16 == 3 ? 27 : i * 31 / 7);
    return image;
}

using LinkSoak = LinkWindowTest;

/// Some minutes: real time, a real line, every fault a line can have.
TEST_F(LinkSoak, AWholeDiscGoesOutAndComesBackThroughALineThatFails) {
    const Bytes image = WholeDisc();
    int faults = 0;
    micro.spoil = [&](CompanionDouble::Reply& reply) {
        if (reply.bytes.size() < 8 || reply.number % 41 != 0)
            return;
        const int kind = faults++ % 3;
        if (kind == 0)
            reply.bytes[reply.bytes.size() / 2] ^= 4; // changed
        else if (kind == 1)
            reply.bytes.erase(3, 1); // lost
        else
            reply.bytes.insert(5, 1, reply.bytes[5]); // doubled
    };
    int pieces = 0;
    micro.garble = [&](std::string& bytes) {
        if (++pieces % 9001 == 0 && !bytes.empty()) {
            bytes[0] ^= 16;
            ++faults;
        }
    };
    desktop.files = {folder.File("out.dsd", image), folder.path() / "in.dsd"};
    Choose("SendDSDDrive0");
    for (std::size_t track = 0; track < 160; ++track)
        EXPECT_TRUE(std::ranges::equal(
            std::span(image).subspan(track * kTrackBytes, kTrackBytes),
            std::span(micro.discs[track % 2 * 2]).subspan(track / 2 * kTrackBytes, kTrackBytes)))
            << track;
    Choose("ReceiveDSDDrive0");
    EXPECT_EQ(BytesOf(folder.path() / "in.dsd"), image);
    EXPECT_GE(faults, 6);
}

} // namespace
} // namespace quoravel
