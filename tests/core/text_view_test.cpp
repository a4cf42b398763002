#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/text_view.h"

#include <gmock/gmock.h>

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
    struct Row {
        const char* what;
        std::string bytes;
        std::vector<std::string> pieces;
    };

    const std::vector<Row> rows{
        {"nothing", "", {}},
        {"CR ends", "one\rtwo\r", {"one\r", "two\r"}},
        {"CR LF ends", "one\r\ntwo\r\n", {"one\r", "two\r"}},
        {"LF CR ends", "one\n\rtwo\n\r", {"one\r", "two\r"}},
        {"LF ends", "one\ntwo\n", {"onetwo"}},
        {"no end behind the last line", "one\rtwo", {"one\r", "two"}},
        {"CR alone", "\r", {"\r"}},
        {"LF alone", "\n", {}},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        EXPECT_EQ(View(r.bytes), r.pieces);
    }
}

TEST_F(TextView, LetsEveryOtherByteThrough) {
    std::string all;
    for (int code = 0; code < 256; ++code)
        if (code != '\r' && code != '\n')
            all += static_cast<char>(code);
    EXPECT_THAT(View(all), ElementsAre(all));
}

TEST_F(TextView, ALongFileWithoutLineEndsIsOnePieceAndHoldsUpNobody) {
    desktop.now = std::chrono::hours(1); // the last pump was long ago
    const std::string bytes(kDriveBytes, 'x');
    EXPECT_THAT(View(bytes), ElementsAre(bytes));
    EXPECT_GT(desktop.pumps, 0);
}

TEST_F(TextView, BehindTheBlockAFileIsZerosButALengthThatReadsFFEndsThere) {
    Module1::DiscImg.SetByte(kDiscBytes - 1, 'Z');

    struct Row {
        const char* what;
        int base;
        std::uint32_t length;
        std::string text;
    };

    for (const Row& r : {Row{"runs past the end", kDiscBytes - 1, 3, "Z\0\0"s},
                         Row{"starts past the end", kDiscBytes + 256, 2, "\0\0"s},
                         Row{"FF0000, in the block", kDiscBytes - 1, 0xFF0000, "Z"},
                         Row{"FFFFFF, past the end", kDiscBytes + 256, 0xFFFFFF, ""}}) {
        SCOPED_TRACE(r.what);
        TextSink sink;
        ListText(r.base, r.length, sink);
        EXPECT_EQ(sink.Text(), r.text);
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
