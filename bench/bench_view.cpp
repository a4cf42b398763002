#include "disc/module1.h"
#include "documents.h"
#include "support/scripted_host.h"
#include "view/basic.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/sink.h"
#include "view/text_view.h"
#include "view/wordwise/formatter.h"

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <random>
#include <string_view>

// The largest file of a disc through each renderer, into a sink that only counts. Bytes a second
// are those of the text that comes out; at least 100 million are asked for. Of the WordWise
// formatter they are those of the document; at least 20 million are asked for. Most of the time of
// a disassembly goes into its yields, each of which looks at the clock.

namespace quoravel {
namespace {

/// A desktop with nothing on it but a real clock.
class BenchHost : public ScriptedHost {
  public:
    std::chrono::nanoseconds Now() override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }
};

class CountingSink : public ViewSink {
  public:
    std::int64_t bytes = 0;

    void ShowData(std::string_view text) override {
        benchmark::DoNotOptimize(text.data());
        bytes += std::ssize(text);
    }
};

/// Fills the drive with bytes that `byte` gives one by one.
template<typename Source>
void FillWith(Source byte) {
    for (int at = 0; at < kDriveBytes; ++at)
        Module1::DiscImg.SetByte(at, static_cast<std::uint8_t>(byte()));
}

auto Repeating(std::string_view pattern) {
    return [=] { FillWith([=, at = 0U]() mutable { return pattern[at++ % pattern.size()]; }); };
}

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

/// Each byte becomes eight characters.
void FillWithControlCodes() {
    FillWith([at = 0]() mutable { return at++ % 64 == 0 ? 13 : 7; });
}

using Renderer = void (*)(int base, std::uint32_t length, ViewSink& sink);

template<typename Fill>
void View(benchmark::State& state, Renderer renderer, Fill fill) {
    const BenchHost desktop;
    fill();
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        renderer(0, kDriveBytes, sink);
    state.SetBytesProcessed(sink.bytes);
}

void Disassembly(int base, std::uint32_t length, ViewSink& sink) {
    Disassemble(base, length, 0x1900, sink);
}

void WordWiseProse(benchmark::State& state) {
    const BenchHost desktop;
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        WordWise::FormatDocument(sink);
    state.SetBytesProcessed(state.iterations() * Module1::gSize);
}

const auto kLines = Repeating("A line of a text as one meets it, about sixty characters.\r\n");

BENCHMARK_CAPTURE(View, TextInLines, ListText, kLines);
BENCHMARK_CAPTURE(View, TextInEmptyLines, ListText, Repeating("\r"));
BENCHMARK_CAPTURE(View, TextInOneLine, ListText, Repeating("no line end anywhere "));
BENCHMARK_CAPTURE(View, Hex, ListHex, kLines);
BENCHMARK_CAPTURE(View, Basic, ListBasic, FillWithBasic);
BENCHMARK_CAPTURE(View, BasicOfControlCodes, ListBasic, FillWithControlCodes);
BENCHMARK_CAPTURE(View, Disassembly, Disassembly, [] { FillWith(std::minstd_rand()); });
BENCHMARK(WordWiseProse);

} // namespace
} // namespace quoravel
