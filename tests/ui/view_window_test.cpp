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
    window->OpenDisc(CopyOfDisc("demo-code.ssd"));
    Module1::mSelectedItem = 0;
    const auto names = Names(0);
    const auto code = std::ranges::find(names, "$.OPS");
    ASSERT_NE(code, names.end());

    using Row = std::tuple<const char*, const char*, const char*, const char*>;
    for (const auto& [item, title, name, start] :
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
        Click(0, static_cast<int>(code - names.begin()));
        const View view = Show(item);
        EXPECT_TRUE(view->isVisible());
        EXPECT_EQ(Title(view), title);
        EXPECT_EQ(view->gName, name);
        EXPECT_TRUE(Text(view).Text().starts_with(start)) << Text(view).Text().substr(0, 80);
        EXPECT_FALSE(Text(view).Text().empty());
        view->close();
    }
}

TEST_F(ViewWindowTest, WithoutASelectedFileOnlyDiscViewsOpen) {
    ASSERT_EQ(Module1::mSelectedItem, -1);
    for (const char* item : {"FileViewAsText", "FileViewAsHex", "FileViewAsBasic",
                             "FileDisassembleFile", "FileViewAsWordwise"})
        EXPECT_EQ(Show(item), nullptr) << item;
    for (const char* item : {"DiscViewAsCAT", "DiscViewAsEX", "DiscViewFreeSpaceMap"})
        EXPECT_NE(Show(item), nullptr) << item;
}

TEST_F(ViewWindowTest, ARowOfTheListThatWasLeftShowsNothing) {
    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    Click(1, 2);
    List(0).setFocus(); // which has two rows
    ASSERT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(Text(Show("FileViewAsHex")).Text(), "");
}

TEST_F(ViewWindowTest, FilesOfTheSecondDriveAreReadThere) {
    DiscBuilder(0).File({.name = "ZERO", .length = 4, .sector = 2}).Data(2, "zero");
    DiscBuilder(1).File({.name = "ONE", .length = 3, .sector = 2}).Byte(512, 'o');
    window->GetRootTitles(0);
    window->GetRootTitles(1);
    Click(1, 0);
    const View view = Show("FileViewAsText");
    EXPECT_EQ(Text(view).Text(), std::string("o\0\0", 3));
    EXPECT_EQ(Title(view), "View File - $.ONE");
}

TEST_F(ViewWindowTest, AFileWithoutALineEndIsOneLine) {
    const std::string bytes(kLongest, 'x');
    const View view = ShowText(bytes);
    EXPECT_TRUE(Text(view).Text() == bytes);
    QTest::keyClick(&Text(view), Qt::Key_End);
    EXPECT_GT(Text(view).horizontalScrollBar()->value(), 0);
}

TEST_F(ViewWindowTest, EachRequestOpensAWindowOfItsOwnAtItsFirstLine) {
    PutFile(std::string(20000, 'x'));
    const View first = Show("FileViewAsHex");
    const View second = Show("FileViewAsText");
    EXPECT_NE(first, second);
    EXPECT_TRUE(first->isVisible() && second->isVisible());
    EXPECT_EQ(Text(first).ScrollPosition(), 0);
    QTest::keyClick(&Text(first), Qt::Key_PageDown);
    EXPECT_GT(Text(first).ScrollPosition(), 0);
    EXPECT_LT(Text(first).ScrollPosition(), 100) << "the next page, not the last";
    first->fp = 7;
    EXPECT_EQ(second->fp, 0);
}

TEST_F(ViewWindowTest, ALaterChangeOfTheDiscLeavesAnOpenViewAlone) {
    const View view = ShowText("before");
    PutFile("behind");
    EXPECT_EQ(Text(view).Text(), "before");
}

TEST_F(ViewWindowTest, AWindowOpensInTheMiddleAndThenWhereTheLastOneWasClosed) {
    View view = Show("DiscViewAsCAT");
    EXPECT_EQ(Text(view).size(), QSize(611, 359));
    EXPECT_EQ(view->pos(),
              QPoint((ScreenSize().width() - 611) / 2, (ScreenSize().height() - 359) / 2));
    view->move(40, 60);
    view->resize(500, 300);
    const QSize size = Text(view).size();
    window->close(); // and with it the view
    EXPECT_FALSE(view->isVisible());
    view.reset();
    Start();
    view = Show("DiscViewAsEX");
    EXPECT_EQ(view->pos(), QPoint(40, 60));
    EXPECT_EQ(Text(view).size(), size);
    EXPECT_EQ(size.width(), 500);
}

TEST_F(ViewWindowTest, ClosingGoesByKeyAndQuittingClosesTheProgram) {
    View view = Show("DiscViewAsCAT");
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    QTest::keyClick(view.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(view->isVisible());
    EXPECT_TRUE(window->isVisible());

    view = Show("DiscViewAsCAT");
    Module1::gDirty = true;
    desktop.yes_no = {false};
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    QTest::keyClick(view.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ViewWindowTest, ATextToReadCanBeCopiedButNotCut) {
    const View view = ShowText("a text");
    for (const char* item : {"EditCut", "EditPaste", "EditClear"})
        EXPECT_FALSE(Item(view, item).isEnabled()) << item;
    Choose(view, "EditSelectAll");
    EXPECT_EQ(Selection(view), "0:a text");
    Choose(view, "EditCopy");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("a text"));
}

// Meant: see the flags.
TEST_F(ViewWindowTest, AViewInheritsTheStyleThatADocumentLeftOn) {
    WordWise::Underline = true;
    WordWise::DoubleStrike = true;
    const View view = ShowText("styled");
    const QTextCharFormat format =
        Text(view).document()->firstBlock().begin().fragment().charFormat();
    EXPECT_TRUE(format.fontUnderline());
    EXPECT_EQ(format.fontWeight(), QFont::Bold);
}

// --- Saving.

TEST_F(ViewWindowTest, ASavedViewHasTheTextInUtf8AndOneMoreLineEnd) {
    const View view = ShowText("one\rtwo \xA3\x07\x80\r");
    const auto file = folder.path() / "saved.txt";
    desktop.files = {file};
    Choose(view, "FileSaveFile");
    EXPECT_EQ(TextOf(file), "one\r\ntwo \xC2\xA3\x07\xC2\x80\r\n\n");
}

TEST_F(ViewWindowTest, TheNameProposedIsThatOfTheFile) {
    PutFile("text", "A/\xA3:B");
    desktop.files = {{}, {}, {}};
    for (const char* item : {"FileViewAsHex", "DiscViewFreeSpaceMap", "DiscViewAsCAT"})
        Choose(Show(item), "FileSaveFile");
    EXPECT_EQ(desktop.proposals, (std::vector<std::string>{"$.A_#_B", "FreeSpace", ""}));
    EXPECT_EQ(desktop.filters.back(), "");
}

TEST_F(ViewWindowTest, ASaveThatFailsIsTold) {
    const View view = ShowText("text");
    desktop.files = {folder.path() / "no folder" / "saved.txt"};
    Choose(view, "FileSaveFile");
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

    /// Lets the event loop delete what is to be deleted.
    static void CollectWindows() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static constexpr std::size_t kWholeText = kLongest / 16 * 76;
};

TEST_F(FillingViewTest, TheWindowCanBeUsed) {
    const View view = ShowHex([](const View& filling) {
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        EXPECT_GT(Text(filling).verticalScrollBar()->maximum(), 100);
        filling->resize(700, 400);
        Choose(filling, "EditSelectAll");
        QTest::mouseClick(Text(filling).viewport(), Qt::LeftButton, {}, {100, 30});
        QTest::keyClick(&Text(filling), Qt::Key_PageDown);
        EXPECT_GT(Text(filling).ScrollPosition(), 0);
    });
    EXPECT_EQ(Text(view).Text().size(), kWholeText);
    EXPECT_TRUE(Text(view).Text().ends_with("\r\n"));
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
    EXPECT_EQ(Text(view).width(), 700);
}

TEST_F(FillingViewTest, ClosingTheWindowEndsTheFilling) {
    QPointer<frmView> watched;
    std::size_t shown = 0;
    ShowHex([&](const View& filling) {
        watched = filling.get();
        shown = Text(filling).Text().size();
        filling->close();
    });
    ASSERT_FALSE(watched.isNull());
    EXPECT_FALSE(watched->isVisible());
    EXPECT_EQ(Text(View(watched.get(), [](frmView*) {})).Text().size(), shown);
    CollectWindows();
    EXPECT_TRUE(watched.isNull()) << "nobody needs it any longer";
}

TEST_F(FillingViewTest, AnotherViewCanBeFilledMeanwhile) {
    View inner;
    View outer;
    ShowHex([&](const View& filling) {
        outer = filling;
        inner = Show("FileViewAsText");
    });
    EXPECT_EQ(Text(inner).Text().size(), static_cast<std::size_t>(kLongest));
    EXPECT_EQ(Text(outer).Text().size(), kWholeText);
}

TEST_F(FillingViewTest, QuittingTheProgramEndsTheFilling) {
    QPointer<frmView> watched;
    ShowHex([&](const View& filling) {
        watched = filling.get();
        window->close();
    });
    EXPECT_EQ(desktop.quits, 1);
    ASSERT_FALSE(watched.isNull());
    EXPECT_LT(Text(View(watched.get(), [](frmView*) {})).Text().size(), kWholeText);
    CollectWindows();
    EXPECT_TRUE(watched.isNull());
}

} // namespace
} // namespace quoravel
