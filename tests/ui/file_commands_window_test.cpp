#include "disc/catalogue.h"
#include "support/main_window_test.h"

#include <QRadioButton>
#include <QTimer>

namespace quoravel {
namespace {

using Texts = std::vector<std::string>;

/// The program with a two-sided disc: drive 0 has SIEVE and TEXT, drive 1 SIEVE (locked), SORT,
/// TEXT.
class FileCommandTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
    }

    /// The open editor; one that has been closed stays a child for a while.
    QLineEdit* Editor(int drive) const {
        for (auto* editor : List(drive).findChildren<QLineEdit*>())
            if (editor->isVisible())
                return editor;
        return nullptr;
    }

    /// Types a name and a key into the open editor, as soon as there is one.
    void TypeSoon(int drive, const QString& name, Qt::Key key) const {
        QTimer::singleShot(0, window.get(), [=, this] {
            ASSERT_NE(Editor(drive), nullptr);
            QTest::keyClicks(Editor(drive), name);
            QTest::keyClick(Editor(drive), key);
        });
    }

    /// Renames a row by the menu.
    void Rename(int drive, int row, const QString& name, Qt::Key key = Qt::Key_Return) const {
        Click(drive, row);
        TypeSoon(drive, name, key);
        Choose("FileRenameFile");
    }

    /// Types a name and does something else while the editor is still open.
    void Rename(int drive, int row, const QString& name, const std::function<void()>& act) const {
        Click(drive, row);
        QTimer::singleShot(0, window.get(), [=, this] {
            QTest::keyClicks(Editor(drive), name);
            act();
        });
        Choose("FileRenameFile");
    }
};

TEST_F(FileCommandTest, CommandsTakeEverySelectedRowAndGoOnAfterARefusal) {
    Click(1, 1);
    Click(1, 2, Qt::ControlModifier);
    Choose("FileLockFile");
    EXPECT_EQ(List(1).Cell(1, 1) + List(1).Cell(2, 1), "LL");
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd*");
    Click(1, 1);
    Choose("FileUnlockFile");

    Choose("OptionsDeleteLockedFiles"); // off: locks hold
    Choose("FileSelectAll");
    Choose("FileDeleteFile");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              (Texts{"Cannot Delete Locked File : $.SIEVE", "Cannot Delete Locked File : $.TEXT"}));
    EXPECT_EQ(Names(1), (Texts{"$.SIEVE", "$.TEXT"}));
    Rename(1, 0, QStringLiteral("NEW"));
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Cannot Rename Locked File : $.SIEVE"});
    Choose("OptionsDeleteLockedFiles");
    Choose("FileDeleteFile");
    EXPECT_EQ(Names(1), Texts{"$.TEXT"});
    EXPECT_EQ(Names(0).size(), 2U);
}

TEST_F(FileCommandTest, EnterTabAndLosingTheFocusCommitARename) {
    Rename(0, 0, QStringLiteral("g.primes"));
    EXPECT_EQ(Names(0), (Texts{"$.TEXT", "g.primes"}));
    EXPECT_EQ(Editor(0), nullptr);
    Rename(0, 1, QStringLiteral("NEW"), Qt::Key_Tab);
    EXPECT_EQ(Names(0), (Texts{"$.NEW", "$.TEXT"}));
    for (const char* name : {"left", "text"}) // the second is refused, so the old name stays
        Rename(1, name[0] == 'l' ? 1 : 0, QLatin1StringView(name), [this] { Click(0, 1); });
    EXPECT_EQ(Names(1), (Texts{"$.left", "$.SIEVE", "$.TEXT"}));
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"$.text Already Exists"});
}

TEST_F(FileCommandTest, AnUntouchedEditIsACommitByKeyAlone) {
    Rename(0, 0, QString(), [this] { Click(1, 2); });
    EXPECT_TRUE(desktop.boxes.empty());
    Rename(0, 0, QString(), [this] { QTest::keyClick(Editor(0), Qt::Key_Return); });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"$.SIEVE Already Exists"});
    Rename(0, 0, QString(), [this] { // a letter that no disc can hold
        Editor(0)->setText(QStringLiteral("$.\u20AC"));
        QTest::keyClick(Editor(0), Qt::Key_Return);
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.\x1A Contains Illegal Characters"});
    EXPECT_EQ(Names(0).front(), "$.SIEVE");
}

TEST_F(FileCommandTest, EscapeAndAClearedEditRenameNothing) {
    Rename(0, 0, QStringLiteral("OTHER"), Qt::Key_Escape);
    Rename(0, 0, QString(), [this] {
        QTest::keyClick(Editor(0), Qt::Key_Delete);
        QTest::keyClick(Editor(0), Qt::Key_Return);
    });
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.TEXT"}));
    EXPECT_FALSE(Module1::gDirty);
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(FileCommandTest, ANewDiscDuringARenameOnItsHiddenSideRenamesNothing) {
    Rename(1, 1, QStringLiteral("GHOST"), [this] { Choose("NewDiscImageTrackSSD200Kssd"); });
    EXPECT_EQ(Title(), "Quoravel - NewDisc.ssd");
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(GetPos(1, "$.GHOST"), -1);
    EXPECT_TRUE(List(0).hasFocus());
}

TEST_F(FileCommandTest, ANameThatWasTypedIsAskedAboutWhenTheWindowCloses) {
    desktop.yes_no = {true};
    Rename(0, 0, QStringLiteral("LAST"), [this] {
        window->close();
        Module1::mSelectedItem = 99; // a rename that went on would rebuild the list and reset this
    });
    EXPECT_EQ(desktop.questions.size(), 1U);
    EXPECT_NE(TextOf(folder.path() / "demo-dual.dsd").find("LAST   $"), std::string::npos);
    EXPECT_EQ(Module1::mSelectedItem, 99);
    EXPECT_EQ(desktop.quits, 1);
}

TEST_F(FileCommandTest, F2AndTheMenuKeyAreForTheRowOfTheListThatHasTheKeyboard) {
    Click(0, 1);
    List(1).setFocus(Qt::TabFocusReason); // leaves the row number as it was
    QTest::keyClick(&List(1), Qt::Key_End);
    QTest::keyClick(&List(1), Qt::Key_Delete);
    EXPECT_EQ(Names(1).size(), 3U) << "there is neither question nor undo";
    Module1::cur_drive = 0;
    Module1::mSelectedItem = 0;
    TypeSoon(1, QStringLiteral("F2"), Qt::Key_Return);
    QTest::keyClick(&List(1), Qt::Key_F2);
    EXPECT_EQ(Names(1), (Texts{"$.F2", "$.SIEVE", "$.SORT"}));
    EXPECT_EQ(Module1::cur_drive, 1);

    Module1::cur_drive = 0;
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(List(1).viewport(), &key);
    EXPECT_EQ(Module1::cur_drive, 1);
    Part<QMenu>(*window, "FileMenu").hide();
}

TEST_F(FileCommandTest, ACommandDuringARenameRunsInsideItAndEndsIt) {
    Rename(0, 0, QString(), [this] { Choose("FileDeleteFile"); });
    EXPECT_EQ(Names(0), Texts{"$.TEXT"});
    window->OpenDisc(folder.path() / "demo-dual.dsd");
    Rename(0, 0, QStringLiteral("ONE"), [this] {
        Module1::mSelectedItem = 1;
        TypeSoon(0, QStringLiteral("TWO"), Qt::Key_Return);
        Choose("FileRenameFile");
    });
    EXPECT_EQ(Names(0), (Texts{"$.ONE", "$.TWO"}));
}

TEST_F(FileCommandTest, AddressesAreCheckedByTheDialogAndShownInTheRow) {
    Click(0, 0);
    InDialog("FileSetFileAddresses", [](QWidget& dialog) {
        Type(dialog, "txtExec", QStringLiteral("19"));
        Press(dialog, "cmdCancel");
    });
    EXPECT_FALSE(Module1::gDirty);
    InDialog("FileSetFileAddresses", [](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Set File Addresses"));
        Type(dialog, "txtLoad", QStringLiteral("12G"));
        Press(dialog, "cmdOK");
        EXPECT_TRUE(dialog.isVisible());
        Type(dialog, "txtLoad", QStringLiteral("19"));
        Type(dialog, "txtExec", QStringLiteral("ff8024"));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Load Address Contains Illegal Characters"});
    EXPECT_EQ(List(0).Cell(0, 2), "FF0019") << "the high bits follow the exec address, as meant";
    EXPECT_EQ(List(0).Cell(0, 3), "FF8024");
    EXPECT_TRUE(Module1::gDirty);
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd") << "the star comes with the next refresh";
}

TEST_F(FileCommandTest, TheTitleDialogClosesWhetherTheTitleWasAcceptedOrNot) {
    Click(1, 0);
    InDialog("DiscSetTitle", [](QWidget& dialog) {
        auto& field = Part<QLineEdit>(dialog, "txtTitle");
        EXPECT_EQ(field.cursorPosition(), field.text().size());
        Type(dialog, "txtTitle", QStringLiteral("  GAMES 1  "));
        QTest::keyClick(&field, Qt::Key_Return);
    });
    InDialog("DiscSetTitle", [](QWidget& dialog) {
        Type(dialog, "txtTitle", QStringLiteral("A.B"));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Title A.B Contains Illegal Characters"});
    EXPECT_EQ(GetTitle(1), "GAMES 1");
}

TEST_F(FileCommandTest, ABootOptionIsStoredAndCountsAsNoChange_Meant) {
    Click(1, 0);
    InDialog("DiscSetBootOptions", [](QWidget& dialog) {
        Part<QRadioButton>(dialog, "optExec").click();
        Press(dialog, "cmdOK");
    });
    EXPECT_FALSE(Module1::gDirty);
    InDialog("DiscSetBootOptions", [](QWidget& dialog) {
        EXPECT_TRUE(Part<QRadioButton>(dialog, "optExec").isChecked());
        Part<QRadioButton>(dialog, "optOff").click();
        Press(dialog, "cmdCancel");
    });
    EXPECT_EQ(BootOption(1), 3);
}

} // namespace
} // namespace quoravel
