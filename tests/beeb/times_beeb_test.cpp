// How long discs take, in emulated seconds; and, for whoever asks for it, the table of
// docs/companion.md and ten minutes of discs with faults on the line.

#include "beeb_test.h"
#include "link/track_codec.h"
#include "link/transfer.h"

#include <cstdio>
#include <random>
#include <span>

namespace quoravel {

namespace {

using testing::Values;

class Times : public Running {
  protected:
    /// Receives a disc and sends it, both right to the byte. Gives how many requests it took more
    /// than there are tracks.
    int GoBothWays(const Bytes& disc);

    double received = 0; ///< seconds
    double sent = 0;
};

INSTANTIATE_TEST_SUITE_P(Micros, Times, Values("B-DFS1.2", "B1770", "Master"));

Bytes Disc(std::size_t tracks, bool random) {
    return Image(random ? Noise(tracks * kTrack) : Bytes(tracks * kTrack), tracks);
}

int Times::GoBothWays(const Bytes& disc) {
    Insert(0, folder.File("source.ssd", disc));
    Insert(1, "formatted80");
    said.clear();
    const auto start = Milliseconds();
    EXPECT_EQ(ReceiveSide(0), disc);
    const auto between = Milliseconds();
    SendSide(1, disc);
    received = static_cast<double>(between - start) / 1000;
    sent = static_cast<double>(Milliseconds() - between) / 1000;
    EXPECT_EQ(Dump(1, "written.ssd", disc.size() / kTrack), disc);
    int repeated = 0;
    for (const auto& [message, times] : said)
        repeated += message.front() == 'G' || message.front() == 'g' ? times - 1 : 0;
    return repeated;
}

TEST_P(Times, FortyTracksGoAtThePaceThatTheTableHas) {
    EXPECT_EQ(GoBothWays(Disc(40, false)), 0);
    EXPECT_LT(received, 27);
    EXPECT_LT(sent, 43);
    EXPECT_EQ(GoBothWays(Disc(40, true)), 0);
    EXPECT_LT(received, 77);
    EXPECT_LT(sent, 156);
    ExpectClean();
}

/// What the packets of a disc need, with so many milliseconds for each byte.
double Floor(bool random, double byte_ms) {
    const Bytes disc = Disc(80, random);
    std::size_t bytes = 0;
    for (std::size_t at = 0; at < disc.size(); at += kTrack)
        bytes += TrackPacket(std::span(disc).subspan(at).first<kTrack>()).bytes().size();
    return static_cast<double>(bytes) * byte_ms / 1000;
}

TEST_P(Times, DISABLED_EightyTracksForTheTable) {
    for (const bool random : {false, true}) {
        EXPECT_EQ(GoBothWays(Disc(80, random)), 0);
        const char* kind = random ? "random" : "empty";
        std::printf("| receive, %s | floor %.1f | %s %.1f |\n", kind, Floor(random, 10000. / 19200),
                    GetParam(), received);
        std::printf("| send, %s | floor %.1f | %s %.1f |\n", kind, Floor(random, 1.06), GetParam(),
                    sent);
    }
}

/// Changes or loses one byte in about 4000.
class Unsteady {
  public:
    explicit Unsteady(unsigned seed) : random_(seed) {}

    std::string operator()(const OnCable& where, char byte) {
        const auto dice = random_();
        if (dice % 4000 != 0 || (where.command != 'g' && where.command != 'G'))
            return {byte};
        return dice / 4000 % 2 == 0 ? std::string() : std::string{static_cast<char>(byte ^ 16)};
    }

  private:
    std::mt19937 random_;
};

TEST_P(Times, DISABLED_DiscsWithFaultsOnTheLineForMinutes) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(200);
    int discs = 0;
    int repeated = 0;
    for (; Clock::now() < end; ++discs) {
        const auto seed = static_cast<unsigned>(discs);
        Bytes disc = MixedImage(40);
        for (std::size_t at = 512; at < disc.size(); at += seed % 61 + 1)
            disc[at] = static_cast<std::uint8_t>(at % 5 == 0 ? 27 : seed);
        to_micro = Unsteady(seed);
        to_host = Unsteady(seed + 1000);
        repeated += GoBothWays(disc);
    }
    std::printf("%s: %d discs there and back, %d requests repeated, no wrong byte\n", GetParam(),
                discs, repeated);
}

} // namespace

} // namespace quoravel
