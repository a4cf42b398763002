// A user who does anything at any time, for as long as QUORAVEL_RANDOM_SECONDS says, starting from
// QUORAVEL_RANDOM_SEED: the whole program with real boxes and dialogs, but for those of the desktop
// that could reach files of somebody else. Meant to be run under the sanitizers.
//
// It fails if the program does not quit when it is told to, if a busy cursor stays, if a saved file
// is not what the disc in memory says, or if saving and loading changes the disc.

#include "disc/image_files.h"
#include "disc/module1.h"
#include "platform/qt/application.h"
#include "platform/qt/listbox.h"
#include "platform/qt/modal.h"
#include "platform/qt/printing.h"
#include "platform/qt/qt_host.h"
#include "shell/frmMain.h"
#include "support/quick_link.h"
#include "support/temp_folder.h"

#include <QDialog>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileOpenEvent>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <unistd.h>

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
    return list[static_cast<decltype(list.size())>(Below(static_cast<int>(list.size())))];
}

long Setting(const char* name, long otherwise) {
    const char* value = std::getenv(name);
    return value == nullptr ? otherwise : std::atol(value);
}

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "FAILED: %s\n", what.c_str());
    std::abort(); // with a stack for the sanitizer to show
}

Bytes Whole(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The disc in memory as a double-sided file has it, made without the code under test.
Bytes BothSides() {
    const auto block = Module1::DiscImg.Part(0, kDiscBytes);
    const auto side = block.begin() + kDiscBytes / 2;
    Bytes both;
    for (std::ptrdiff_t track = 0; track < kDiscBytes / 2; track += 2560) {
        both.insert(both.end(), block.begin() + track, block.begin() + track + 2560);
        both.insert(both.end(), side + track, side + track + 2560);
    }
    return both;
}

/// Whether a saved file says what the disc in memory does. A single-sided one ends where the
/// catalogue does.
bool IsSavedIn(const fs::path& file) {
    const Bytes bytes = Whole(file);
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
        fs::create_directories(folder_.path() / "discs/below");
        fs::create_directory(folder_.path() / "out");
        for (const auto& disc : fs::directory_iterator(fs::path(TEST_DATA) / "discs"))
            fs::copy_file(disc.path(), folder_.path() / "discs" / disc.path().filename());
        for (const char* name : {"discs/below/odd.img", "discs/noise.dsd", "a", "b", "c.bas"}) {
            std::string noise(static_cast<std::size_t>(Below(3000)), ' ');
            for (char& c : noise)
                c = static_cast<char>(dice());
            static_cast<void>(folder_.File(name, noise));
        }
        static_cast<void>(folder_.File("a.inf", "$.SIDECAR FF1900 FF8023 L"));
        static_cast<void>(folder_.File("tavrilo.bas", "10 REM\r20 REM\r"));
    }

    [[nodiscard]] const fs::path& path() const { return folder_.path(); }

    /// Some file, or some place for one.
    [[nodiscard]] fs::path Any() const {
        static const std::vector<fs::path> names{"discs/demo-basic.ssd",
                                                 "discs/demo-wordwise.ssd",
                                                 "discs/demo-dual.dsd",
                                                 "new.ssd",
                                                 "discs/demo-gaps.ssd",
                                                 "discs/demo-text.ssd",
                                                 "discs/noise.dsd",
                                                 "new.dsd",
                                                 "discs/below/odd.img",
                                                 "a",
                                                 "b",
                                                 "c.bas",
                                                 "a.inf",
                                                 "text.txt",
                                                 "nowhere/x.ssd",
                                                 "discs"};
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
    Session(const Playground& playground, App& app)
        : playground_(playground), desktop_(playground), app_(app), link_(Plugged()) {
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
        hand_.setInterval(0);
        QObject::connect(&hand_, &QTimer::timeout, &hand_, [this] {
            QTimer::singleShot(0, &hand_, [this] { Act(); }); // no timer runs inside itself
        });
    }

    ~Session() { app_.Event_OpenDocument = nullptr; }

    /// Gives the number of actions.
    long Run(long milliseconds) {
        Guarded([this] { window_.Event_Open(); });
        end_ = milliseconds;
        clock_.start();
        hand_.start();
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

    CompanionDouble& Plugged() {
        ListPortsWith([] {
            return std::vector<PortInfo>{{QStringLiteral("Cable"), QStringLiteral("/nowhere")}};
        });
        return micro_;
    }

    void Act() {
        if (clock_.elapsed() > end_ + kPatience) {
            const QWidget* modal = QApplication::activeModalWidget();
            Fail("the program does not end after " + std::to_string(leaves_) + " tries" +
                 (modal == nullptr ? "" : ", there is a " + modal->objectName().toStdString()) +
                 (desktop_.IsQuitting() ? ", it is quitting" : ""));
        }
        ++actions_;
        ++depth_;
        if (clock_.elapsed() > end_)
            Leave(true);
        else if (depth_ > kDeepest)
            Leave(false);
        else
            AnyAction();
        --depth_;
    }

    [[nodiscard]] std::vector<QWidget*> Windows() const {
        QWidget* front = QApplication::activePopupWidget();
        if (front == nullptr)
            front = QApplication::activeModalWidget();
        if (front != nullptr)
            return {front};
        std::vector<QWidget*> windows;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->isVisible() && top->isEnabled())
                windows.push_back(top);
        return windows;
    }

    /// Ends waits; with `all` also the program.
    void Leave(bool all) {
        leaves_ += all ? 1 : 0;
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

    void AnyAction() {
        const auto windows = Windows();
        if (windows.empty())
            return;
        QWidget& window = *OneOf(windows);
        if (QApplication::activePopupWidget() == nullptr)
            QApplication::setActiveWindow(&window);
        switch (Below(12)) {
        case 0:
        case 1:
        case 2:
            return Command(window);
        case 3:
        case 4:
            return Press(window);
        case 5:
        case 6:
            return Type(window);
        case 7:
        case 8:
            return Click(window);
        case 9:
            return Drop();
        case 10:
            window.resize(100 + Below(900), 100 + Below(700));
            return window.move(Below(1000) - 200, Below(800) - 200);
        default:
            return RareAction(window);
        }
    }

    void RareAction(QWidget& window) {
        if (&window != &window_ && OneIn(3)) {
            window.close();
        } else if (OneIn(4)) {
            QFileOpenEvent document(QString::fromStdString(playground_.Any().string()));
            QCoreApplication::sendEvent(&app_, &document);
        } else if (OneIn(200)) {
            window_.close();
        }
    }

    void Command(QWidget& window) {
        for (QMenu* menu : window.findChildren<QMenu*>())
            Q_EMIT menu->aboutToShow();
        std::vector<QAction*> items;
        for (QAction* item : window.findChildren<QAction*>())
            if (item->isEnabled() && !item->objectName().isEmpty() && item->menu() == nullptr)
                items.push_back(item);
        if (items.empty())
            return;
        QAction& item = *OneOf(items);
        const QString name = item.objectName();
        if (name == QStringLiteral("FileQuit") && !OneIn(50))
            return;
        const int before = desktop_.hindrances;
        item.trigger();
        if (name.startsWith(QStringLiteral("DiscSave")) && desktop_.hindrances == before &&
            !desktop_.IsQuitting() && !IsSavedIn(Module1::gsFile))
            Fail("saved wrong bytes to " + Module1::gsFile.string());
    }

    static void Press(QWidget& window) {
        std::vector<QPushButton*> buttons;
        for (auto* button : window.findChildren<QPushButton*>())
            if (button->isVisible() && button->isEnabled())
                buttons.push_back(button);
        if (!buttons.empty())
            OneOf(buttons)->click();
    }

    static void Type(QWidget& window) {
        static const std::vector<Qt::Key> keys{
            Qt::Key_Return, Qt::Key_Escape,   Qt::Key_Tab,  Qt::Key_Up,   Qt::Key_Down,
            Qt::Key_F2,     Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,  Qt::Key_Delete,
            Qt::Key_A,      Qt::Key_Z,        Qt::Key_C,    Qt::Key_V,    Qt::Key_F,
            Qt::Key_G,      Qt::Key_7,        Qt::Key_Menu, Qt::Key_Space};
        QWidget* focus = QApplication::focusWidget();
        QWidget& target = focus != nullptr && focus->window() == &window ? *focus : window;
        for (int times = Below(4); times >= 0; --times) {
            const QPointer<QWidget> still(&target);
            QTest::keyClick(&target, OneOf(keys), OneIn(6) ? Qt::ControlModifier : Qt::NoModifier);
            if (still.isNull() || !still->isVisible())
                return;
        }
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

    void Drop() {
        if (QApplication::activeModalWidget() != nullptr)
            return;
        QMimeData data;
        QList<QUrl> urls;
        for (int files = Below(5); files >= 0; --files)
            urls.append(QUrl::fromLocalFile(QString::fromStdString(playground_.Any().string())));
        data.setUrls(urls);
        auto* list = window_.findChild<Listbox*>(QStringLiteral("lvwDB(%1)").arg(Below(2)));
        if (!list->isVisible())
            return;
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list->viewport(), &enter);
        QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list->viewport(), &drop);
    }

    /// A double-sided file holds the whole block, so it must come back.
    void CheckRoundTrip() const {
        const Bytes before = BothSides();
        const fs::path file = playground_.path() / "round.dsd";
        if (SaveDisc_DSD(file) || Whole(file) != before || LoadDisc_DSD(file) ||
            BothSides() != before)
            Fail("saving and loading changes the disc");
    }

    const Playground& playground_;
    Desktop desktop_;
    App& app_;
    CompanionDouble micro_;
    frmMain window_;
    QuickLink link_;
    QTimer hand_;
    QElapsedTimer clock_;
    long end_ = 0;
    long actions_ = 0;
    int depth_ = 0;
    int leaves_ = 0; ///< how often the user has tried to end the program
};

long Resident() {
    long all = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

int Main(int argc, char** argv) {
    constexpr long kLongestSession = 20'000; // milliseconds
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    const auto seed = Setting("QUORAVEL_RANDOM_SEED", 1);
    const long time = Setting("QUORAVEL_RANDOM_SECONDS", 5) * 1000;
    dice.seed(static_cast<unsigned>(seed));
    const Playground playground;
    QElapsedTimer clock;
    clock.start();
    long actions = 0;
    int sessions = 0;
    while (clock.elapsed() < time) {
        actions += Session(playground, app)
                       .Run(std::min(kLongestSession, time - static_cast<long>(clock.elapsed())));
        std::printf("seed %ld: %d sessions, %ld actions, %lld s, %ld KB\n", seed, ++sessions,
                    actions, static_cast<long long>(clock.elapsed()) / 1000, Resident());
        std::fflush(stdout);
    }
    return 0;
}

} // namespace
} // namespace quoravel

int main(int argc, char** argv) {
    return quoravel::Main(argc, argv);
}
