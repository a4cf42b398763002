// A user who does anything at any time, for as long as QUORAVEL_RANDOM_SECONDS says, starting from
// QUORAVEL_RANDOM_SEED: the whole program, but for dialogs of the desktop that could reach files of
// somebody else. Meant to be run under the sanitizers.
//
// It fails if the program does not quit when it is told to, if a busy cursor stays, if a saved file
// is not what the disc in memory says, or if saving and loading changes the disc.

#include "disc/image_files.h"
#include "disc/module1.h"
#include "platform/qt/application.h"
#include "support/wait_test.h"

#include <QElapsedTimer>
#include <QFileOpenEvent>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <cstdlib>
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

/// The user, and the files that the user plays with, all in the folder of the test.
class RandomUser : public WaitTest {
  protected:
    void SetUp() override;

    /// Uses the program and ends it; gives the number of actions.
    long Session(long milliseconds) {
        StartAgain();
        micro.spoil = [](CompanionDouble::Reply& reply) {
            if (OneIn(40) && !reply.bytes.empty())
                reply.bytes[reply.bytes.size() / 2] ^= 1;
        };
        actions_ = 0;
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

    /// Some file, or some place for one.
    [[nodiscard]] fs::path Any() const { return OneOf(files_); }

    void Act() {
        if (!hand_.isActive()) // one look more, after the end
            return;
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
            OneIn(2) ? QApplication::closeAllWindows() : static_cast<void>(window->close());
        std::vector<QPointer<QWidget>> tops; // one that is closed may take others with it
        for (QWidget* top : QApplication::topLevelWidgets())
            tops.emplace_back(top);
        for (const auto& top : tops)
            if (!top.isNull() && top->isVisible() && top != window.get() && !top->isModal())
                top->close();
        if (QWidget* focus = QApplication::focusWidget())
            QTest::keyClick(focus, Qt::Key_Escape);
    }

    void AnyAction(QWidget& top) {
        if (QApplication::activePopupWidget() == nullptr)
            QApplication::setActiveWindow(&top);
        const int kind = Below(10);
        if (kind < 4)
            Command(top);
        else if (kind < 6)
            Type(top);
        else if (kind < 8)
            Click(top);
        else if (kind == 8)
            FromOutside();
        else
            top.setGeometry(Below(1000) - 200, Below(800) - 200, 100 + Below(900),
                            100 + Below(700));
    }

    /// Any menu item or button that is enabled, or the end of the window.
    void Command(QWidget& top) {
        Deeds deeds;
        AddDeeds(top, deeds);
        const auto& [name, act] = OneOf(deeds);
        if ((name.ends_with("/FileQuit") || name == "close frmMain") && !OneIn(50))
            return;
        const bool saves = name.starts_with("frmMain/DiscSave");
        const int before = standing.hindrances;
        act();
        if (saves && standing.hindrances == before && !standing.quitting &&
            !IsSavedIn(Module1::gsFile))
            Fail("saved wrong bytes to " + Module1::gsFile.string());
    }

    static void Type(QWidget& top) {
        static const std::vector<Qt::Key> keys{
            Qt::Key_Return, Qt::Key_Escape,   Qt::Key_Tab,  Qt::Key_Up,   Qt::Key_Down,
            Qt::Key_F2,     Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,  Qt::Key_Delete,
            Qt::Key_A,      Qt::Key_Z,        Qt::Key_C,    Qt::Key_V,    Qt::Key_F,
            Qt::Key_G,      Qt::Key_7,        Qt::Key_Menu, Qt::Key_Space};
        QWidget* focus = QApplication::focusWidget();
        const QPointer<QWidget> target = focus != nullptr && focus->window() == &top ? focus : &top;
        for (int times = Below(4); times >= 0 && !target.isNull() && target->isVisible(); --times)
            QTest::keyClick(target, OneOf(keys), OneIn(6) ? Qt::ControlModifier : Qt::NoModifier);
    }

    static void Click(QWidget& top) {
        const QPoint at(Below(std::max(1, top.width())), Below(std::max(1, top.height())));
        QWidget* child = top.childAt(at);
        QWidget& target = child == nullptr ? top : *child;
        const QPoint there = target.mapFrom(&top, at);
        const auto keys = OneIn(4) ? Qt::ControlModifier : Qt::NoModifier;
        if (OneIn(4))
            QTest::mouseDClick(&target, Qt::LeftButton, keys, there);
        else
            QTest::mouseClick(&target, OneIn(4) ? Qt::RightButton : Qt::LeftButton, keys, there);
    }

    /// What the desktop brings: files that are dropped, or one to open.
    void FromOutside() {
        const auto& list = List(Below(2));
        if (OneIn(4)) {
            QFileOpenEvent document(QString::fromStdString(Any().string()));
            QCoreApplication::sendEvent(qApp, &document);
        } else if (list.isVisible() && QApplication::activeModalWidget() == nullptr) {
            std::vector<fs::path> files(static_cast<std::size_t>(1 + Below(5)));
            std::ranges::generate(files, [this] { return Any(); });
            Drop(list, files);
        }
    }

    /// A double-sided file holds the whole block, so it must come back.
    void CheckRoundTrip() const {
        const Bytes before = BothSides();
        const fs::path file = folder.path() / "round.dsd";
        if (SaveDisc_DSD(file) || BytesOf(file) != before || LoadDisc_DSD(file) ||
            BothSides() != before)
            Fail("saving and loading changes the disc");
    }

    std::vector<fs::path> files_;
    QTimer hand_;
    QElapsedTimer clock_;
    long end_ = 0;
    long actions_ = 0;
    int depth_ = 0;
};

void RandomUser::SetUp() {
    WaitTest::SetUp();
    dice.seed(static_cast<unsigned>(Setting("QUORAVEL_RANDOM_SEED", "1")));
    fs::create_directories(folder.path() / "discs/below");
    fs::create_directory(folder.path() / "out");
    for (const auto& disc : fs::directory_iterator(fs::path(TEST_DATA) / "discs"))
        files_.push_back(CopyOfDisc(disc.path().filename().c_str()));
    for (const char* name : {"discs/below/odd.img", "discs/noise.dsd", "a", "b", "c.bas"}) {
        std::string noise(static_cast<std::size_t>(Below(3000)), ' ');
        std::ranges::generate(noise, [] { return static_cast<char>(dice()); });
        files_.push_back(folder.File(name, noise));
    }
    files_.push_back(folder.File("a.inf", "$.SIDECAR FF1900 FF8023 L"));
    for (const char* name : {"new.ssd", "new.dsd", "text.txt", "nowhere/x.ssd", "discs"})
        files_.push_back(folder.path() / name);
    standing.to_open = standing.to_save = [this] { return Any(); };
    standing.to_folder = [this] { return folder.path() / (OneIn(2) ? "discs" : "out"); };
    QObject::connect(&hand_, &QTimer::timeout, &hand_, [this] {
        QTimer::singleShot(0, &hand_, [this] { Act(); }); // no timer runs inside itself
    });
}

TEST_F(RandomUser, DoesNoHarm) {
    constexpr long kLongestSession = 20'000; // milliseconds
    const long time = Setting("QUORAVEL_RANDOM_SECONDS", "5") * 1000L;
    QElapsedTimer clock;
    clock.start();
    long actions = 0;
    for (int sessions = 1; clock.elapsed() < time; ++sessions) {
        actions += Session(std::min(kLongestSession, time - static_cast<long>(clock.elapsed())));
        std::cout << sessions << " sessions, " << actions << " actions, " << clock.elapsed() / 1000
                  << " s" << std::endl;
    }
}

} // namespace
} // namespace quoravel
