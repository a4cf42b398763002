// Every wait that runs the event loop, crossed with everything that a person can reach inside it.

#include "disc/image_files.h"
#include "link/link_use.h"
#include "platform/qt/modal.h"
#include "support/disc_builder.h"
#include "support/wait_test.h"
#include "view/frmView.h"

#include <QDialog>
#include <QFileOpenEvent>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// Somebody who does one thing in the middle of a wait, `act`, and from then on leaves whatever
/// comes up: windows are closed, transfers cancelled, questions answered by No.
class HastyPerson : public StandingDesktop {
  public:
    HastyPerson() {
        on_pump = [this] { Look(); };
        glance_.setInterval(1);
        QObject::connect(&glance_, &QTimer::timeout, &glance_, [this] {
            QTimer::singleShot(0, &glance_, [this] { Look(); }); // no timer runs inside itself
        });
    }

    bool acted = false;

    /// Does `act` as soon as the wait stands that is to be disturbed.
    void Await(std::function<bool()> inside, std::function<void()> act) {
        inside_ = std::move(inside);
        act_ = std::move(act);
        acted = false;
        glance_.start();
        since_ = std::chrono::steady_clock::now();
    }

    void Rest() { glance_.stop(); }

  private:
    void Look() {
        if (quitting || !glance_.isActive())
            return;
        if (!acted && inside_()) {
            acted = true;
            act_();
        } else {
            Leave();
        }
        if (std::chrono::steady_clock::now() - since_ > 10s) {
            ADD_FAILURE() << (acted ? "the wait does not end" : "the wait was not reached");
            Quit();
        }
    }

    /// On the way to the wait only what has to be chosen is.
    void Leave() const {
        QWidget* front = QApplication::activeModalWidget();
        if (auto* dialog = qobject_cast<QDialog*>(front); dialog != nullptr && Chooses(*dialog))
            dialog->accept();
        else if (front != nullptr && acted)
            front->close();
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (acted && top->isVisible() && top->objectName() == QStringLiteral("frmRX"))
                top->close();
            for (auto* list : top->findChildren<Listbox*>())
                if (auto* editor = list->findChild<QLineEdit*>(); editor != nullptr && acted)
                    QTest::keyClick(editor, Qt::Key_Escape);
        }
    }

    std::function<bool()> inside_;
    std::function<void()> act_;
    QTimer glance_;
    std::chrono::steady_clock::time_point since_;
};

/// The program with a disc of the user's in it.
class Reentrancy : public WaitTest {
  public:
    Reentrancy() : WaitTest(std::make_unique<HastyPerson>()) {}

    using MainWindowTest::Choose;
    using MainWindowTest::folder;
    using MainWindowTest::List;
    using MainWindowTest::window;
    using WaitTest::micro;
    using WaitTest::printed;
    HastyPerson& person = static_cast<HastyPerson&>(desktop);
    bool closed = false; ///< by CloseOnce

    /// Chooses a command on a row of drive 0.
    void Choose(const char* name, int row) const {
        List(0).SelectOnly(row);
        Module1::mSelectedItem = row;
        Choose(name);
    }

    /// A new, complete view, in use.
    [[nodiscard]] frmView& OpenView() const {
        Choose("DiscViewAsCAT");
        frmView& view = *Module1::gViewForm.lock();
        QApplication::setActiveWindow(&view);
        return view;
    }

    void ChooseInView(const char* name) const { Choose(OpenView(), name); }

    /// Closes a window as soon as it stands; true from then on.
    [[nodiscard]] bool CloseOnce(const char* name) {
        if (auto* top = closed ? nullptr : Find(name)) {
            closed = true;
            top->close();
            return false;
        }
        return closed;
    }

    void DropFiles(int drive) const {
        Drop(List(drive), {folder.path() / "import1", folder.path() / "import2"});
        QCoreApplication::processEvents(); // the import follows the drop
    }

  protected:
    void SetUp() override;
    void TearDown() override;
    void StartAnew();
    [[nodiscard]] Deeds Reachable() const;
    void ExpectWhole() const;

    const fs::path disc = folder.path() / "disc.dsd";

  private:
    void MakeDisc() const;
};

void Reentrancy::SetUp() {
    WaitTest::SetUp();
    for (const char* name : {"out", "images"})
        fs::create_directory(folder.path() / name);
    for (const char* name : {"images/a.ssd", "images/b.ssd", "import1", "import2"})
        folder.File(name, "of somebody else");
    person.to_save = [this] { return folder.path() / "saved.ssd"; };
}

void Reentrancy::TearDown() {
    person.Rest();
    WaitTest::TearDown();
}

/// Four files, so that each renderer has something to do.
void Reentrancy::MakeDisc() const {
    std::string basic;
    for (char line = 1; line < 20; ++line)
        basic += std::string{'\r', 0, line, 5, '\xF1'};
    basic += "\r\xFF";
    std::string words = "some words\r\x02ZZ\x01";
    for (int i = 0; i < 20; ++i)
        words += "a line with \x02US\x01 commands\r";
    const auto length = [](const std::string& text) { return static_cast<unsigned>(text.size()); };
    constexpr unsigned kDocument = 0x3FFFF; // load and exec address
    DiscBuilder(1);
    DiscBuilder(0)
        .Title("THE USERS")
        .File({"WORDS", '$', false, kDocument, kDocument, length(words), 8})
        .File({.name = "TEXT", .length = 200, .sector = 6})
        .File({.name = "CODE", .length = 60, .sector = 4})
        .File({.name = "BASIC", .length = length(basic), .sector = 2})
        .Data(2, basic)
        .Data(4, std::string(60, '\xEA'))
        .Data(6, "some text\rin lines\r")
        .Data(8, words);
    ASSERT_FALSE(SaveDisc_DSD(disc));
}

void Reentrancy::StartAnew() {
    person.Rest();
    StartAgain();
    QApplication::setActiveWindow(window.get());
    MakeDisc();
    person.to_open = [this] { return disc; };
    person.to_folder = [this] { return folder.path() / "out"; };
    for (const auto& exported : fs::directory_iterator(folder.path() / "out"))
        fs::remove(exported);
    closed = false;
    Module1::gDirty = false;
    window->OpenDisc(disc);
    List(0).setFocus();
    person.TakeBoxTexts();
    Choose("DiscViewFreeSpaceMap");
    EXPECT_THAT(person.TakeBoxTexts(), testing::IsEmpty()) << "something still seems to go on";
}

/// All that a person, or the desktop, can do now.
Deeds Reentrancy::Reachable() const {
    Deeds deeds;
    for (QWidget* top : WindowsInReach()) {
        AddDeeds(*top, deeds);
        if (top == window.get())
            for (int drive : {0, 1})
                deeds["drop on " + std::to_string(drive)] = [this, drive] { DropFiles(drive); };
    }
    deeds["the session ends"] = [] { QApplication::closeAllWindows(); };
    deeds["a document comes"] = [this] {
        QFileOpenEvent event(QString::fromStdString(disc.string()));
        QCoreApplication::sendEvent(qApp, &event);
    };
    deeds["the lists are refreshed"] = [this] { Part<QTimer>(*window, "tmrRefresh").start(0); };
    return deeds;
}

void Reentrancy::ExpectWhole() const {
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(TextOf(disc).substr(0, 8), "THE USER") << "another disc was saved over the user's";
    if (person.quitting)
        return;
    std::vector<QPointer<QWidget>> others;
    for (QWidget* top : WindowsInReach())
        if (top != window.get())
            others.emplace_back(top);
    for (const auto& other : others)
        EXPECT_TRUE(other.isNull() || other->close()) << "a window stays";
    EXPECT_TRUE(window->isVisible() && window->isEnabled());
    const LinkUse use;
    EXPECT_TRUE(use) << "the cable is still in use";
}

/// A wait: how to get into it, and when it stands.
struct Wait {
    const char* name;
    void (*enter)(Reentrancy& t);
    bool (*inside)(Reentrancy& t);
};

void PrintTo(const Wait& wait, std::ostream* out) {
    *out << wait.name;
}

bool Stands(const char* window) {
    return Find(window) != nullptr;
}

bool ViewFills(Reentrancy& /*t*/) {
    return Stands("frmView");
}

void StartBootstrap(Reentrancy& t) {
    QTimer::singleShot(0, t.window.get(), [] { Press(*Find("frmFirst"), "cmdOK"); });
    t.Choose("TavriloSendBasicProgram");
}

bool Types() {
    return Serial1().Profile() == kBootstrapProfile;
}

bool MayCancelTyping() {
    return Part<QPushButton>(*Find("frmFirst"), "cmdCancel").isEnabled();
}

/// The console with a command that the micro is slow to answer.
void RunStarCommand(Reentrancy& t) {
    t.micro.spoil = [](CompanionDouble::Reply& reply) { reply.delay = 50ms; };
    QTimer::singleShot(0, t.window.get(), [] {
        QTest::keyClick(&Part<QLineEdit>(*Find("frmCLI"), "txtCmd"), Qt::Key_Return);
    });
    t.Choose("TavriloCli");
}

bool MicroHasHeard(Reentrancy& t) {
    return !t.micro.heard.empty();
}

/// Inside the drain of the line that follows when a window is closed.
bool DrainsAfterClosing(Reentrancy& t, const char* window) {
    return MicroHasHeard(t) && t.CloseOnce(window) && Timer4().Enabled();
}

void ListImages(Reentrancy& t) {
    t.person.to_folder = [&t] { return t.folder.path() / "images"; };
    t.Choose("DiscEXDrive");
}

int PercentListed() {
    const QWidget* progress = Find("frmProgress");
    return progress == nullptr ? -1 : Part<QProgressBar>(*progress, "pb").value();
}

// clang-format off
constexpr Wait kWaits[] = {
    // A renderer fills its window.
    {"text",          [](auto& t) { t.Choose("FileViewAsText", 2); },      ViewFills},
    {"hex",           [](auto& t) { t.Choose("FileViewAsHex", 2); },       ViewFills},
    {"basic",         [](auto& t) { t.Choose("FileViewAsBasic", 0); },     ViewFills},
    {"disassembly",   [](auto& t) { t.Choose("FileDisassembleFile", 1); }, ViewFills},
    {"wordwise",      [](auto& t) { t.Choose("FileViewAsWordwise", 3); },  ViewFills},
    {"cat",           [](auto& t) { t.Choose("DiscViewAsCAT"); },          ViewFills},
    {"ex",            [](auto& t) { t.Choose("DiscViewAsEX"); },           ViewFills},
    {"map",           [](auto& t) { t.Choose("DiscViewFreeSpaceMap"); },   ViewFills},
    // Files and folders.
    {"rename",        [](auto& t) { t.Choose("FileRenameFile", 1); },
                      [](auto& t) { return t.List(0).IsEditing(1, 0); }},
    {"export",        [](auto& t) { t.Choose("FileSelectAll"); t.Choose("FileExportFile"); },
                      [](auto& t) { return !fs::is_empty(t.folder.path() / "out"); }},
    {"import",        [](auto& t) { t.DropFiles(1); },                 [](auto&) { return Module1::gDirty; }},
    {"folder walk",   ListImages,                                 [](auto&) { return PercentListed() == 0; }},
    {"listing",       ListImages,                                 [](auto&) { return PercentListed() > 0; }},
    {"printing",      [](auto& t) { t.ChooseInView("FilePrint"); }, [](auto& t) { return t.printed; }},
    // Writing the preferences lets events run, too.
    {"closing a view", [](auto& t) { t.OpenView().close(); },
                      [](auto&) { return Module1::gViewForm.expired(); }},
    {"closing the program", [](auto& t) { t.window->close(); },   [](auto&) { return true; }},
    // The cable.
    {"receiving",     [](auto& t) { t.Choose("ReceiveSSDDrive0"); }, [](auto&) { return Stands("frmRX"); }},
    {"cancelled receiving", [](auto& t) { t.Choose("ReceiveDSDDrive0"); },
                      [](auto& t) { return DrainsAfterClosing(t, "frmRX"); }},
    {"sending",       [](auto& t) { t.Choose("SendDSDDrive0"); }, [](auto&) { return Stands("frmRX"); }},
    {"cancelled sending", [](auto& t) { t.Choose("SendSSDDrive1"); },
                      [](auto& t) { return DrainsAfterClosing(t, "frmRX"); }},
    {"traced receiving", [](auto& t) { t.Choose("TraceWindow"); t.Choose("ReceiveSSDDrive0"); },
                      [](auto&) { return Stands("frmRX"); }},
    {"star command",  RunStarCommand,                             [](auto& t) { return MicroHasHeard(t) && Stands("frmCLI"); }},
    {"closed console", RunStarCommand,                            [](auto& t) { return DrainsAfterClosing(t, "frmCLI"); }},
    {"bootstrap",     StartBootstrap,                             [](auto&) { return Types() && MayCancelTyping(); }},
    {"bootstrap's end", StartBootstrap,                           [](auto&) { return Types() && !MayCancelTyping(); }},
    {"cancelled bootstrap", StartBootstrap,                       [](auto& t) { return Types() && t.CloseOnce("frmFirst"); }},
    // Boxes and dialogs.
    {"box",           [](auto& t) { t.person.to_open = [] { return "/nowhere.ssd"; }; t.Choose("DiscOpenDiscImage"); },
                      [](auto&) { return Stands("box"); }},
    {"box of a document", [](auto& t) { t.Choose("FileViewAsWordwise", 3); }, [](auto&) { return Stands("box"); }},
    {"question",      [](auto& t) { Module1::gDirty = true; t.Choose("NewDiscImageTrackSSD200Kssd"); },
                      [](auto&) { return Stands("question"); }},
    {"question at the end", [](auto& t) { Module1::gDirty = true; t.window->close(); },
                      [](auto&) { return Stands("question"); }},
    {"open dialog",   [](auto& t) { t.Choose("DiscOpenDiscImage"); },       [](auto&) { return Stands("open dialog"); }},
    {"save dialog",   [](auto& t) { t.ChooseInView("FileSaveFile"); },      [](auto&) { return Stands("save dialog"); }},
    {"folder dialog", ListImages,                                           [](auto&) { return Stands("folder dialog"); }},
    {"title",         [](auto& t) { t.Choose("DiscSetTitle"); },            [](auto&) { return Stands("frmTitle"); }},
    {"boot options",  [](auto& t) { t.Choose("DiscSetBootOptions"); },      [](auto&) { return Stands("frmBoot"); }},
    {"addresses",     [](auto& t) { t.Choose("FileSetFileAddresses", 1); }, [](auto&) { return Stands("frmAddr"); }},
    {"serial port",   [](auto& t) { t.Choose("TavriloSerialPort"); },       [](auto&) { return Stands("frmSerial"); }},
    {"first contact", [](auto& t) { t.Choose("TavriloSendBasicProgram"); }, [](auto&) { return Stands("frmFirst"); }},
    {"console",       [](auto& t) { t.Choose("TavriloCli"); },              [](auto&) { return Stands("frmCLI"); }},
    {"about",         [](auto& t) { t.Choose("HelpAboutQuoravel"); },       [](auto&) { return Stands("frmAbout"); }},
    {"find",          [](auto& t) { t.ChooseInView("EditFind"); },          [](auto&) { return Stands("frmFind"); }},
    {"page setup",    [](auto& t) { t.ChooseInView("FilePageSetup"); },     [](auto&) { return Stands("page setup"); }},
    {"print dialog",  [](auto& t) { t.ChooseInView("FilePrint"); },         [](auto&) { return Stands("print dialog"); }},
};

// clang-format on

/// Meant: the bootstrap's dialog does not close while it gives the keyboard back to the micro.
bool EndsTheProgram(const std::string& deed, const Wait& wait) {
    return std::string_view(wait.name) != "bootstrap's end" &&
           (deed == "the session ends" || deed == "close frmMain" || deed.ends_with("/FileQuit"));
}

class Waits : public Reentrancy, public testing::WithParamInterface<Wait> {
  protected:
    /// Enters the wait and runs `act` inside.
    void Cross(const std::function<void()>& act) {
        StartAnew();
        person.Await([this] { return GetParam().inside(*this); }, act);
        GetParam().enter(*this);
        for (int turn = 0; turn < 3; ++turn) // what is queued, timers, what they queue
            QCoreApplication::processEvents();
        EXPECT_TRUE(person.acted) << "the wait was not reached; boxes: "
                                  << testing::PrintToString(person.TakeBoxTexts());
        ExpectWhole();
    }
};

TEST_P(Waits, WhateverIsDoneInsideTheProgramGoesOn) {
    Deeds deeds;
    Cross([&] { deeds = Reachable(); });
    for (const auto& [name, ignored] : deeds) {
        SCOPED_TRACE(name);
        Cross([&, &name = name] {
            const Deeds now = Reachable();
            if (const auto deed = now.find(name); deed != now.end())
                deed->second();
            else
                ADD_FAILURE() << "not there";
        });
        EXPECT_TRUE(person.quitting || !EndsTheProgram(name, GetParam())) << "the program goes on";
    }
    StartAnew();
    Choose("FileQuit");
    EXPECT_EQ(person.quits, 1);
}

/// A box over a view that was closed during a transfer went with the view.
TEST(WindowInUse, IsNoneThatHasJustBeenClosed) {
    QWidget view;
    view.show();
    QApplication::setActiveWindow(&view);
    EXPECT_EQ(WindowInUse(), &view);
    view.close();
    QApplication::setActiveWindow(&view); // as long as nobody has told Qt otherwise
    EXPECT_EQ(WindowInUse(), nullptr);
    QApplication::setActiveWindow(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Reentrancy, Waits, testing::ValuesIn(kWaits), [](const auto& wait) {
    std::string name = wait.param.name;
    std::ranges::replace_if(
        name, [](char c) { return c == ' ' || c == '\''; }, '_');
    return name;
});

} // namespace
} // namespace quoravel
