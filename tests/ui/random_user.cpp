// A user who does anything at any time, for as long as QUORAVEL_RANDOM_SECONDS says, starting from
// QUORAVEL_RANDOM_SEED: the whole program with real boxes and dialogs, but for those of the desktop
// that could reach files of somebody else. Meant to be run under the sanitizers.
//
// It fails if the program does not quit when it is told to, if a busy cursor stays, if a saved file
// is not what the disc in memory says, or if saving and loading changes the disc.

#include "disc/image_files.h"
#include "disc/module1.h"
#include "platform/qt/application.h"
#include "platform/qt/modal.h"
#include "platform/qt/printing.h"
#include "platform/qt/qt_host.h"
#include "shell/frmMain.h"
#include "support/quick_link.h"
#include "support/temp_folder.h"
#include "support/windows.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QFileOpenEvent>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <random>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

std::mt19937 dice; // NOLINT(cert-msc51-cpp): the same seed is the same user

int Below(int limit) {
    return static_cast<int>(dice() % static_cast<unsigned>(limit));
}

bool OneIn(int times) {
    return Below(times) == 0;
}

template<class List>
auto& OneOf(List& list) {
    return *std::next(list.begin(), Below(static_cast<int>(list.size())));
}

int Setting(const char* name, const char* otherwise) {
    return qEnvironmentVariable(name, QLatin1StringView(otherwise)).toInt();
}

[[noreturn]] void Fail(const std::string& what) {
    std::cerr << "FAILED: " << what << std::endl;
    std::abort(); // with a stack for the sanitizer to show
}

/// What an interleaved file of the disc in memory has to hold.
Bytes BothSides() {
    Bytes expected;
    for (int track = 0; track < 80; ++track)
        for (int drive : {0, 1}) {
            const auto side = Module1::DiscImg.Part(drive * 204800 + track * 2560, 2560);
            expected.insert(expected.end(), side.begin(), side.end());
        }
    return expected;
}

/// Whether a file holds what the disc in memory does. A single-sided one ends where the
/// catalogue does.
bool IsSavedIn(const fs::path& file) {
    const Bytes bytes = BytesOf(file);
    const QString name = QString::fromStdString(file.filename().string()).toUpper();
    if (name.contains(QStringLiteral(".DSD")))
        return bytes == BothSides();
    const auto block = Module1::DiscImg.Part(0, kDiscBytes);
    return bytes.size() >= 256 && bytes.size() <= block.size() &&
           std::equal(bytes.begin(), bytes.end(), block.begin());
}

/// The files that the user plays with, all in a folder of their own.
class Playground {
  public:
    Playground() {
        fs::create_directories(path() / "discs/below");
        fs::create_directory(path() / "out");
        for (const auto& disc : fs::directory_iterator(fs::path(TEST_DATA) / "discs"))
            fs::copy_file(disc.path(), path() / "discs" / disc.path().filename());
        for (const char* name : {"discs/below/odd.img", "discs/noise.dsd", "a", "b", "c.bas"}) {
            std::string noise(static_cast<std::size_t>(Below(3000)), ' ');
            for (char& c : noise)
                c = static_cast<char>(dice());
            folder_.File(name, noise);
        }
        folder_.File("a.inf", "$.SIDECAR FF1900 FF8023 L");
        folder_.File("tavrilo.bas", "10 REM\r20 REM\r");
    }

    [[nodiscard]] const fs::path& path() const { return folder_.path(); }

    /// Some file, or some place for one.
    [[nodiscard]] fs::path Any() const {
        static const std::vector<const char*> names{"discs/demo-basic.ssd",
                                                    "discs/demo-wordwise.ssd",
                                                    "discs/demo-dual.dsd",
                                                    "new.ssd",
                                                    "discs/demo-gaps.ssd",
                                                    "discs/demo-text.ssd",
                                                    "discs/noise.dsd",
                                                    "new.dsd",
                                                    "discs/below/odd.img",
                                                    "nowhere/x.ssd",
                                                    "text.txt",
                                                    "a.inf",
                                                    "c.bas",
                                                    "discs",
                                                    "a",
                                                    "b"};
        return path() / OneOf(names);
    }

  private:
    TempFolder folder_;
};

/// The real desktop, but that dialogs about files know the playground alone.
class Desktop : public QtHost {
  public:
    explicit Desktop(const Playground& playground) : playground_(playground) {}

    int hindrances = 0; ///< boxes and cancelled dialogs so far

    using Host::MsgBox;

    void MsgBox(std::string_view text, std::string_view title) override {
        ++hindrances;
        QtHost::MsgBox(text, title);
    }

    bool AskYesNo(std::string_view text, std::string_view title) override {
        ++hindrances;
        return QtHost::AskYesNo(text, title);
    }

    std::optional<fs::path> AskOpenFile(const FileType&) override { return Ask(playground_.Any()); }

    std::optional<fs::path> AskSaveFile(const FileType&, std::string_view) override {
        return Ask(playground_.Any());
    }

    std::optional<fs::path> AskFolder() override {
        return Ask(playground_.path() / (OneIn(2) ? "discs" : "out"));
    }

    std::optional<fs::path> PreferencesFolder() override { return playground_.path(); }

    std::optional<fs::path> StateFolder() override { return playground_.path() / "state"; }

    fs::path ProgramFolder() override { return playground_.path(); }

    void PlaySound(const fs::path&) override {}

    void OpenLink(std::string_view, std::function<void(int, const std::string&)> done) override {
        done(Below(2), "no browser");
    }

    bool Stand() const {
        QDialog dialog(WindowInUse());
        QPushButton ok(QStringLiteral("OK"), &dialog);
        QObject::connect(&ok, &QPushButton::clicked, &dialog, &QDialog::accept);
        const bool agreed = dialog.exec() == QDialog::Accepted;
        if (IsQuitting())
            throw AppQuitting();
        return agreed;
    }

  private:
    std::optional<fs::path> Ask(fs::path answer) {
        if (Stand())
            return answer;
        ++hindrances;
        return {};
    }

    const Playground& playground_;
};

/// One run of the program and the user in front of it.
class Session {
  public:
    explicit Session(const Playground& playground) : playground_(playground), desktop_(playground) {
        ListPortsWith([] {
            return std::vector<PortInfo>{{QStringLiteral("Cable"), QStringLiteral("/nowhere")}};
        });
        app_.Event_OpenDocument = [this](const fs::path& file) { window_.OpenDisc(file); };
        print_dialogs() = {[this](QPrinter&) { return desktop_.Stand(); },
                           [this](QPrinter& printer) {
                               printer.setOutputFileName(QString::fromStdString(
                                   (playground_.path() / "page.pdf").string()));
                               return desktop_.Stand();
                           }};
        for (auto& side : micro_.discs)
            side.assign(102400, 'x');
        micro_.spoil = [](CompanionDouble::Reply& reply) {
            if (OneIn(40) && !reply.bytes.empty())
                reply.bytes[reply.bytes.size() / 2] ^= 1;
        };
        QObject::connect(&hand_, &QTimer::timeout, &hand_, [this] {
            QTimer::singleShot(0, &hand_, [this] { Act(); }); // no timer runs inside itself
        });
    }

    ~Session() {
        app_.Event_OpenDocument = nullptr;
        print_dialogs() = real_dialogs_;
        ListPortsWith({});
    }

    /// Gives the number of actions.
    long Run(long milliseconds) {
        Guarded([this] { window_.Event_Open(); });
        end_ = milliseconds;
        clock_.start();
        hand_.start(0);
        App::exec();
        hand_.stop();
        if (QApplication::overrideCursor() != nullptr)
            Fail("the busy cursor stays");
        CheckRoundTrip();
        return actions_;
    }

  private:
    static constexpr int kDeepest = 6;        ///< waits inside waits, then the user leaves some
    static constexpr int kPatience = 300'000; ///< milliseconds for the program to end

    void Act() {
        if (clock_.elapsed() > end_ + kPatience) {
            const QWidget* modal = QApplication::activeModalWidget();
            Fail("the program does not end, in front: " +
                 (modal == nullptr ? "no dialog" : modal->objectName().toStdString()));
        }
        ++actions_;
        ++depth_;
        const auto windows = WindowsInReach();
        if (clock_.elapsed() > end_ || depth_ > kDeepest)
            Leave(clock_.elapsed() > end_);
        else if (!windows.empty())
            AnyAction(*OneOf(windows));
        --depth_;
    }

    /// Ends waits; with `all` also the program.
    void Leave(bool all) {
        if (auto* front = QApplication::activePopupWidget())
            front->close();
        else if (auto* dialog = QApplication::activeModalWidget())
            dialog->close();
        else if (all)
            OneIn(2) ? QApplication::closeAllWindows() : static_cast<void>(window_.close());
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->isVisible() && top != &window_ && !top->isModal())
                top->close();
        if (QWidget* focus = QApplication::focusWidget())
            QTest::keyClick(focus, Qt::Key_Escape);
    }

    void AnyAction(QWidget& window) {
        if (QApplication::activePopupWidget() == nullptr)
            QApplication::setActiveWindow(&window);
        const int kind = Below(10);
        if (kind < 4)
            Command(window);
        else if (kind < 6)
            Type(window);
        else if (kind < 8)
            Click(window);
        else if (kind == 8)
            FromOutside();
        else
            window.setGeometry(Below(1000) - 200, Below(800) - 200, 100 + Below(900),
                               100 + Below(700));
    }

    /// Any menu item or button that is enabled, or the end of the window.
    void Command(QWidget& window) {
        Deeds deeds;
        AddDeeds(window, deeds);
        const auto& [name, act] = OneOf(deeds);
        if ((name.ends_with("/FileQuit") || name == "close frmMain") && !OneIn(50))
            return;
        const bool saves = name.starts_with("frmMain/DiscSave");
        const int before = desktop_.hindrances;
        act();
        if (saves && desktop_.hindrances == before && !desktop_.IsQuitting() &&
            !IsSavedIn(Module1::gsFile))
            Fail("saved wrong bytes to " + Module1::gsFile.string());
    }

    static void Type(QWidget& window) {
        static const std::vector<Qt::Key> keys{
            Qt::Key_Return, Qt::Key_Escape,   Qt::Key_Tab,  Qt::Key_Up,   Qt::Key_Down,
            Qt::Key_F2,     Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,  Qt::Key_Delete,
            Qt::Key_A,      Qt::Key_Z,        Qt::Key_C,    Qt::Key_V,    Qt::Key_F,
            Qt::Key_G,      Qt::Key_7,        Qt::Key_Menu, Qt::Key_Space};
        QWidget* focus = QApplication::focusWidget();
        const QPointer<QWidget> target =
            focus != nullptr && focus->window() == &window ? focus : &window;
        for (int times = Below(4); times >= 0 && !target.isNull() && target->isVisible(); --times)
            QTest::keyClick(target, OneOf(keys), OneIn(6) ? Qt::ControlModifier : Qt::NoModifier);
    }

    static void Click(QWidget& window) {
        const QPoint at(Below(std::max(1, window.width())), Below(std::max(1, window.height())));
        QWidget* child = window.childAt(at);
        QWidget& target = child == nullptr ? window : *child;
        const QPoint there = target.mapFrom(&window, at);
        const auto keys = OneIn(4) ? Qt::ControlModifier : Qt::NoModifier;
        if (OneIn(4))
            QTest::mouseDClick(&target, Qt::LeftButton, keys, there);
        else
            QTest::mouseClick(&target, OneIn(4) ? Qt::RightButton : Qt::LeftButton, keys, there);
    }

    /// What the desktop brings: files that are dropped, or one to open.
    void FromOutside() {
        const auto& list = Part<Listbox>(window_, OneIn(2) ? "lvwDB(0)" : "lvwDB(1)");
        if (OneIn(4)) {
            QFileOpenEvent document(QString::fromStdString(playground_.Any().string()));
            QCoreApplication::sendEvent(&app_, &document);
        } else if (list.isVisible() && QApplication::activeModalWidget() == nullptr) {
            std::vector<fs::path> files(static_cast<std::size_t>(1 + Below(5)));
            std::ranges::generate(files, [this] { return playground_.Any(); });
            Drop(list, files);
        }
    }

    /// A double-sided file holds the whole block, so it must come back.
    void CheckRoundTrip() const {
        const Bytes before = BothSides();
        const fs::path file = playground_.path() / "round.dsd";
        if (SaveDisc_DSD(file) || BytesOf(file) != before || LoadDisc_DSD(file) ||
            BothSides() != before)
            Fail("saving and loading changes the disc");
    }

    const Playground& playground_;
    const PrintDialogs real_dialogs_ = print_dialogs();
    Desktop desktop_;
    App& app_ = static_cast<App&>(*qApp);
    CompanionDouble micro_;
    frmMain window_;
    QuickLink link_{micro_};
    QTimer hand_;
    QElapsedTimer clock_;
    long end_ = 0;
    long actions_ = 0;
    int depth_ = 0;
};

TEST(RandomUser, DoesNoHarm) {
    constexpr long kLongestSession = 20'000; // milliseconds
    const int seed = Setting("QUORAVEL_RANDOM_SEED", "1");
    const long time = Setting("QUORAVEL_RANDOM_SECONDS", "5") * 1000L;
    dice.seed(static_cast<unsigned>(seed));
    const Playground playground;
    QElapsedTimer clock;
    clock.start();
    long actions = 0;
    for (int sessions = 1; clock.elapsed() < time; ++sessions) {
        actions += Session(playground)
                       .Run(std::min(kLongestSession, time - static_cast<long>(clock.elapsed())));
        std::cout << "seed " << seed << ": " << sessions << " sessions, " << actions << " actions, "
                  << clock.elapsed() / 1000 << " s" << std::endl;
    }
}

} // namespace
} // namespace quoravel
