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

/// A track that starts with `bytes`; behind them no byte is like its neighbours.
Track TrackOf(std::vector<int> bytes) {
    Track track{};
    for (std::size_t i = 0; i < track.size(); ++i)
        track[i] = static_cast<std::uint8_t>(i < bytes.size() ? bytes[i] : 100 + i % 2);
    return track;
}

std::string PacketOf(const Track& track) {
    const TrackPacket packet(track);
    return {packet.bytes().begin(), packet.bytes().end()};
}

int CrcOf(std::string_view bytes) {
    std::int32_t crc = 0;
    for (const char byte : bytes)
        CalcCrc(crc, static_cast<std::uint8_t>(byte));
    return crc;
}

struct Decoded {
    TrackState state;
    int produced;
    std::optional<int> length;
    std::size_t taken; ///< bytes of the packet that were asked for
    std::int32_t crc;
    Track track;
};

/// Feeds a packet to the decoder and then what it waits for in vain.
Decoded Decode(std::string_view packet) {
    TrackBuffer buffer{};
    std::int32_t crc = 0;
    TrackDecoder decoder(buffer, crc);
    std::size_t taken = 0;
    while (decoder.state() == TrackState::Reading && taken < packet.size())
        decoder.Take(static_cast<std::uint8_t>(packet[taken++]));
    const std::int32_t crc_of_taken = crc;
    if (decoder.state() == TrackState::Reading)
        decoder.Take(-1);
    Decoded decoded{decoder.state(), decoder.produced(), decoder.length(), taken, crc_of_taken, {}};
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

TEST(TrackCodecTest, TheCrcIsThatOfTheMicro) {
    EXPECT_EQ(CrcOf("123456789"), 20100);
    EXPECT_EQ(CrcOf(PacketOf({})), 27721);
    std::int32_t after_timeout = 0x1234;
    std::int32_t after_255 = 0x1234;
    CalcCrc(after_timeout, -1);
    CalcCrc(after_255, 255);
    EXPECT_EQ(after_timeout, after_255);
}

TEST(TrackCodecTest, RunsOfFourAndMoreAreCompressed) {
    using Row = std::tuple<const char*, std::vector<int>, std::vector<int>>;
    for (const auto& [what, track, payload] : {
             Row{"escapes", {27, 27, 65}, {27, 1, 27, 1, 65}},
             Row{"three escapes", {27, 27, 27, 65}, {27, 1, 27, 1, 27, 1, 65}},
             Row{"four escapes", {27, 27, 27, 27, 65}, {27, 0, 4, 27, 65}},
             Row{"three bytes", {7, 7, 7, 65}, {7, 7, 7, 65}},
             Row{"256 bytes", std::vector<int>(256, 7), {27, 0, 255, 7, 7, 100}},
             Row{"259 bytes", std::vector<int>(259, 7), {27, 0, 255, 7, 27, 0, 4, 7}},
         }) {
        SCOPED_TRACE(what);
        const std::string packet = PacketOf(TrackOf(track));
        EXPECT_EQ(packet.substr(2, payload.size()), Bytes(payload));
    }
    EXPECT_EQ(PacketOf({}).substr(0, 6), Bytes({44, 0, 27, 0, 255, 0}));
    EXPECT_EQ(PacketOf({}).substr(42), Bytes({27, 0, 10, 0}));
}

TEST(TrackCodecTest, TheWorstTrackFitsThePacketAndIsRefusedByTheDecoder) {
    Track worst{};
    for (std::size_t i = 0; i < worst.size(); ++i)
        worst[i] = i % 4 == 3 ? 65 : 27;
    const std::string packet = PacketOf(worst);
    EXPECT_EQ(packet.size(), 4482U);
    EXPECT_EQ(Decode(packet).state, TrackState::BadLength);
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
    const std::string escapes = [] {
        std::string items;
        for (int i = 0; i < 255; ++i)
            items += Bytes({27, 1});
        return items;
    }();
    const std::string longest = escapes + std::string(2305, 'x');

    using Row = std::tuple<const char*, std::string, TrackState, int>;
    for (const auto& [what, packet, state, produced] : {
             Row{"nothing", "", TrackState::TimedOut, 0},
             Row{"one length byte", Bytes({44}), TrackState::WrongSize, 0},
             Row{"an empty payload", Bytes({0, 0}), TrackState::WrongSize, 0},
             Row{"2815 bytes of payload", Packet(longest), TrackState::Good, 2560},
             Row{"2816 bytes of payload", Bytes({0, 11}), TrackState::BadLength, 0},
             Row{"no item", head, TrackState::TimedOut, 0},
             Row{"nothing behind an escape", head + Bytes({27}), TrackState::TimedOut, 0},
             Row{"no count", head + Bytes({65, 27, 0}), TrackState::TimedOut, 1},
             Row{"no value", head + Bytes({27, 0, 4}), TrackState::TimedOut, 0},
             Row{"an unknown escape", head + Bytes({65, 27, 2}), TrackState::UnknownEscape, 1},
             Row{"one byte too few", Packet(all_but_one), TrackState::WrongSize, 2559},
             Row{"a run of 0", Packet(all_but_one + Bytes({27, 0, 0, 1, 8})), TrackState::Good,
                 2560},
             Row{"a run of 1", Packet(all_but_one + Bytes({27, 0, 1, 8})), TrackState::Good, 2560},
             Row{"one byte too many", Packet(all_but_one + "ab"), TrackState::WrongSize, 2561},
             Row{"two bytes too many", Packet(all_but_one + "abc"), TrackState::WrongSize, 2561},
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
}

TEST(TrackCodecTest, TheFirstByteMayTakeFiveSecondsTheOthersLess) {
    TrackBuffer track{};
    std::int32_t crc = 0;
    TrackDecoder decoder(track, crc);
    std::vector<int> patience;
    for (const int byte : {44, 0, 65, 27, 0, 4, 9}) {
        patience.push_back(decoder.Patience());
        decoder.Take(byte);
    }
    EXPECT_EQ(patience, (std::vector<int>{5000, 1000, 2000, 2000, 2000, 2000, 2000}));
}

} // namespace

} // namespace quoravel
