#include "link/track_link.h"

#include "disc/module1.h"
#include "link/ring.h"
#include "link/trace.h"
#include "platform/host.h"

namespace quoravel {

namespace {

constexpr int kLengthBytes = 2;

/// Reads one byte more, and says why if it is the last.
void ReadByte(TrackDecoder& decoder) {
    decoder.Take(get_char(decoder.Patience()));
    switch (decoder.state()) {
    case TrackState::TimedOut:
        return TraceLine("Timeout waiting for response");
    case TrackState::BadLength:
        return TraceLine("Incorrect packet length received");
    case TrackState::UnknownEscape:
        return TraceLine("Unknown ESCAPE sequence");
    default:
        return;
    }
}

void TraceSize(int payload) {
    TraceLine("Compressed Packet Size ", payload);
}

} // namespace

bool Get_Track(TrackBuffer& track, std::int32_t& crc) {
    TrackDecoder decoder(track, crc);
    for (int i = 0; i < kLengthBytes && decoder.state() == TrackState::Reading; ++i)
        ReadByte(decoder);
    if (decoder.length())
        TraceSize(*decoder.length());
    while (decoder.state() == TrackState::Reading) {
        ReadByte(decoder);
        Yield();
    }
    if (decoder.state() == TrackState::WrongSize)
        TraceLine("Track Decompression Failed - Track Length = ", decoder.produced());
    return decoder.state() == TrackState::Good;
}

void Send_Track(TrackBytes track, std::int32_t& crc) {
    const TrackPacket packet(track);
    TraceSize(packet.payload());
    crc = 0;
    for (const std::uint8_t byte : packet.bytes()) {
        const char sent = static_cast<char>(byte);
        CalcCrc(crc, byte);
        Send_Char({&sent, 1});
        host().DoEvents(1); // the micro has no other way to keep up
        if (Module1::TXAbort)
            return;
        Yield();
    }
}

} // namespace quoravel
