#include "link/track_codec.h"

#include <benchmark/benchmark.h>
#include <random>

// The encoder and the decoder alone, CRC included, in bytes of packet.

namespace quoravel {

namespace {

using Track = std::array<std::uint8_t, kTrackLength>;

/// Runs of up to so many equal bytes; of 1, random bytes.
Track TrackOfRuns(std::size_t longest) {
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same track each time
    Track track{};
    for (std::size_t i = 0; i < track.size();) {
        const auto value = static_cast<std::uint8_t>(random());
        for (std::size_t left = 1 + random() % longest; left > 0 && i < track.size(); --left)
            track[i++] = value;
    }
    return track;
}

void EncodeTrack(benchmark::State& state) {
    const Track track = TrackOfRuns(static_cast<std::size_t>(state.range(0)));
    std::int64_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        const TrackPacket packet(track);
        std::int32_t crc = 0;
        for (const std::uint8_t byte : packet.bytes())
            CalcCrc(crc, byte);
        benchmark::DoNotOptimize(crc);
        bytes += static_cast<std::int64_t>(packet.bytes().size());
    }
    state.SetBytesProcessed(bytes);
}

void DecodeTrack(benchmark::State& state) {
    const TrackPacket packet(TrackOfRuns(static_cast<std::size_t>(state.range(0))));
    std::int64_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        TrackBuffer track{};
        std::int32_t crc = 0;
        TrackDecoder decoder(track, crc);
        for (const std::uint8_t byte : packet.bytes())
            decoder.Take(byte);
        if (decoder.state() != TrackState::Good)
            state.SkipWithError("not a good packet");
        benchmark::DoNotOptimize(track);
        bytes += static_cast<std::int64_t>(packet.bytes().size());
    }
    state.SetBytesProcessed(bytes);
}

BENCHMARK(EncodeTrack)->Arg(1)->Arg(8)->Arg(4000);
BENCHMARK(DecodeTrack)->Arg(1)->Arg(8)->Arg(4000);

} // namespace

} // namespace quoravel
