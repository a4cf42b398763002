#include <gtest/gtest.h>

// What the doubles of the tests complain about, such as a question that nobody answers, ends the
// run of a fuzzer as a broken promise does.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    GTEST_FLAG_SET(break_on_failure, true);
    return 0;
}
