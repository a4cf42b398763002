#include "platform/qt/place.h"
#include "support/disc_builder.h"
#include "support/view_test.h"
#include "view/wordwise/state.h"

#include <QClipboard>
#include <QPointer>
#include <QScrollBar>
#include <QTextBlock>

#include <tuple>

namespace quoravel {
namespace {

using ViewWindowTest = ViewTest;

constexpr int kLongest = 0x2FF00; // beyond it, a length reads as FFxxxx

TEST_F(ViewWindowTest, EachCommandOpensItsView) {
    for (const char* item : {"FileViewAsText", "FileViewAsHex", "FileViewAsBasic",
                             "FileDisassembleFile", "FileViewAsWordwise"})
        EXPECT_EQ(Show(item), nullptr) << item << " without a selected file";
    window->OpenDisc(CopyOfDisc("demo-code.ssd"));
    const auto names = Names(0);
    const auto code = std::ranges::find(names, "$.OPS") - names.begin();
    desktop.files.assign(8, std::nullopt);

    using Row = std::tuple<const char*, const char*, const char*, const char*>;
    for (const auto& [item, title, proposal, start] :
         {Row{"FileViewAsText", "View File - $.OPS", "$.OPS", ""},
          Row{"FileViewAsHex", "View File - $.OPS", "$.OPS", "000000 : "},
          Row{"FileViewAsBasic", "View File - $.OPS", "$.OPS",
              "This does not appear to be a BASIC program"},
          Row{"FileDisassembleFile", "Disassemble File - $.OPS", "$.OPS", ""},
          Row{"DiscViewAsCAT", "*CAT", "", "DEMO"}, Row{"DiscViewAsEX", "*EX", "", "$.HELLO"},
          Row{"DiscViewFreeSpaceMap", "Free Disc Space Map", "FreeSpace", "Address : Length\r\n"},
          Row{"FileViewAsWordwise", "View File - $.OPS", "$.OPS",
              "This does not appear to be a WordWise Document"}}) {
        SCOPED_TRACE(item);
        Click(0, static_cast<int>(code));
        const View view = Show(item);
        EXPECT_TRUE(view->isVisible());
        EXPECT_EQ(Title(view), title);
        EXPECT_TRUE(Text(view).Text().starts_with(start)) << Text(view).Text().substr(0, 80);
        EXPECT_FALSE(Text(view).Text().empty());
        Choose(*view, "FileSaveFile");
        EXPECT_EQ(desktop.proposals.back(), proposal);
        view->close();
    }
}

TEST_F(ViewWindowTest, FilesAreThoseOfTheCurrentDrive) {
    DiscBuilder(0).File({.name = "ZERO", .length = 4, .sector = 2}).Data(2, "zero");
    DiscBuilder(1)
        .File({.name = "ONE", .length = 3, .sector = 2})
        .File({.name = "TWO", .length = 3, .sector = 2})
        .Byte(512, 'o');
    window->GetRootTitles(0);
    window->GetRootTitles(1);
    Click(1, 1);
    List(0).setFocus(); // which has one row
    EXPECT_EQ(Text(Show("FileViewAsHex")).Text(), "");
    Click(1, 1);
    const View view = Show("FileViewAsText");
    EXPECT_EQ(Text(view).Text(), std::string("o\0\0", 3));
    EXPECT_EQ(Title(view), "View File - $.TWO");
}

TEST_F(ViewWindowTest, EachRequestOpensAWindowOfItsOwnAtItsFirstLine) {
    PutFile(std::string(20000, 'x'));
    const View first = Show("FileViewAsHex");
    EXPECT_EQ(Text(first).ScrollPosition(), 0);
    QTest::keyClick(&Text(first), Qt::Key_PageDown);
    EXPECT_GT(Text(first).ScrollPosition(), 0);
    EXPECT_LT(Text(first).ScrollPosition(), 100) << "the next page, not the last";
    const View second = ShowText("before");
    EXPECT_TRUE(first->isVisible() && second->isVisible());
    PutFile("behind");
    EXPECT_EQ(Text(second).Text(), "before") << "a later change of the disc is not shown";
}

TEST_F(ViewWindowTest, AWindowOpensInTheMiddleAndThenWhereTheLastOneWasClosed) {
    View view = Show("DiscViewAsCAT");
    EXPECT_EQ(Text(view).size(), QSize(611, 359));
    EXPECT_EQ(view->pos(),
              QPoint((ScreenSize().width() - 611) / 2, (ScreenSize().height() - 359) / 2));
    view->move(40, 60);
    view->resize(500, 300);
    const QSize size = Text(view).size();
    EXPECT_EQ(size.width(), 500);
    window->close(); // and with it the view
    EXPECT_FALSE(view->isVisible());
    view.reset();
    Start();
    view = Show("DiscViewAsEX");
    EXPECT_EQ(view->pos(), QPoint(40, 60));
    EXPECT_EQ(Text(view).size(), size);
}

TEST_F(ViewWindowTest, ClosingGoesByKeyAndQuittingClosesTheProgram) {
    View view = Show("DiscViewAsCAT");
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    QTest::keyClick(view.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(view->isVisible());
    EXPECT_TRUE(window->isVisible());
    view = Show("DiscViewAsCAT");
    Choose(*view, "FileQuit");
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ViewWindowTest, ATextToReadCanBeCopiedWithOrdinaryLineEndsButNotCut) {
    const View view = ShowText("a text\r\xA3\xA0\x07");
    for (const char* item : {"EditCut", "EditPaste", "EditClear"})
        EXPECT_FALSE(Part<QAction>(*view, item).isEnabled()) << item;
    Choose(*view, "EditSelectAll");
    Choose(*view, "EditCopy");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("a text\n\u00A3\u00A0\x07"));
}

TEST_F(ViewWindowTest, AViewInheritsTheStyleThatADocumentLeftOn_Meant) {
    WordWise::Underline = true;
    WordWise::DoubleStrike = true;
    const View view = ShowText("styled");
    const QTextCharFormat format =
        Text(view).document()->firstBlock().begin().fragment().charFormat();
    EXPECT_TRUE(format.fontUnderline());
    EXPECT_EQ(format.fontWeight(), QFont::Bold);
}

TEST_F(ViewWindowTest, ASavedViewHasTheTextInUtf8AndOneMoreLineEnd) {
    PutFile("one\rtwo \xA3\x07\x80\r", "A/\xA3:B");
    const View view = Show("FileViewAsText");
    const auto file = folder.path() / "saved.txt";
    desktop.files = {file, folder.path() / "no folder" / "saved.txt"};
    Choose(*view, "FileSaveFile");
    EXPECT_EQ(TextOf(file), "one\r\ntwo \xC2\xA3\x07\xC2\x80\r\n\n");
    EXPECT_EQ(desktop.proposals.back(), "$.A_#_B");
    EXPECT_EQ(desktop.filters.back(), "");
    Choose(*view, "FileSaveFile");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Cannot save saved.txt: No such file or directory"});
}

// --- While a view fills.

class FillingViewTest : public ViewTest {
  protected:
    void SetUp() override {
        ViewTest::SetUp();
        PutFile(std::string(kLongest, 'x'));
        desktop.clock_step = std::chrono::microseconds(20);
    }

    /// Shows the file as hex and calls `act` once, when part of it is there.
    View ShowHex(const std::function<void(const View&)>& act) {
        bool acted = false;
        desktop.on_pump = [&] {
            const View view = Module1::gViewForm.lock();
            if (acted || view == nullptr || Text(view).Text().size() < 50000)
                return;
            acted = true;
            act(view);
        };
        Choose("FileViewAsHex");
        desktop.on_pump = nullptr;
        EXPECT_TRUE(acted) << "it was full at once";
        return Module1::gViewForm.lock();
    }

    static constexpr std::size_t kWholeText = kLongest / 16 * 76;
};

TEST_F(FillingViewTest, TheWindowCanBeUsedAndAnotherFilledMeanwhile) {
    View outer;
    View inner;
    ShowHex([&](const View& filling) {
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        EXPECT_GT(Text(filling).verticalScrollBar()->maximum(), 100);
        filling->resize(700, 400);
        Choose(*filling, "EditSelectAll");
        QTest::mouseClick(Text(filling).viewport(), Qt::LeftButton, {}, {100, 30});
        QTest::keyClick(&Text(filling), Qt::Key_PageDown);
        EXPECT_GT(Text(filling).ScrollPosition(), 0);
        outer = filling;
        inner = Show("FileViewAsText");
    });
    EXPECT_EQ(Text(outer).Text().size(), kWholeText);
    EXPECT_EQ(Text(outer).ScrollPosition(), 0);
    EXPECT_EQ(Text(outer).width(), 700);
    EXPECT_TRUE(Text(inner).Text() == std::string(kLongest, 'x')) << "one line, without its end";
    QTest::keyClick(&Text(inner), Qt::Key_End);
    EXPECT_GT(Text(inner).horizontalScrollBar()->value(), 0);
}

TEST_F(FillingViewTest, ClosingTheWindowOrTheProgramEndsTheFilling) {
    for (const bool program : {false, true}) {
        SCOPED_TRACE(program);
        QPointer<frmView> watched;
        ShowHex([&](const View& filling) {
            watched = filling.get();
            program ? window->close() : filling->close();
        });
        ASSERT_FALSE(watched.isNull());
        EXPECT_FALSE(watched->isVisible());
        EXPECT_LT(Part<EditField>(*watched, "rtbView").Text().size(), kWholeText);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(watched.isNull()) << "nobody needs it any longer";
    }
    EXPECT_EQ(desktop.quits, 1);
}

} // namespace
} // namespace quoravel
