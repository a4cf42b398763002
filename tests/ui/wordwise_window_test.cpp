#include "support/disc_builder.h"
#include "support/view_test.h"
#include "support/wordwise_documents.h"
#include "view/wordwise/state.h"

#include <QTextBlock>

namespace quoravel {
namespace {

class WordwiseWindowTest : public ViewTest {
  protected:
    [[nodiscard]] View ShowDocument(std::string_view written, std::uint32_t exec = 0x3FFFF) const {
        const std::string bytes = Document(written);
        DiscBuilder()
            .File({"DOC", '$', false, 0x3FFFF, exec, static_cast<std::uint32_t>(bytes.size()), 2})
            .Data(2, bytes);
        window->GetRootTitles(0);
        return Show("FileViewAsWordwise");
    }

    /// A line of the control with tags where the styles change.
    static std::string StyledLine(const View& view, int number) {
        std::string line;
        const QTextBlock block = Text(view).document()->findBlockByNumber(number);
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextCharFormat format = piece.fragment().charFormat();
            const std::string text = piece.fragment().text().toStdString();
            line += format.fontUnderline() ? "<u>" + text + "</u>" : text;
            if (format.fontWeight() == QFont::Bold)
                line += " is bold";
        }
        return line;
    }
};

TEST_F(WordwiseWindowTest, AReportShowsItsStylesFromItsFirstLineOn) {
    window->OpenDisc(CopyOfDisc("demo-wordwise.ssd"));
    const auto names = Names(0);
    Click(0, static_cast<int>(std::ranges::find(names, "R.REPORT") - names.begin()));
    const View view = Show("FileViewAsWordwise");
    EXPECT_EQ(Title(view), "View File - R.REPORT");
    EXPECT_TRUE(Text(view).Text().starts_with("\r\n               Harbour Report\r\n"));
    EXPECT_EQ(StyledLine(view, 3), "                THE HARBOUR is bold");
    EXPECT_EQ(StyledLine(view, 6), "1821 and 1829, when <u>stone from the quarry</u> at");
    EXPECT_EQ(Text(view).document()->blockCount(), 2 * 24 + 1);
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
    EXPECT_EQ(Text(view).width(), 611 + 50) << "long lines shall fit";
}

TEST_F(WordwiseWindowTest, ALastLineWithoutAnEndIsThereAndARefusalIsNoWider) {
    EXPECT_EQ(Text(ShowDocument("one\ntwo")).Text(), "one\r\ntwo");
    WordWise::Underline = true;
    const View refused = ShowDocument("text", 0x1FFFF);
    EXPECT_EQ(Text(refused).Text(), "This does not appear to be a WordWise Document");
    EXPECT_EQ(Text(refused).width(), 611);
    EXPECT_TRUE(WordWise::Underline) << "only a document sets it back";
}

} // namespace
} // namespace quoravel
