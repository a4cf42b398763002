#include "support/main_window_test.h"

#include "disc/catalogue.h"
#include "prefs/xml_preferences.h"

#include <QApplication>
#include <QScreen>

#include <tuple>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

TEST_F(MainWindowTest, EachSideOfADiscHasAPane) {
    EXPECT_TRUE(fs::exists(folder.path() / "config/Quoravel.pref")) << "from the start on";
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
    EXPECT_EQ(Status(1), "Drive 1 : 0 files(s), 204288 Bytes Free, 512 Bytes Used");
    EXPECT_EQ(Module1::mSelectedItem, -1);
    EXPECT_FALSE(Module1::gDirty);
    window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd");
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.TEXT"}));
    EXPECT_EQ(Names(1), (Texts{"$.SIEVE", "$.SORT", "$.TEXT"}));
    EXPECT_EQ(Row(1, 0), (Texts{"$.SIEVE", "L", "FF1900", "FF8023", "000188", "006"}));
    EXPECT_EQ(SelectedRows(0), std::vector<int>{0});
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(Module1::mSelectedItem, 0);

    window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
    EXPECT_FALSE(List(1).isVisible() || Part<QLabel>(*window, "MsgText(1)").isVisible());
    EXPECT_EQ(window->width(), 400);
    EXPECT_EQ(List(0).width(), 400);
    window->OpenDisc(folder.path() / "demo-dual.dsd");
    EXPECT_TRUE(List(1).isVisible());
    EXPECT_EQ(window->width(), 800);
    EXPECT_EQ(List(1).geometry(), QRect(400, 0, 400, List(0).height()));

    window->resize(1100, 600);
    int sum = 0;
    for (int column = 0; column < 6; ++column)
        sum += List(0).columnWidth(column);
    EXPECT_EQ(sum, List(0).viewport()->width());
    EXPECT_NEAR(List(0).columnWidth(0), sum * 26 / 100, 1);
    EXPECT_NEAR(List(0).columnWidth(1), sum * 10 / 100, 1);
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

TEST_F(MainWindowTest, AFileThatCannotBeReadOrSavedIsNamedInABoxAndNothingChanges) {
    const fs::path disc = folder.path() / "Größe \xE2\x82\xAC.dsd";
    fs::copy_file(CopyOfDisc("demo-dual.dsd"), disc);
    window->OpenDisc(disc);
    window->OpenDisc(folder.path() / "gone.ssd");
    window->OpenDisc(folder.path() / "Größe.txt");
    Choose("DiscCompactDisc");
    desktop.files.emplace_back(folder.path() / "gone" / "new.dsd");
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(desktop.TakeBoxTexts(), (Texts{"Cannot open gone.ssd: No such file or directory",
                                             "Cannot open Größe.txt: No such file or directory",
                                             "Cannot save new.dsd: No such file or directory"}));
    EXPECT_EQ(Module1::gsFile, disc);
    EXPECT_EQ(Title(), "Quoravel - Größe \xE2\x82\xAC.dsd*");
    EXPECT_EQ(Names(1).size(), 3U);
    EXPECT_TRUE(Module1::gDirty);
}

TEST_F(MainWindowTest, OpeningAsksAboutChangesBeforeTheDialogAndGoesOnWhateverTheAnswer) {
    Choose("DiscCompactDisc");
    desktop.yes_no.push_back(false);
    desktop.files = {CopyOfDisc("demo-basic.ssd"), std::nullopt};
    Choose("DiscOpenDiscImage");
    EXPECT_EQ(desktop.questions.size(), 1U);
    EXPECT_EQ(desktop.filters, Texts{".img;.ssd;.dsd;.IMG;.SSD;.DSD"});
    EXPECT_EQ(desktop.dialog_folder, folder.path()) << "where the next dialog starts";
    Choose("DiscOpenDiscImage");
    EXPECT_EQ(desktop.questions.size(), 1U) << "nothing has changed, so nothing is asked";
    EXPECT_EQ(Title(), "Quoravel - demo-basic.ssd");
}

TEST_F(MainWindowTest, TheNameDecidesTheFormOfASave) {
    desktop.files = {std::nullopt, folder.path() / "one.ssd", std::nullopt,
                     folder.path() / "Two.Dsd"};
    Choose("DiscSaveDiscImage"); // without a file it asks for one
    EXPECT_TRUE(Module1::gsFile.empty());
    const fs::path disc = CopyOfDisc("demo-dual.dsd");
    window->OpenDisc(disc);
    Choose("DiscSaveDiscImageAs");
    EXPECT_EQ(BytesOf(folder.path() / "one.ssd").size(), 1280U);
    for (int save = 0; save < 2; ++save) {
        EXPECT_EQ(Title(), "Quoravel - one.ssd");
        Choose("DiscSaveDiscImageAs");
    }
    EXPECT_EQ(BytesOf(folder.path() / "Two.Dsd"), BytesOf(disc));
    EXPECT_EQ(desktop.proposals, (Texts{"NewDisc.dsd", "demo-dual.dsd", "one.ssd", "one.ssd"}));
    EXPECT_EQ(desktop.filters.back(), "") << "any file";
}

TEST_F(MainWindowTest, ASaveAfterNewGoesToTheFileOpenedBefore_Meant) {
    const fs::path disc = CopyOfDisc("demo-dual.dsd");
    window->OpenDisc(disc);
    Choose("NewDiscImageTrackDSD400Kdsd");
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
    Choose("DiscSaveDiscImage");
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd");
    EXPECT_EQ(BytesOf(disc)[2560], 0) << "the blank disc is in the file";
}

TEST_F(MainWindowTest, AFirstSaveKeepsWhatWasOpenedOrTheUserDecides) {
    const auto file = folder.File("long.ssd", std::string(1000, '\0'));
    const auto state = std::exchange(desktop.state_folder, std::nullopt);
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
    desktop.state_folder = state;
    window->OpenDisc(folder.File("long.ssd", std::string(1000, '\0')));
    for (int save = 0; save < 2; ++save)
        Choose("DiscSaveDiscImage");
    EXPECT_EQ(fs::file_size(*state / "backup/long.ssd"), 1000U);
    EXPECT_FALSE(fs::exists(*state / "backup/long-1.ssd")) << "only what the user opened is kept";
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
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Cannot save disc.dsd: No such file or directory"});
    EXPECT_EQ(BytesOf(folder.path() / "saved.dsd"), BytesOf(folder.path() / "demo-dual.dsd"));
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(MainWindowTest, TheSixNewDiscsAreWhatTheirNamesSay) {
    using Row = std::tuple<const char*, bool, int, int>;
    for (const auto& [item, two_sided, room, used] :
         {Row{"NewDiscImageTrackSSD200Kssd", false, 204288, 512},
          Row{"NewDiscImageTrackSSD100Kssd", false, 101888, 512},
          Row{"NewDiscImageTrackDSD400KdsdWatford", true, 203776, 1024},
          Row{"NewDiscImageTrackSSD200KssdWatford", false, 203776, 1024},
          Row{"NewDiscImageTrackSSD100KssdWatford", false, 101376, 1024},
          Row{"NewDiscImageTrackDSD400Kdsd", true, 204288, 512}}) {
        SCOPED_TRACE(item);
        Choose(item);
        EXPECT_EQ(Title(), two_sided ? "Quoravel - NewDisc.dsd" : "Quoravel - NewDisc.ssd");
        EXPECT_EQ(List(1).isVisible(), two_sided);
        EXPECT_EQ(Status(0), "Drive 0 : 0 files(s), " + std::to_string(room) + " Bytes Free, " +
                                 std::to_string(used) + " Bytes Used");
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
    QTest::keyClick(&List(0), Qt::Key_Tab);
    EXPECT_EQ(Module1::cur_drive, 1);
    EXPECT_EQ(Module1::mSelectedItem, 1);
    QTest::keyClick(&List(1), Qt::Key_Home);
    EXPECT_EQ(Module1::mSelectedItem, 0) << "or a file of the other list's row would be taken";

    window->GetRootTitles(0);
    EXPECT_TRUE(List(0).hasFocus()) << "the keyboard goes where the commands go";
    QFocusEvent back(QEvent::FocusIn, Qt::ActiveWindowFocusReason); // of the window, not the list
    QCoreApplication::sendEvent(&List(1), &back);
    EXPECT_EQ(Module1::cur_drive, 0);
}

TEST_F(SelectionTest, SeveralRowsByMouseAndByKey) {
    Click(1, 0);
    Click(1, 2, Qt::ControlModifier);
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 2}));
    Click(1, 0);
    QTest::keyClick(&List(1), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 1}));
    EXPECT_EQ(Module1::mSelectedItem, 1) << "a key that moves chooses the row as a click does";

    Choose("FileSelectAll");
    EXPECT_EQ(SelectedRows(1), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(SelectedRows(0), std::vector<int>{0});
    EXPECT_EQ(Module1::mSelectedItem, 0);
    QTest::keyClick(&List(0), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(SelectedRows(0), (std::vector<int>{0, 1}));
    EXPECT_EQ(Module1::cur_drive, 0);
}

TEST_F(SelectionTest, TheOtherListIsGreyInTheDarkToo) {
    const QPalette light = QApplication::palette();
    EXPECT_NE(List(0).palette().color(QPalette::Highlight),
              List(1).palette().color(QPalette::Highlight));
    QApplication::setPalette(QPalette(Qt::darkGray, Qt::black)); // as a desktop does
    QCoreApplication::processEvents();
    const QPalette& shown = List(1).palette();
    EXPECT_EQ(shown.color(QPalette::HighlightedText), QColor(Qt::white));
    EXPECT_LT(shown.color(QPalette::Highlight).lightness(), 128);
    QApplication::setPalette(light);
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
    for (const QPoint to : {QPoint(90, 340), QPoint(170, 340)}) {
        QMouseEvent move(QEvent::MouseMove, to, area.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         {});
        QCoreApplication::sendEvent(&area, &move);
    }
    QTest::mouseRelease(&area, Qt::LeftButton, {}, QPoint(170, 340));
    EXPECT_FALSE(dragged);
    EXPECT_EQ(SelectedRows(1), std::vector<int>{1});
    EXPECT_EQ(Module1::mSelectedItem, 1);
    EXPECT_EQ(Module1::cur_drive, 1);
}

TEST_F(SelectionTest, TheContextMenuIsTheFileMenuForTheRowUnderThePointer) {
    Click(1, 2, Qt::NoModifier, Qt::RightButton);
    const QPoint at(20, 30);
    QContextMenuEvent click(QContextMenuEvent::Mouse, at, List(1).viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(List(1).viewport(), &click);
    auto& menu = Part<QMenu>(*window, "FileMenu");
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(Module1::cur_drive, 1);
    EXPECT_EQ(Module1::mSelectedItem, 2);
    menu.hide();
}

TEST_F(SelectionTest, AnEmptyDriveKeepsTheDriveAndHasNoSelection) {
    Click(1, 1);
    Choose("NewDiscImageTrackDSD400Kdsd");
    for (const char* item : {"FileSelectAll", "FileLockFile", "FileUnlockFile", "FileDeleteFile",
                             "FileRenameFile", "FileSetFileAddresses", "FileExportFile"})
        Choose(item);
    EXPECT_EQ(Module1::mSelectedItem, -1);
    EXPECT_EQ(Module1::cur_drive, 1) << "only a list with rows changes it";
    EXPECT_FALSE(Module1::gDirty);
}

// --- The window's place and options, and its end.

TEST_F(MainWindowTest, TheWindowIsFoundAsItWas) {
    const QSize screen = QGuiApplication::primaryScreen()->size();
    EXPECT_EQ(window->pos(), QPoint((screen.width() - 800) / 2, (screen.height() - 600) / 2));
    EXPECT_EQ(window->width(), 800);
    EXPECT_EQ(window->centralWidget()->height(), 600);
    window->move(30, 40);
    window->resize(window->size() + QSize(-500, 50));
    EXPECT_EQ(window->width(), 400);
    EXPECT_EQ(List(0).width(), 200);
    Choose("OptionsDeleteLockedFiles");
    Choose("OptionsAutoLoad");
    window->close();
    Start();
    EXPECT_EQ(window->pos(), QPoint(30, 40));
    EXPECT_EQ(window->centralWidget()->height(), 650);
    EXPECT_EQ(window->width(), 800) << "meant: dragging goes down to 400, the start to 800";
    EXPECT_FALSE(Part<QAction>(*window, "OptionsDeleteLockedFiles").isChecked());
    EXPECT_FALSE(Part<QAction>(*window, "OptionsAutoLoad").isChecked());
    EXPECT_TRUE(Part<QAction>(*window, "OptionsPlayWave").isChecked()) << "as at the first start";
}

TEST_F(MainWindowTest, HostilePlacesInThePreferencesEndOnTheScreen) {
    for (const char* key : {"MainLeft", "MainHeight"})
        XMLPreferences::SetPrefInteger(key, 2147483647);
    for (const char* key : {"MainTop", "MainWidth"})
        XMLPreferences::SetPrefInteger(key, -2147483647 - 1);
    XMLPreferences::WritePrefFile();
    Start();
    EXPECT_EQ(window->width(), 800);
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(window->pos()));
}

TEST_F(MainWindowTest, ClosingWithYesSavesAndWithoutAFileAsksForOne) {
    Choose("DiscCompactDisc");
    desktop.yes_no = {true};
    desktop.files.emplace_back(folder.path() / "new.dsd");
    Choose("FileQuit");
    EXPECT_EQ(desktop.questions, (std::vector<ScriptedHost::Box>{
                                     {"Save your changes now ?", "Changes will be lost"}}));
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
