#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/text_view.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

constexpr int kBase = 0x200;

class TextView : public DiscTest {
  protected:
    /// The pieces of a file that holds `bytes`.
    std::vector<std::string> View(const std::string& bytes) {
        for (int i = 0; i < std::ssize(bytes); ++i)
            Module1::DiscImg.SetByte(kBase + i, static_cast<std::uint8_t>(bytes[i]));
        TextSink sink;
        ListText(kBase, static_cast<std::uint32_t>(bytes.size()), sink);
        return sink.pieces;
    }
};

TEST_F(TextView, HandsOverALineAtATimeWithoutItsLineFeeds) {
    using Row = std::tuple<const char*, std::string, std::vector<std::string>>;
    for (const auto& [what, bytes, pieces] :
         {Row{"nothing", "", {}}, Row{"CR ends", "one\rtwo\r", {"one\r", "two\r"}},
          Row{"CR LF ends", "one\r\ntwo\r\n", {"one\r", "two\r"}},
          Row{"LF CR ends", "one\n\rtwo\n\r", {"one\r", "two\r"}},
          Row{"LF ends", "one\ntwo\n", {"onetwo"}},
          Row{"no end behind the last line", "one\rtwo", {"one\r", "two"}}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(View(bytes), pieces);
    }
}

TEST_F(TextView, LetsEveryOtherByteThroughAndHoldsUpNobody) {
    desktop.now = std::chrono::hours(1); // the last pump was long ago
    std::string all;
    for (int code = 0; code < kDriveBytes; ++code)
        all += static_cast<char>(code % 256 == '\r' || code % 256 == '\n' ? 'x' : code);
    EXPECT_THAT(View(all), ElementsAre(all)) << "one piece";
    EXPECT_GT(desktop.pumps, 0);
}

TEST_F(TextView, BehindTheBlockAFileIsZerosButALengthThatReadsFFEndsThere) {
    Module1::DiscImg.SetByte(kDiscBytes - 1, 'Z');
    using Row = std::tuple<int, std::uint32_t, std::string>;
    for (const auto& [base, length, text] :
         {Row{kDiscBytes - 1, 3, "Z\0\0"s}, Row{kDiscBytes - 1, 0xFF0000, "Z"},
          Row{kDiscBytes + 256, 0xFFFFFF, ""}}) {
        TextSink sink;
        ListText(base, length, sink);
        EXPECT_EQ(sink.Text(), text);
    }
}

// The machine ends what *TYPE prints with a line end more.
TEST_F(TextView, ShowsWhatTheMachineTypes) {
    for (GoldenPage& page : GoldenPages("type.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        TextSink sink;
        ListText(base, length, sink);
        ASSERT_EQ(page.lines.back(), "");
        page.lines.pop_back();
        EXPECT_EQ(sink.Text(), JoinLines(page.lines));
    }
}

} // namespace
} // namespace quoravel
