#include "fuzz/fuzz.h"
#include "link/replies.h"
#include "link/track_codec.h"
#include "platform/text.h"
#include "support/companion_double.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <string>

// What comes down the line, without the waiting: any bytes as a packet of a track, as a reply, and
// as a track to be sent. The first byte of the input says which byte of the packet does not come in
// time; 255: all do.

namespace quoravel {

namespace {

constexpr int kHighestLength = 2815; ///< that a decoder takes

/// A track and what the decoder makes of a packet.
struct Decoded {
    std::unique_ptr<TrackBuffer> track = std::make_unique<TrackBuffer>();
    std::int32_t crc = 0;
    std::size_t taken = 0; ///< bytes until the end was known
    TrackState state = TrackState::Reading;
};

void CheckDecoder(const TrackDecoder& decoder, std::int32_t crc) {
    const int patience = decoder.Patience();
    Require(patience == 5000 || patience == 1000 || patience == 2000, "no wait is longer than 5 s");
    Require(decoder.produced() >= 0 && decoder.produced() <= 2561, "a track fits its buffer");
    Require(!decoder.length() || *decoder.length() <= kHighestLength, "lengths have a limit");
    Require(crc >= 0 && crc <= 0xFFFF, "16 bits of CRC");
}

Decoded Decode(std::string_view packet, std::size_t late = std::string::npos) {
    Decoded decoded;
    TrackDecoder decoder(*decoded.track, decoded.crc);
    while (decoder.state() == TrackState::Reading) {
        const bool comes = decoded.taken != late && decoded.taken < packet.size();
        decoder.Take(comes ? static_cast<unsigned char>(packet[decoded.taken]) : -1);
        CheckDecoder(decoder, decoded.crc);
        ++decoded.taken;
        Require(decoded.taken <= 2820, "every packet ends");
    }
    decoded.state = decoder.state();
    decoder.Take(0);
    Require(decoder.state() == decoded.state, "the end is the end");
    Require(decoded.state != TrackState::Good || decoder.produced() == 2560, "a track is whole");
    return decoded;
}

bool IsTrack(const Decoded& decoded, std::string_view track) {
    return decoded.state == TrackState::Good &&
           AsText(std::span(*decoded.track).first<kTrackLength>()) == track;
}

/// What the host sends and what the micro sends come out as they went in, if they are not longer
/// than the decoder takes.
void CheckRoundTrip(std::string_view track) {
    const TrackBytes bytes(reinterpret_cast<const std::uint8_t*>(track.data()), kTrackLength);
    const TrackPacket packet(bytes);
    Require(packet.payload() >= 1 && packet.payload() <= 4480, "a packet has its bounds");
    const bool is_taken = packet.payload() <= kHighestLength;
    const Decoded decoded = Decode(AsText(packet.bytes()));
    Require(is_taken ? IsTrack(decoded, track) : decoded.state == TrackState::BadLength,
            "a sent track is the track");
    Require(!is_taken || decoded.crc == PlainCrc(AsText(packet.bytes())), "the CRC is the micro's");
    const std::string from_micro = PlainPacket(track);
    if (from_micro.size() <= kHighestLength + 2)
        Require(IsTrack(Decode(from_micro), track), "a received track is the track");
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
    const std::int32_t number = NumberOf(reply);
    Require(number >= 0, "no number is below 0");
    if (number > 0 && number < std::numeric_limits<std::int32_t>::max())
        Require(reply.find(std::to_string(number)) != std::string_view::npos,
                "a number stands in its reply");
    Require(!IsSuccessLine(reply) || !IsErrorLine(reply), "a reply is success or error");
    if (IsSuccessLine(reply))
        Require(reply.size() <= kSuccessText.size() + 2, "a success line is nothing but that");
    const std::string shown = AddLineFeeds(reply);
    Require(std::ssize(shown) == std::ssize(reply) + std::ranges::count(reply, '\r'),
            "an output gains line feeds and nothing else");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    Input input({data, size});
    const unsigned late = input.Number();
    CheckReply(input.rest());
    const Decoded decoded = Decode(input.rest(), late == 255 ? std::string::npos : late);
    if (decoded.state == TrackState::Good)
        CheckRoundTrip(AsText(std::span(*decoded.track).first<kTrackLength>()));
    else if (size % 2 == 0)
        CheckRoundTrip(TrackOf(input.rest()));
    return 0;
}
