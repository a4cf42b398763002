#include "documents.h"
#include "renderer_bench.h"
#include "view/wordwise/formatter.h"

// 60 KB of prose through the WordWise formatter, into a sink that only counts. Bytes a second are
// those of the document; at least 20 million are asked for.

namespace quoravel {
namespace {

void WordWiseProse(benchmark::State& state) {
    const BenchHost desktop;
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    CountingSink sink;
    for ([[maybe_unused]] auto _ : state)
        WordWise::FormatDocument(sink);
    state.SetBytesProcessed(state.iterations() * Module1::gSize);
}

BENCHMARK(WordWiseProse);

} // namespace
} // namespace quoravel
