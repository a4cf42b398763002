#include "support/disc_builder.h"
#include "support/view_test.h"
#include "support/wordwise_documents.h"
#include "view/wordwise/state.h"

#include <QPointer>
#include <QTextBlock>

namespace quoravel {
namespace {

/// The demonstration disc with one of its documents shown, and documents on a disc of their own.
class WordwiseWindowTest : public ViewTest {
  protected:
    [[nodiscard]] View ShowDocument(std::string_view name) {
        window->OpenDisc(CopyOfDisc("demo-wordwise.ssd"));
        const auto names = Names(0);
        Click(0, static_cast<int>(std::ranges::find(names, name) - names.begin()));
        return Show("FileViewAsWordwise");
    }

    void PutDocument(std::string_view written, std::uint32_t exec = 0x3FFFF) const {
        const std::string bytes = Document(written);
        DiscBuilder()
            .File({.name = "DOC",
                   .load = 0x3FFFF,
                   .exec = exec,
                   .length = static_cast<std::uint32_t>(bytes.size()),
                   .sector = 2})
            .Data(2, bytes);
        window->GetRootTitles(0);
        Click(0, 0);
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
    const View view = ShowDocument("R.REPORT");
    EXPECT_EQ(Title(view), "View File - R.REPORT");
    EXPECT_EQ(view->gName, "R.REPORT");
    EXPECT_TRUE(Text(view).Text().starts_with("\r\n               Harbour Report\r\n"));
    EXPECT_EQ(StyledLine(view, 3), "                THE HARBOUR is bold");
    EXPECT_EQ(StyledLine(view, 6), "1821 and 1829, when <u>stone from the quarry</u> at");
    EXPECT_EQ(Text(view).document()->blockCount(), 2 * 24 + 1);
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
}

TEST_F(WordwiseWindowTest, ALastLineWithoutAnEndIsThere) {
    PutDocument("one\ntwo");
    const View view = Show("FileViewAsWordwise");
    EXPECT_EQ(Text(view).Text(), "one\r\ntwo");
    EXPECT_EQ(Module1::gOffset, 512);
    EXPECT_EQ(Module1::gSize, 7);
}

TEST_F(WordwiseWindowTest, TheWindowIsWiderThanOthersButNotForARefusal) {
    PutDocument("text");
    EXPECT_EQ(Text(Show("FileViewAsWordwise")).width(), 611 + 50);
    PutDocument("text", 0x1FFFF);
    WordWise::Underline = true;
    const View refused = Show("FileViewAsWordwise");
    EXPECT_EQ(Text(refused).Text(), "This does not appear to be a WordWise Document");
    EXPECT_EQ(Text(refused).width(), 611);
    EXPECT_EQ(Module1::a_exec, "01FFFF");
    EXPECT_TRUE(WordWise::Underline) << "only a document sets it back";
}

// --- While a document that has no practical end fills its window.

class EndlessDocumentTest : public WordwiseWindowTest {
  protected:
    /// Shows it and calls `act` once, when part of it is there.
    void ShowEndless(const std::function<void(const View&)>& act) {
        PutDocument("{FL999}{LS0}{PL999}" + std::string(9000, '\n'));
        desktop.clock_step = std::chrono::microseconds(100);
        desktop.on_pump = [&, acted = false]() mutable {
            const View view = Module1::gViewForm.lock();
            if (!acted && view != nullptr && Text(view).Text().size() > 5000) {
                acted = true;
                act(view);
            }
        };
        Choose("FileViewAsWordwise");
        desktop.on_pump = nullptr;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

TEST_F(EndlessDocumentTest, ClosingTheWindowEndsIt) {
    QPointer<frmView> watched;
    ShowEndless([&](const View& view) {
        watched = view.get();
        view->close();
    });
    EXPECT_TRUE(watched.isNull());
    EXPECT_EQ(desktop.quits, 0);
    PutDocument("next");
    EXPECT_EQ(Text(Show("FileViewAsWordwise")).Text(), "next");
}

TEST_F(EndlessDocumentTest, AnotherDocumentCanBeReadMeanwhile) {
    ShowEndless([&](const View& endless) {
        PutDocument("{US}short");
        const View inner = Show("FileViewAsWordwise");
        EXPECT_EQ(Text(inner).Text(), "short");
        EXPECT_FALSE(endless->IsClosed());
        endless->close();
    });
    EXPECT_FALSE(WordWise::Underline) << "the document that was shown last has none";
}

} // namespace
} // namespace quoravel
