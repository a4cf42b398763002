#include "support/main_window_test.h"

namespace quoravel {
namespace {

TEST_F(MainWindowTest, ItStartsWithABlankTwoSidedDisc) {
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
}

} // namespace
} // namespace quoravel
