#include "link/track_codec.h"
#include "support/companion_double.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace quoravel {

namespace {

using Track = std::array<std::uint8_t, kTrackLength>;

std::string PacketOf(const Track& track) {
    const TrackPacket packet(track);
    return {packet.bytes().begin(), packet.bytes().end()};
}

struct Decoded {
    TrackState state;
    int produced;
    std::size_t taken; ///< bytes of the packet that were asked for
    std::int32_t crc;
    Track track;
    std::vector<int> patience; ///< with each byte
};

/// Feeds a packet to the decoder and then what it waits for in vain.
Decoded Decode(std::string_view packet) {
    TrackBuffer buffer{};
    Decoded decoded{};
    TrackDecoder decoder(buffer, decoded.crc);
    while (decoder.state() == TrackState::Reading && decoded.taken < packet.size()) {
        decoded.patience.push_back(decoder.Patience());
        decoder.Take(static_cast<std::uint8_t>(packet[decoded.taken++]));
    }
    if (decoder.state() == TrackState::Reading)
        decoder.Take(-1);
    decoded.state = decoder.state();
    decoded.produced = decoder.produced();
    std::copy_n(buffer.begin(), kTrackLength, decoded.track.begin());
    return decoded;
}

/// Bytes written as numbers.
std::string Bytes(std::vector<int> bytes) {
    return {bytes.begin(), bytes.end()};
}

/// A packet with that payload and the right length.
std::string Packet(const std::string& payload) {
    return Bytes({static_cast<int>(payload.size() % 256), static_cast<int>(payload.size() / 256)}) +
           payload;
}

/// Items for `count` bytes of 9.
std::string Nines(int count) {
    std::string items;
    for (; count > 0; count -= 255)
        items += Bytes({27, 0, std::min(count, 255), 9});
    return items;
}

TEST(TrackCodecTest, RunsOfFourAndMoreAreCompressedAndTheWorstTrackFitsThePacket) {
    using Row = std::pair<std::size_t, std::size_t>;
    for (const auto& [escapes, bytes] : {Row{4, 2562}, Row{3, 4482}, Row{2560, 46}}) {
        Track track{};
        for (std::size_t i = 0; i < track.size(); ++i)
            track[i] = i % (escapes + 1) == escapes ? 65 : 27;
        EXPECT_EQ(PacketOf(track).size(), bytes) << escapes;
    }
}

TEST(TrackCodecTest, EveryTrackComesBackWhoeverHasPackedIt) {
    std::mt19937 random(4); // NOLINT(cert-msc51-cpp): the same tracks each time
    for (int round = 0; round < 300; ++round) {
        Track track{};
        const std::size_t run = 1U + random() % (round % 3 == 0 ? 600U : 6U);
        for (std::size_t i = 0; i < track.size();) {
            const auto value = static_cast<std::uint8_t>(random() % 20 == 0 ? 27 : random());
            for (std::size_t left = 1 + random() % run; left > 0 && i < track.size(); --left)
                track[i++] = value;
        }
        const std::string plain =
            PlainPacket({reinterpret_cast<char*>(track.data()), track.size()});
        for (const std::string& packet : {PacketOf(track), plain}) {
            const Decoded decoded = Decode(packet);
            ASSERT_EQ(decoded.state, TrackState::Good);
            ASSERT_EQ(decoded.track, track);
            ASSERT_EQ(decoded.taken, packet.size());
            ASSERT_EQ(decoded.crc, PlainCrc(packet));
        }
    }
}

TEST(TrackCodecTest, EveryKindOfPacketEndsAsTold) {
    const std::string all_but_one = Nines(2559);
    const std::string head = Bytes({44, 0});
    // 2560 bytes in 2815 of payload, and in 2816.
    std::string longest;
    for (int i = 0; i < 255; ++i)
        longest += Bytes({27, 1});
    longest.append(2305, 'x');

    using Row = std::tuple<const char*, std::string, TrackState, int>;
    for (const auto& [what, packet, state, produced] : {
             Row{"nothing", "", TrackState::TimedOut, 0},
             Row{"one length byte", Bytes({44}), TrackState::WrongSize, 0},
             Row{"2815 bytes of payload", Packet(longest), TrackState::Good, 2560},
             Row{"2816 bytes of payload", Bytes({0, 11}), TrackState::BadLength, 0},
             Row{"no count", head + Bytes({65, 27, 0}), TrackState::TimedOut, 1},
             Row{"an unknown escape", head + Bytes({65, 27, 2}), TrackState::UnknownEscape, 1},
             Row{"one byte too few", Packet(all_but_one), TrackState::WrongSize, 2559},
             Row{"a run of 0", Packet(all_but_one + Bytes({27, 0, 0, 1, 8})), TrackState::Good,
                 2560},
             Row{"one byte too many", Packet(all_but_one + "ab"), TrackState::WrongSize, 2561},
             Row{"a run that does not fit", Packet(all_but_one + Nines(255) + "x"),
                 TrackState::WrongSize, 2561},
         }) {
        SCOPED_TRACE(what);
        const Decoded decoded = Decode(packet);
        EXPECT_EQ(decoded.state, state);
        EXPECT_EQ(decoded.produced, produced);
    }
}

TEST(TrackCodecTest, AnItemMayRunPastTheAnnouncedLength) {
    std::string packet = Packet(Nines(2560));
    packet[0] = static_cast<char>(packet[0] - 3); // only the last escape byte is announced
    const Decoded decoded = Decode(packet + "next");
    EXPECT_EQ(decoded.state, TrackState::Good);
    EXPECT_EQ(decoded.taken, packet.size());
    EXPECT_EQ(std::vector(decoded.patience.begin(), decoded.patience.begin() + 4),
              (std::vector{5000, 1000, 2000, 2000}))
        << "the first byte may take five seconds, the others less";
}

} // namespace

} // namespace quoravel
