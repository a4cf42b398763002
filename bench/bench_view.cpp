#include "disc/module1.h"
#include "renderer_bench.h"
#include "view/hex_view.h"
#include "view/text_view.h"

#include <string_view>

// The largest file of a disc as text and as hex, into a sink that only counts. Bytes a second are
// those of the text that comes out; at least 100 million are asked for.

namespace quoravel {
namespace {

using Renderer = void (*)(int base, std::uint32_t length, ViewSink& sink);

void FillWith(std::string_view pattern) {
    for (int i = 0; i < kDriveBytes; ++i) {
        const char c = pattern[static_cast<std::size_t>(i) % pattern.size()];
        Module1::DiscImg.SetByte(i, static_cast<std::uint8_t>(c));
    }
}

void View(benchmark::State& state, Renderer renderer, std::string_view pattern) {
    const BenchHost desktop;
    FillWith(pattern);
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        renderer(0, kDriveBytes, sink);
    state.SetBytesProcessed(sink.bytes);
}

constexpr std::string_view kLines = "A line of a text as one meets it, about sixty characters.\r\n";
constexpr std::string_view kEmptyLines = "\r";
constexpr std::string_view kOneLine = "no line end anywhere ";

BENCHMARK_CAPTURE(View, TextInLines, ListText, kLines);
BENCHMARK_CAPTURE(View, TextInEmptyLines, ListText, kEmptyLines);
BENCHMARK_CAPTURE(View, TextInOneLine, ListText, kOneLine);
BENCHMARK_CAPTURE(View, Hex, ListHex, kLines);

} // namespace
} // namespace quoravel
