#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/star_command.h"
#include "link/track_codec.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "platform/text.h"
#include "support/link_test.h"

#include <algorithm>
#include <memory>
#include <utility>

// Any bytes come down the line: to the codec at once, and to the whole link at any pace.

namespace quoravel {

namespace {

constexpr int kHighestLength = 2815; ///< that a decoder takes

/// A track and what the decoder makes of a packet.
struct Decoded {
    std::unique_ptr<TrackBuffer> track = std::make_unique<TrackBuffer>();
    std::int32_t crc = 0;
    TrackState state = TrackState::Reading;

    [[nodiscard]] std::string_view Text() const {
        return AsText(std::span(*track).first<kTrackLength>());
    }
};

/// The byte number `late` does not come in time.
Decoded Decode(std::string_view packet, std::size_t late = std::string::npos) {
    Decoded decoded;
    TrackDecoder decoder(*decoded.track, decoded.crc);
    for (std::size_t at = 0; decoder.state() == TrackState::Reading; ++at) {
        Require(at < 2820, "every packet ends");
        const bool comes = at != late && at < packet.size();
        decoder.Take(comes ? static_cast<unsigned char>(packet[at]) : -1);
        Require(decoder.Patience() <= 5000, "no wait is longer than 5 s");
        Require(decoder.produced() <= 2561 && decoded.crc >= 0 && decoded.crc <= 0xFFFF,
                "a track fits its buffer, and a CRC its bits");
    }
    decoded.state = decoder.state();
    decoder.Take(0);
    Require(decoder.state() == decoded.state, "the end is the end");
    Require(decoded.state != TrackState::Good || decoder.produced() == 2560, "a track is whole");
    return decoded;
}

/// What the host sends and what the micro sends come out as they went in, if they are not longer
/// than the decoder takes.
void CheckRoundTrip(std::string_view track) {
    const TrackBytes bytes(reinterpret_cast<const std::uint8_t*>(track.data()), kTrackLength);
    const TrackPacket packet(bytes);
    Require(packet.payload() >= 1 && packet.payload() <= 4480, "a packet has its bounds");
    const Decoded sent = Decode(AsText(packet.bytes()));
    if (packet.payload() > kHighestLength) {
        Require(sent.state == TrackState::BadLength, "a packet that is too long is refused");
    } else {
        Require(sent.state == TrackState::Good && sent.Text() == track,
                "a sent track is the track");
        Require(sent.crc == PlainCrc(AsText(packet.bytes())), "the CRC is the micro's");
    }
    const std::string from_micro = PlainPacket(track);
    if (from_micro.size() > kHighestLength + 2)
        return;
    const Decoded received = Decode(from_micro);
    Require(received.state == TrackState::Good && received.Text() == track,
            "a received track is the track");
}

/// A track that repeats `text`.
std::string TrackOf(std::string_view text) {
    std::string track(text.empty() ? std::string_view("\0", 1) : text);
    while (track.size() < kTrackLength)
        track += track.substr(0, kTrackLength - track.size());
    track.resize(kTrackLength);
    return track;
}

void CheckReply(std::string_view reply) {
    Require(NumberOf(reply) >= 0, "no number is below 0");
    Require(!IsSuccessLine(reply) || !IsErrorLine(reply), "a reply is success or error");
    Require(std::ssize(AddLineFeeds(reply)) == std::ssize(reply) + std::ranges::count(reply, '\r'),
            "an output gains line feeds and nothing else");
}

constexpr int kStep = 40;   // milliseconds
constexpr int kFlood = 200; // lumps that are more than the ring takes

/// Cancels once the line has been silent for 12 seconds, so that every conversation ends.
void ScheduleLumps(LinkWorld& world, Input& input) {
    int milliseconds = 0;
    while (!input.rest().empty() && milliseconds < 30'000) {
        const std::string_view lump = input.Text(256);
        const unsigned silence = input.Number();
        const int times = silence == 255 ? kFlood : 1;
        for (int i = 0; i < times; ++i)
            world.Arrive(milliseconds, lump);
        milliseconds += kStep * static_cast<int>(silence);
    }
    world.Later(milliseconds + 12000, LinkWorld::Cancel);
}

void Converse(unsigned what, LinkWorld& world) {
    std::string reply;
    TrackBuffer track{};
    std::int32_t crc = 0;
    std::filesystem::path file;
    switch (what % 6) {
    case 0:
        static_cast<void>(Get_Track(track, crc));
        return Require(crc >= 0 && crc <= 0xFFFF, "16 bits of CRC");
    case 1:
        return Require(!Get_Response(reply, 1024) || (reply.size() >= 3 && reply.size() <= 1024),
                       "an accepted reply has its size");
    case 2:
        return static_cast<void>(RX_SSD(0, world.desk, file));
    case 3:
        return static_cast<void>(RX_DSD(1, world.desk, file));
    case 4:
        return TX_DISC(0, true, world.desk);
    default:
        static_cast<void>(SendStarCommand("X", [](std::string_view) { return true; }));
    }
}

} // namespace

/// As a packet, as a reply, and as a track to be sent. The first byte of the input says which byte
/// of the packet does not come in time; 255: all do.
void fuzzers::wire(Bytes bytes) {
    Input input(bytes);
    const unsigned late = input.Number();
    CheckReply(input.rest());
    const Decoded decoded = Decode(input.rest(), late == 255 ? std::string::npos : late);
    if (decoded.state == TrackState::Good)
        CheckRoundTrip(decoded.Text());
    else if (bytes.size() % 2 == 0)
        CheckRoundTrip(TrackOf(input.rest()));
}

/// The first byte of the input chooses what the host does; then come lumps: how long the lump is,
/// the lump, how long the line is silent behind it; 255: it comes so often before that the ring
/// overflows.
void fuzzers::link(Bytes bytes) {
    Input input(bytes);
    const unsigned what = input.Number();
    LinkWorld world;
    world.port.on_write = [](std::string_view) {}; // nobody listens
    world.desktop.files = {world.folder.File("disc.ssd", std::string(3000, 'x'))};
    Module1::RXHead = Module1::RXTail = Module1::kRingSize - 50; // it goes round soon
    // Whoever waits for a byte waits in steps, as a millisecond each takes too long.
    world.desktop.on_pump = [&world, pump = std::move(world.desktop.on_pump)] {
        if (world.timer.Enabled())
            world.desktop.now += std::chrono::milliseconds(kStep - 1);
        pump();
    };
    if (what % 2 != 0)
        world.Trace();
    ScheduleLumps(world, input);
    Converse(what / 2U, world);
}

} // namespace quoravel
