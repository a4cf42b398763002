#include "support/main_window_test.h"

#include "disc/catalogue.h"
#include "prefs/xml_preferences.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>

#include <tuple>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using Box = ScriptedHost::Box;

const Box kSaveQuestion{"Save your changes now ?", "Changes will be lost"};

TEST_F(MainWindowTest, ItStartsWithABlankTwoSidedDisc) {
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
    EXPECT_TRUE(List(0).isVisible() && List(1).isVisible());
    EXPECT_EQ(Status(0), "Drive 0 : 0 files(s), 204288 Bytes Free, 512 Bytes Used");
    EXPECT_EQ(Status(1), "Drive 1 : 0 files(s), 204288 Bytes Free, 512 Bytes Used");
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(Module1::mSelectedItem, -1);
    EXPECT_FALSE(Module1::gDirty);
    EXPECT_EQ(TextOf(folder.path() / "config/Quoravel.pref").find("<key>"), std::string::npos)
        << "a first run leaves preferences without keys behind";
}

TEST_F(MainWindowTest, ATwoSidedImageShowsBothSidesSortedWithRow0OfDrive0Selected) {
    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd");
    EXPECT_EQ(Names(0), (std::vector<std::string>{"$.SIEVE", "$.TEXT"}));
    EXPECT_EQ(Names(1), (std::vector<std::string>{"$.SIEVE", "$.SORT", "$.TEXT"}));
    EXPECT_EQ(Row(1, 0),
              (std::vector<std::string>{"$.SIEVE", "L", "FF1900", "FF8023", "000188", "006"}));
    EXPECT_EQ(SelectedRows(0), std::vector<int>{0});
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(Module1::mSelectedItem, 0);
    EXPECT_EQ(List(0).headerItem()->text(0), QStringLiteral("FileName"));
}

TEST_F(MainWindowTest, AOneSidedImageTakesOnePaneAndHalfTheWindow) {
    window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
    EXPECT_FALSE(List(1).isVisible());
    EXPECT_FALSE(window->findChild<QLabel*>(QStringLiteral("MsgText(1)"))->isVisible());
    EXPECT_EQ(window->width(), 400);
    EXPECT_EQ(List(0).width(), 400);
    EXPECT_EQ(Names(0).size(), 7U);

    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    EXPECT_TRUE(List(1).isVisible());
    EXPECT_EQ(window->width(), 800);
    EXPECT_EQ(List(1).geometry(), QRect(400, 0, 400, List(0).height()));
}

TEST_F(MainWindowTest, ColumnsKeepTheirShareOfTheList) {
    window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
    for (const int width : {400, 1000}) {
        SCOPED_TRACE(width);
        window->resize(width, 600);
        const int all = List(0).viewport()->width();
        EXPECT_NEAR(List(0).columnWidth(0), all * 26 / 100, 1);
        EXPECT_NEAR(List(0).columnWidth(1), all * 10 / 100, 1);
        EXPECT_NEAR(List(0).columnWidth(5), all * 16 / 100, 1);
        int sum = 0;
        for (int column = 0; column < 6; ++column)
            sum += List(0).columnWidth(column);
        EXPECT_EQ(sum, all);
    }
}

TEST_F(MainWindowTest, ANameWithNoKnownEndingBecomesTheCurrentFileAndLoadsNothing_Meant) {
    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    window->OpenDisc(folder.File("notes.txt", "hello"));
    EXPECT_EQ(Names(0).size(), 2U);
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd") << "until the next refresh";
    Choose("DiscCompactDisc");
    EXPECT_EQ(Title(), "Quoravel - notes.txt*");
    Choose("DiscSaveDiscImage");
    EXPECT_NE(TextOf(folder.path() / "notes.txt"), "hello");
}

TEST_F(MainWindowTest, AFileThatCannotBeReadIsNamedInABoxAndNothingChanges) {
    const fs::path disc = CopyOfDisc("demo-dual.dsd");
    window->OpenDisc(disc);
    fs::create_directory(folder.path() / "folder.ssd");
    fs::create_symlink("/dev/zero", folder.path() / "device.dsd");
    window->OpenDisc(folder.path() / "gone.dsd");
    window->OpenDisc(folder.path() / "folder.ssd");
    window->OpenDisc(folder.path() / "device.dsd");
    window->OpenDisc(folder.path() / "gone.txt");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              (std::vector<std::string>{"Cannot open gone.dsd: No such file or directory",
                                        "Cannot open folder.ssd: Is a directory",
                                        "Cannot open device.dsd: Not a regular file",
                                        "Cannot open gone.txt: No such file or directory"}));
    EXPECT_EQ(Module1::gsFile, disc);
    EXPECT_EQ(Module1::gsRoot, "demo-dual.dsd");
    EXPECT_EQ(Names(1).size(), 3U);
}

TEST_F(MainWindowTest, FileNamesAreShownInTheirOwnLetters) {
    const fs::path disc = folder.path() / "Größe \xE2\x82\xAC.ssd";
    fs::copy_file(CopyOfDisc("demo-basic.ssd"), disc);
    window->OpenDisc(disc);
    EXPECT_EQ(Title(), "Quoravel - Größe \xE2\x82\xAC.ssd");
    window->OpenDisc(folder.path() / "Größe.ssd");
    EXPECT_EQ(desktop.TakeBoxTexts().front(), "Cannot open Größe.ssd: No such file or directory");
}

TEST_F(MainWindowTest, OpeningAsksAboutChangesBeforeTheDialogAndGoesOnWhateverTheAnswer) {
    Choose("DiscCompactDisc");
    desktop.yes_no.push_back(false);
    desktop.files.emplace_back(CopyOfDisc("demo-basic.ssd"));
    Choose("DiscOpenDiscImage");
    EXPECT_EQ(desktop.questions, std::vector<Box>{kSaveQuestion});
    EXPECT_EQ(desktop.filters, std::vector<std::string>{".img;.ssd;.dsd;.IMG;.SSD;.DSD"});
    EXPECT_EQ(Title(), "Quoravel - demo-basic.ssd");

    desktop.files.emplace_back(); // Cancel
    Choose("DiscOpenDiscImage");
    EXPECT_EQ(desktop.questions.size(), 1U) << "nothing has changed, so nothing is asked";
    EXPECT_EQ(Title(), "Quoravel - demo-basic.ssd");
}

TEST_F(MainWindowTest, TheNameDecidesTheFormOfASave) {
    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    const auto original = BytesOf(folder.path() / "demo-dual.dsd");
    desktop.files.emplace_back(folder.path() / "one.ssd");
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(desktop.proposals, std::vector<std::string>{"demo-dual.dsd"});
    EXPECT_EQ(desktop.filters, std::vector<std::string>{""}) << "any file";
    EXPECT_EQ(BytesOf(folder.path() / "one.ssd").size(), 1280U);
    EXPECT_EQ(Title(), "Quoravel - one.ssd");

    desktop.files.emplace_back(folder.path() / "Two.Dsd");
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(BytesOf(folder.path() / "Two.Dsd"), original);
    EXPECT_EQ(desktop.proposals.back(), "one.ssd");
}

TEST_F(MainWindowTest, ASaveAfterNewGoesToTheFileOpenedBefore_Meant) {
    const fs::path disc = CopyOfDisc("demo-dual.dsd");
    window->OpenDisc(disc);
    Choose("NewDiscImageTrackDSD400Kdsd");
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
    EXPECT_EQ(Names(0).size(), 0U);
    Choose("DiscSaveDiscImage");
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd");
    EXPECT_EQ(BytesOf(disc)[2560], 0) << "the blank disc is in the file";
}

TEST_F(MainWindowTest, ASaveWithoutAFileAsksForOneAndCancelChangesNothing) {
    desktop.files.emplace_back(); // Cancel
    Choose("DiscSaveDiscImage");
    EXPECT_TRUE(Module1::gsFile.empty());
    const fs::path disc = CopyOfDisc("demo-basic.ssd");
    window->OpenDisc(disc);
    EXPECT_EQ(desktop.dialog_folder, folder.path()) << "where the next dialog starts";
    desktop.files.emplace_back();
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(Module1::gsFile, disc);
    EXPECT_EQ(Title(), "Quoravel - demo-basic.ssd");
}

TEST_F(MainWindowTest, AFailedSaveIsToldAndLeavesEverythingAsItWas) {
    const fs::path disc = CopyOfDisc("demo-dual.dsd");
    window->OpenDisc(disc);
    Choose("DiscCompactDisc");
    desktop.files.emplace_back(folder.path() / "gone" / "new.dsd");
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Cannot save new.dsd: No such file or directory"});
    EXPECT_TRUE(Module1::gDirty);
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd*");
    EXPECT_EQ(Module1::gsFile, disc);
}

TEST_F(MainWindowTest, AFirstSaveThatShortensTheOpenedFileKeepsItAsItWas) {
    const auto file = folder.File("long.ssd", std::string(204800, '\0'));
    const auto backup = folder.path() / "state" / "backup";
    ASSERT_TRUE(window->OpenDisc(file));
    for (int save = 0; save < 2; ++save)
        Choose("DiscSaveDiscImage");
    EXPECT_EQ(fs::file_size(file), 256U);
    EXPECT_EQ(fs::file_size(backup / "long.ssd"), 204800U);
    EXPECT_FALSE(fs::exists(backup / "long-1.ssd")) << "only what the user opened is kept";
}

TEST_F(MainWindowTest, WhenNoCopyCanBeKeptTheUserDecides) {
    const auto file = folder.File("long.ssd", std::string(1000, '\0'));
    desktop.state_folder.reset();
    for (const bool save : {false, true}) {
        ASSERT_TRUE(window->OpenDisc(file));
        Module1::gDirty = true;
        desktop.yes_no = {save};
        Choose("DiscSaveDiscImage");
        EXPECT_EQ(desktop.questions.back().text, "No copy of the old long.ssd could be kept: No "
                                                 "folder for a safety copy. Save all the same ?");
        EXPECT_EQ(fs::file_size(file), save ? 256U : 1000U);
        EXPECT_EQ(Module1::gDirty, !save);
    }
}

TEST_F(MainWindowTest, WhenTheSaveOfAQuestionFailsAnotherPlaceIsOffered) {
    fs::create_directory(folder.path() / "usb");
    fs::copy_file(CopyOfDisc("demo-dual.dsd"), folder.path() / "usb/disc.dsd");
    window->OpenDisc(folder.path() / "usb/disc.dsd");
    fs::remove_all(folder.path() / "usb"); // pulled out
    Choose("DiscCompactDisc");

    desktop.yes_no = {true};
    desktop.files.emplace_back(folder.path() / "saved.dsd");
    Choose("NewDiscImageTrackSSD200Kssd");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Cannot save disc.dsd: No such file or directory"});
    EXPECT_EQ(BytesOf(folder.path() / "saved.dsd"), BytesOf(folder.path() / "demo-dual.dsd"));
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(MainWindowTest, TheSixNewDiscsAreWhatTheirNamesSay) {
    using Row = std::tuple<const char*, bool, const char*>;
    for (const auto& [item, two_sided, room] :
         {Row{"NewDiscImageTrackSSD200Kssd", false, "204288 Bytes Free, 512 Bytes Used"},
          Row{"NewDiscImageTrackSSD100Kssd", false, "101888 Bytes Free, 512 Bytes Used"},
          Row{"NewDiscImageTrackDSD400KdsdWatford", true, "203776 Bytes Free, 1024 Bytes Used"},
          Row{"NewDiscImageTrackSSD200KssdWatford", false, "203776 Bytes Free, 1024 Bytes Used"},
          Row{"NewDiscImageTrackSSD100KssdWatford", false, "101376 Bytes Free, 1024 Bytes Used"},
          Row{"NewDiscImageTrackDSD400Kdsd", true, "204288 Bytes Free, 512 Bytes Used"}}) {
        SCOPED_TRACE(item);
        Choose(item);
        EXPECT_EQ(Title(), two_sided ? "Quoravel - NewDisc.dsd" : "Quoravel - NewDisc.ssd");
        EXPECT_EQ(List(1).isVisible(), two_sided);
        EXPECT_EQ(Status(0), std::string("Drive 0 : 0 files(s), ") + room);
    }
}

// --- The selection that the two lists share.

class SelectionTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    }
};

TEST_F(SelectionTest, FocusAloneChoosesTheDriveAndLeavesTheRow_Meant) {
    Click(0, 1);
    List(1).setFocus(Qt::TabFocusReason);
    EXPECT_EQ(Module1::cur_drive, 1);
    EXPECT_EQ(Module1::mSelectedItem, 1);
}

TEST_F(SelectionTest, AWindowThatComesBackToTheFrontChoosesNothing) {
    List(1).setFocus(Qt::TabFocusReason);
    window->GetRootTitles(1);
    window->GetRootTitles(0);
    QFocusEvent back(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(&List(1), &back);
    EXPECT_EQ(Module1::cur_drive, 0);
}

TEST_F(SelectionTest, SeveralRowsByMouseAndByKey) {
    Click(1, 0);
    Click(1, 2, Qt::ControlModifier);
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 2}));
    Click(1, 0);
    Click(1, 2, Qt::ShiftModifier);
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 1, 2}));
    Click(1, 0);
    QTest::keyClick(&List(1), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 1}));
    EXPECT_EQ(Module1::mSelectedItem, 1) << "a key that moves chooses the row as a click does";
    QTest::keyClick(&List(1), Qt::Key_End);
    EXPECT_EQ(Module1::mSelectedItem, 2);
    EXPECT_EQ(SelectedRows(1), std::vector<int>{2});
}

TEST_F(SelectionTest, HomeChoosesARowThatIsCurrentAlready) {
    Click(0, 1);
    QTest::keyClick(&List(0), Qt::Key_Tab);
    QTest::keyClick(&List(1), Qt::Key_Home);
    EXPECT_EQ(Module1::cur_drive, 1);
    EXPECT_EQ(Module1::mSelectedItem, 0) << "or a file of the other list's row would be taken";
}

TEST_F(SelectionTest, TheGreyOfTheOtherListFollowsTheDesktopIntoTheDark) {
    const QPalette light = QApplication::palette();
    QApplication::setPalette(QPalette(Qt::darkGray, Qt::black)); // as a desktop does
    QCoreApplication::processEvents();
    const QPalette& shown = List(1).palette();
    EXPECT_EQ(shown.color(QPalette::HighlightedText), QColor(Qt::white));
    EXPECT_LT(shown.color(QPalette::Highlight).lightness(), 128);
    QApplication::setPalette(light);
}

TEST_F(SelectionTest, AClickBesideTheRowsLeavesTheSelection) {
    Click(1, 1);
    QTest::mouseClick(List(1).viewport(), Qt::LeftButton, {}, QPoint(50, 400));
    EXPECT_EQ(SelectedRows(1), std::vector<int>{1});
    EXPECT_EQ(Module1::mSelectedItem, 1);
}

TEST_F(SelectionTest, APressBesideTheRowsDragsNothingAndChoosesTheDrive) {
    Click(1, 1);
    bool dragged = false;
    List(1).DragRow = [&] {
        dragged = true;
        return std::vector<fs::path>();
    };
    Module1::cur_drive = 0;
    QWidget& area = *List(1).viewport();
    QTest::mousePress(&area, Qt::LeftButton, {}, QPoint(50, 300));
    for (const int x : {90, 130, 170}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 340), area.mapToGlobal(QPointF(x, 340)),
                         Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&area, &move);
    }
    QTest::mouseRelease(&area, Qt::LeftButton, {}, QPoint(170, 340));
    EXPECT_FALSE(dragged);
    EXPECT_EQ(SelectedRows(1), std::vector<int>{1});
    EXPECT_EQ(Module1::cur_drive, 1);
}

TEST_F(SelectionTest, TheKeyboardGoesWhereTheCommandsGo) {
    Click(1, 1);
    window->GetRootTitles(1);
    EXPECT_TRUE(List(1).hasFocus());
    window->GetRootTitles(0);
    EXPECT_TRUE(List(0).hasFocus());
    EXPECT_NE(List(0).palette().color(QPalette::Active, QPalette::Highlight),
              List(1).palette().color(QPalette::Active, QPalette::Highlight))
        << "the selection of the other list is grey";
}

TEST_F(SelectionTest, AOneSidedDiscTakesTheCommandsToDrive0InAnInactiveWindowToo) {
    Click(1, 1);
    QApplication::setActiveWindow(nullptr);
    Choose("NewDiscImageTrackSSD200Kssd");
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(List(1).ListCount(), 0);
}

TEST_F(SelectionTest, SelectAllTakesEveryRowOfTheCurrentList) {
    Click(1, 1);
    Choose("FileSelectAll");
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(SelectedRows(0), std::vector<int>{0});
    EXPECT_EQ(Module1::mSelectedItem, 0);
    QTest::keyClick(&List(0), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(SelectedRows(0), (std::vector<int>{0, 1}));
}

TEST_F(SelectionTest, TheContextMenuIsTheFileMenuForTheRowUnderThePointer) {
    Click(1, 2, Qt::NoModifier, Qt::RightButton);
    const QPoint at(20, 30);
    QContextMenuEvent click(QContextMenuEvent::Mouse, at, List(1).viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(List(1).viewport(), &click);
    auto* menu = window->findChild<QMenu*>(QStringLiteral("FileMenu"));
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(Module1::cur_drive, 1);
    EXPECT_EQ(Module1::mSelectedItem, 2);
    menu->hide();
}

TEST_F(SelectionTest, AnEmptyDriveKeepsTheDriveAndHasNoSelection) {
    Click(1, 1);
    Choose("NewDiscImageTrackDSD400Kdsd");
    EXPECT_EQ(Module1::mSelectedItem, -1);
    EXPECT_EQ(Module1::cur_drive, 1) << "only a list with rows changes it";
    Choose("FileSelectAll");
    EXPECT_EQ(Module1::mSelectedItem, -1);
}

// --- The window's place, and its end.

TEST_F(MainWindowTest, TheWindowIsFoundWhereItWas) {
    const QSize screen = QGuiApplication::primaryScreen()->size();
    EXPECT_EQ(window->pos(), QPoint((screen.width() - 800) / 2, (screen.height() - 600) / 2));
    EXPECT_EQ(window->width(), 800);
    EXPECT_EQ(window->centralWidget()->height(), 600);
    window->move(30, 40);
    window->resize(window->size() + QSize(0, 50)); // no wider than this screen
    window->close();
    Start();
    EXPECT_EQ(window->pos(), QPoint(30, 40));
    EXPECT_EQ(window->centralWidget()->size(), QSize(800, 650));
}

TEST_F(MainWindowTest, StartHoldsTheWidthTo800AndDraggingTo400_Meant) {
    window->resize(300, 500);
    EXPECT_EQ(window->width(), 400);
    EXPECT_EQ(List(0).width(), 200);
    window->close();
    Start();
    EXPECT_EQ(window->width(), 800);
}

TEST_F(MainWindowTest, HostilePlacesInThePreferencesEndOnTheScreen) {
    XMLPreferences::SetPrefInteger("MainLeft", 2147483647);
    XMLPreferences::SetPrefInteger("MainTop", -2147483647 - 1);
    XMLPreferences::SetPrefInteger("MainWidth", -5);
    XMLPreferences::SetPrefInteger("MainHeight", 2147483647);
    XMLPreferences::WritePrefFile();
    Start();
    EXPECT_EQ(window->width(), 800);
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(window->pos()));
}

TEST_F(MainWindowTest, ClosingAsksOnceAndADeclinedSaveIsLost) {
    const fs::path disc = CopyOfDisc("demo-gaps.ssd");
    const auto before = BytesOf(disc);
    window->OpenDisc(disc);
    Choose("DiscCompactDisc");
    desktop.yes_no = {false};
    window->close();
    EXPECT_EQ(desktop.questions, std::vector<Box>{kSaveQuestion});
    EXPECT_EQ(BytesOf(disc), before);
    EXPECT_EQ(desktop.quits, 1);
}

TEST_F(MainWindowTest, ClosingWithYesSavesAndWithoutAFileAsksForOne) {
    Choose("DiscCompactDisc");
    desktop.yes_no = {true};
    desktop.files.emplace_back(folder.path() / "new.dsd");
    Choose("FileQuit");
    EXPECT_EQ(desktop.proposals, std::vector<std::string>{"NewDisc.dsd"});
    EXPECT_EQ(fs::file_size(folder.path() / "new.dsd"), 409600U);
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindowTest, CloseCannotBeRefusedEvenWhenNothingCanBeSaved) {
    Choose("DiscCompactDisc");
    const fs::path gone = folder.path() / "gone/new.dsd";
    desktop.yes_no = {true, true};
    desktop.files = {gone, gone, std::nullopt};
    window->close();
    EXPECT_EQ(desktop.questions.size(), 2U) << "what could not be saved is asked about again";
    EXPECT_EQ(desktop.quits, 1);
}

} // namespace
} // namespace quoravel
