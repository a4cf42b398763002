#include "fuzz/fuzz.h"

#include <gtest/gtest.h>

// Makes a program of the fuzzer that FUZZER names.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quoravel::fuzzers::FUZZER({data, size});
    return 0;
}

// What the doubles of the tests complain about, such as a question that nobody answers, ends the
// run of a fuzzer as a broken promise does.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    GTEST_FLAG_SET(break_on_failure, true);
    return 0;
}

// Freed memory is guarded for a while as ever, but not for so long that each run takes new pages.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=16:malloc_context_size=10";
}
