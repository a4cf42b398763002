#include "disc/catalogue.h"
#include "support/main_window_test.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
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

    [[nodiscard]] static int CycleNumber(int drive) {
        return Module1::DiscImg.Byte(GetStartSectorOfDrive(drive) + kCycleByte);
    }

    /// The open editor; one that has been closed stays a child for a while.
    QLineEdit* Editor(int drive) const {
        for (auto* editor : List(drive).findChildren<QLineEdit*>())
            if (editor->isVisible())
                return editor;
        return nullptr;
    }

    /// Chooses the rename of the clicked row; `act` gets the open editor while the command waits.
    void Rename(int drive, int row, const std::function<void(QLineEdit&)>& act) const {
        Click(drive, row);
        QTimer::singleShot(0, window.get(), [=, this] {
            ASSERT_NE(Editor(drive), nullptr);
            act(*Editor(drive));
        });
        Choose("FileRenameFile");
    }

    /// Chooses a command with a dialog; `act` gets the dialog while it stands.
    template<class Act>
    void InDialog(const char* item, const Act& act) const {
        QTimer::singleShot(0, window.get(), [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            EXPECT_TRUE(dialog->isHidden()) << "still open at the end";
            dialog->hide();
        });
        Choose(item);
    }

    static void Type(QDialog& dialog, const char* field, const QString& text) {
        auto* edit = dialog.findChild<QLineEdit*>(QLatin1StringView(field));
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }

    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QLatin1StringView(button)),
                          Qt::LeftButton);
    }
};

TEST_F(FileCommandTest, LockUnlockAndDeleteTakeEverySelectedRow) {
    Click(1, 1);
    Click(1, 2, Qt::ControlModifier);
    Choose("FileLockFile");
    EXPECT_EQ(List(1).Cell(1, 1) + List(1).Cell(2, 1), "LL");
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd*");

    Choose("FileSelectAll");
    Choose("FileUnlockFile");
    EXPECT_EQ(List(1).Cell(0, 1) + List(1).Cell(1, 1) + List(1).Cell(2, 1), "   ");

    Click(1, 0);
    Click(1, 2, Qt::ControlModifier);
    Choose("FileDeleteFile");
    EXPECT_EQ(Names(1), Texts{"$.SORT"});
    EXPECT_EQ(Names(0).size(), 2U);
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(FileCommandTest, ARefusalOnOneRowIsToldAndTheWalkGoesOn) {
    Choose("OptionsDeleteLockedFiles"); // off: locks hold
    Click(1, 0);
    Choose("FileSelectAll");
    Choose("FileDeleteFile");
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Cannot Delete Locked File : $.SIEVE"});
    EXPECT_EQ(Names(1), Texts{"$.SIEVE"});
}

TEST_F(FileCommandTest, WithNoSelectionNothingHappens) {
    Choose("NewDiscImageTrackDSD400Kdsd");
    for (const char* item : {"FileLockFile", "FileUnlockFile", "FileDeleteFile", "FileRenameFile",
                             "FileSetFileAddresses", "FileExportFile"})
        Choose(item);
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(FileCommandTest, EnterTabAndLosingTheFocusCommitARename) {
    Rename(0, 0, [](QLineEdit& editor) {
        EXPECT_EQ(editor.selectedText(), QStringLiteral("$.SIEVE"));
        QTest::keyClicks(&editor, QStringLiteral("g.primes"));
        QTest::keyClick(&editor, Qt::Key_Return);
    });
    EXPECT_EQ(Names(0), (Texts{"$.TEXT", "g.primes"}));
    EXPECT_EQ(Editor(0), nullptr);
    Rename(0, 1, [](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("NEW"));
        QTest::keyClick(&editor, Qt::Key_Tab);
    });
    EXPECT_EQ(Names(0), (Texts{"$.NEW", "$.TEXT"}));
    Rename(0, 0, [this](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("$.LEFT"));
        Click(1, 2);
    });
    EXPECT_EQ(Names(0), (Texts{"$.LEFT", "$.TEXT"}));
}

TEST_F(FileCommandTest, ARenameEndedInTheOtherListLeavesNoTypedTextBehind) {
    Rename(1, 1, [this](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("left"));
        Click(0, 1);
    });
    EXPECT_EQ(Names(1), (Texts{"$.left", "$.SIEVE", "$.TEXT"}));
    EXPECT_EQ(Module1::cur_drive, 0);
    Rename(1, 0, [this](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("text"));
        Click(0, 1);
    });
    EXPECT_EQ(Names(1), (Texts{"$.left", "$.SIEVE", "$.TEXT"})) << "refused, so the old name";
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"$.text Already Exists"});
}

TEST_F(FileCommandTest, AnEditThatLosesTheFocusUntouchedIsNoCommit) {
    Rename(0, 0, [this](QLineEdit&) { Click(1, 2); });
    EXPECT_TRUE(desktop.boxes.empty());
    Rename(0, 0, [](QLineEdit& editor) { QTest::keyClick(&editor, Qt::Key_Return); });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"$.SIEVE Already Exists"});
}

TEST_F(FileCommandTest, ANewDiscDuringARenameOnItsHiddenSideRenamesNothing) {
    Rename(1, 1, [this](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("GHOST"));
        Choose("NewDiscImageTrackSSD200Kssd");
    });
    EXPECT_EQ(Title(), "Quoravel - NewDisc.ssd");
    EXPECT_EQ(Module1::cur_drive, 0);
    EXPECT_EQ(GetPos(1, "$.GHOST"), -1);
    EXPECT_TRUE(List(0).hasFocus());
}

TEST_F(FileCommandTest, ANameThatWasTypedIsAskedAboutWhenTheWindowCloses) {
    desktop.yes_no = {true};
    Rename(0, 0, [this](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("LAST"));
        window->close();
    });
    EXPECT_EQ(desktop.questions.size(), 1U);
    const std::string saved = TextOf(folder.path() / "demo-dual.dsd");
    EXPECT_NE(saved.find("LAST   $"), std::string::npos);
}

TEST_F(FileCommandTest, EscapeAndAClearedEditRenameNothing) {
    const auto before = CycleNumber(0);
    Rename(0, 0, [](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("OTHER"));
        QTest::keyClick(&editor, Qt::Key_Escape);
    });
    Rename(0, 0, [](QLineEdit& editor) {
        QTest::keyClick(&editor, Qt::Key_Delete);
        QTest::keyClick(&editor, Qt::Key_Return);
    });
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.TEXT"}));
    EXPECT_EQ(CycleNumber(0), before);
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(FileCommandTest, ARefusedRenameIsToldOnceAndShowsTheOldName) {
    Rename(0, 0, [](QLineEdit& editor) {
        QTest::keyClicks(&editor, QStringLiteral("text"));
        QTest::keyClick(&editor, Qt::Key_Return);
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"$.text Already Exists"});
    EXPECT_EQ(Names(0).front(), "$.SIEVE");

    Rename(0, 0, [](QLineEdit& editor) { // a letter that no disc can hold
        editor.setText(QStringLiteral("$.\u20AC"));
        QTest::keyClick(&editor, Qt::Key_Return);
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.\x1A Contains Illegal Characters"});
}

TEST_F(FileCommandTest, F2RenamesAndDeleteDeletesNothing) {
    Click(0, 1);
    QTest::keyClick(&List(0), Qt::Key_Delete);
    EXPECT_EQ(Names(0).size(), 2U) << "there is neither question nor undo";
    QTimer::singleShot(0, window.get(), [this] {
        ASSERT_NE(Editor(0), nullptr);
        QTest::keyClicks(Editor(0), QStringLiteral("F2"));
        QTest::keyClick(Editor(0), Qt::Key_Return);
    });
    QTest::keyClick(&List(0), Qt::Key_F2);
    EXPECT_EQ(Names(0), (Texts{"$.F2", "$.SIEVE"}));
}

TEST_F(FileCommandTest, F2AndTheMenuKeyAreForTheRowOfTheListThatHasTheKeyboard) {
    Click(0, 1);
    List(1).setFocus(Qt::TabFocusReason); // leaves the row number as it was
    QTest::keyClick(&List(1), Qt::Key_End);
    Module1::cur_drive = 0;
    Module1::mSelectedItem = 0;
    QTimer::singleShot(0, window.get(), [this] {
        ASSERT_NE(Editor(1), nullptr);
        QTest::keyClick(Editor(1), Qt::Key_Escape);
    });
    QTest::keyClick(&List(1), Qt::Key_F2);
    EXPECT_EQ(Module1::gOldString, "$.TEXT");
    EXPECT_EQ(Module1::cur_drive, 1);

    Module1::cur_drive = 0;
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(List(1).viewport(), &key);
    EXPECT_EQ(Module1::cur_drive, 1);
    window->findChild<QMenu*>(QStringLiteral("FileMenu"))->hide();
}

TEST_F(FileCommandTest, ACommandDuringARenameRunsInsideItAndEndsIt) {
    Rename(0, 0, [this](QLineEdit&) { Choose("FileDeleteFile"); });
    EXPECT_EQ(Names(0), Texts{"$.TEXT"});

    Rename(0, 0, [this](QLineEdit&) { window->OpenDisc(folder.path() / "demo-dual.dsd"); });
    EXPECT_EQ(Names(0).size(), 2U);
}

TEST_F(FileCommandTest, ARenameInsideARenameEndsBoth) {
    Rename(0, 0, [this](QLineEdit& outer) {
        QTest::keyClicks(&outer, QStringLiteral("ONE"));
        Module1::mSelectedItem = 1;
        QTimer::singleShot(0, window.get(), [this] {
            QTest::keyClicks(Editor(0), QStringLiteral("TWO"));
            QTest::keyClick(Editor(0), Qt::Key_Return);
        });
        Choose("FileRenameFile");
    });
    EXPECT_EQ(Names(0), (Texts{"$.ONE", "$.TWO"}));
}

TEST_F(FileCommandTest, ClosingTheProgramDuringARenameEndsIt) {
    Click(0, 0);
    QTimer::singleShot(0, window.get(), [this] {
        window->close();
        Module1::mSelectedItem = 99; // a rename that went on would rebuild the list and reset this
    });
    Choose("FileRenameFile");
    EXPECT_EQ(Module1::mSelectedItem, 99);
    EXPECT_EQ(desktop.quits, 1);
}

TEST_F(FileCommandTest, AddressesAreCheckedByTheDialogAndShownInTheRow) {
    Click(0, 0);
    InDialog("FileSetFileAddresses", [this](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Set File Addresses"));
        Type(dialog, "txtLoad", QStringLiteral("12G"));
        Press(dialog, "cmdOK");
        EXPECT_TRUE(dialog.isVisible());
        Type(dialog, "txtLoad", QStringLiteral("19"));
        Type(dialog, "txtExec", QStringLiteral("ff8023"));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Load Address Contains Illegal Characters"});
    EXPECT_EQ(List(0).Cell(0, 2), "FF0019") << "the high bits follow the exec address, as meant";
    EXPECT_EQ(List(0).Cell(0, 3), "FF8023");
    EXPECT_TRUE(Module1::gDirty);
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd") << "the star comes with the next refresh";
}

TEST_F(FileCommandTest, AddressesAfterCancelStayEvenAfterARefusal) {
    Click(0, 0);
    InDialog("FileSetFileAddresses", [](QDialog& dialog) {
        Type(dialog, "txtExec", QStringLiteral("XX"));
        Press(dialog, "cmdOK");
        Press(dialog, "cmdCancel");
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Exec Address Contains Illegal Characters"});
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(FileCommandTest, TheTitleDialogClosesWhetherTheTitleWasAcceptedOrNot) {
    Click(1, 0);
    InDialog("DiscSetTitle", [](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("txtTitle"));
        EXPECT_EQ(field->cursorPosition(), field->text().size());
        Type(dialog, "txtTitle", QStringLiteral("  GAMES 1  "));
        QTest::keyClick(field, Qt::Key_Return);
    });
    EXPECT_EQ(GetTitle(1), "GAMES 1");
    InDialog("DiscSetTitle", [](QDialog& dialog) {
        Type(dialog, "txtTitle", QStringLiteral("A.B"));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Title A.B Contains Illegal Characters"});
    EXPECT_EQ(GetTitle(1), "GAMES 1");
}

TEST_F(FileCommandTest, ABootOptionIsStoredAndCountsAsNoChange_Meant) {
    Click(1, 0);
    InDialog("DiscSetBootOptions", [](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QRadioButton*>(QStringLiteral("optExec")),
                          Qt::LeftButton, {}, QPoint(8, 8));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(BootOption(1), 3);
    EXPECT_FALSE(Module1::gDirty);
    InDialog("DiscSetBootOptions", [](QDialog& dialog) {
        EXPECT_TRUE(dialog.findChild<QRadioButton*>(QStringLiteral("optExec"))->isChecked());
        dialog.findChild<QRadioButton*>(QStringLiteral("optOff"))->setChecked(true);
        Press(dialog, "cmdCancel");
    });
    EXPECT_EQ(BootOption(1), 3);
}

} // namespace
} // namespace quoravel
