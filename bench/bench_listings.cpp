#include "disc/module1.h"
#include "platform/host.h"
#include "renderer_bench.h"
#include "view/basic.h"
#include "view/disassembler.h"

#include <array>
#include <cstdint>
#include <random>

// The largest file of a disc as a BASIC program and as machine code. Bytes a second are those of
// the text that comes out; at least 100 million are asked for. Most of the time of a disassembly
// goes into its yields, each of which looks at the clock.

namespace quoravel {
namespace {

/// 10 IF i%*i%>size% THEN 120 and 20 PRINT "wrong", all over the drive.
void FillWithBasic() {
    constexpr auto lines = std::to_array<std::uint8_t>(
        {0,   10,   0,   0xE7, ' ',  'i', '%',  '*',  'i',  '%',  '>', 's', 'i',
         'z', 'e',  '%', ' ',  0x8C, ' ', 0x8D, 0x44, 0x78, 0x40, 13,  0,   20,
         0,   0xF1, ' ', '"',  'w',  'r', 'o',  'n',  'g',  '"',  13});
    Module1::DiscImg.SetByte(0, 13);
    for (int at = 1; at < kDriveBytes; at += static_cast<int>(lines.size()))
        Module1::DiscImg.Write(at, lines);
}

/// Fills the drive with bytes that `byte` gives one by one.
template<typename Source>
void FillWith(Source byte) {
    for (int at = 0; at < kDriveBytes; ++at)
        Module1::DiscImg.SetByte(at, static_cast<std::uint8_t>(byte()));
}

void ListIt(benchmark::State& state) {
    const BenchHost desktop;
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        ListBasic(0, kDriveBytes, sink);
    state.SetBytesProcessed(sink.bytes);
}

void Basic(benchmark::State& state) {
    FillWithBasic();
    ListIt(state);
}

/// Each byte becomes eight characters.
void BasicOfControlCodes(benchmark::State& state) {
    FillWith([at = 0]() mutable { return at++ % 64 == 0 ? 13 : 7; });
    ListIt(state);
}

void Disassembly(benchmark::State& state) {
    const BenchHost desktop;
    FillWith(std::minstd_rand());
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        Disassemble(0, kDriveBytes, 0x1900, sink);
    state.SetBytesProcessed(sink.bytes);
}

void ClockOfAYield(benchmark::State& state) {
    const BenchHost desktop;
    for ([[maybe_unused]] auto _ : state)
        Yield();
}

BENCHMARK(Basic);
BENCHMARK(BasicOfControlCodes);
BENCHMARK(Disassembly);
BENCHMARK(ClockOfAYield);

} // namespace
} // namespace quoravel
