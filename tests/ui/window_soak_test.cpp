// Windows of every kind, opened and closed over and over.

#include "link/frmRX.h"
#include "support/main_window_test.h"
#include "view/frmView.h"

#include <QTimer>

#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace quoravel {
namespace {

constexpr int kEverydayWindows = 300;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryCounts = false; // what is freed is kept for a while
#else
constexpr bool kMemoryCounts = true;
#endif

int WindowsToOpen() {
    const char* number = std::getenv("QUORAVEL_SOAK_WINDOWS");
    return number == nullptr ? kEverydayWindows : std::atoi(number);
}

/// Resident kilobytes.
long Memory() {
    malloc_trim(0);
    long all = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

class WindowSoak : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
        ListPortsWith([] {
            return std::vector<PortInfo>{{QStringLiteral("Cable"), QStringLiteral("/nowhere")}};
        });
    }

    void TearDown() override {
        ListPortsWith({});
        MainWindowTest::TearDown();
    }

    /// Chooses a command that shows a dialog, which is closed as soon as it stands.
    void Dialog(const char* item) const {
        QTimer::singleShot(0, window.get(), [] { QApplication::activeModalWidget()->close(); });
        Choose(item);
    }

    void View(const char* item) const {
        Choose(item);
        Module1::gViewForm.lock()->close();
    }

    void Find() const {
        Choose("DiscViewAsCAT");
        const auto view = Module1::gViewForm.lock();
        QTimer::singleShot(0, window.get(), [] { QApplication::activeModalWidget()->close(); });
        view->findChild<QAction*>(QStringLiteral("EditFind"))->trigger();
        view->close();
    }

    void Trace() const {
        Q_EMIT window->findChild<QMenu*>(QStringLiteral("TavriloTrace"))->aboutToShow();
        Choose("TraceWindow");
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == QStringLiteral("frmTrace")) {
                top->close();
                return; // as others may have gone with it
            }
    }

    void Listing() {
        desktop.folders = {folder.path() / "config"};
        desktop.files = {folder.path() / "log.txt"};
        Choose("DiscEXDrive");
    }

    /// Opens and closes one window of each kind; gives how many.
    int Round() {
        for (const char* item :
             {"FileViewAsText", "FileViewAsHex", "FileViewAsBasic", "FileDisassembleFile",
              "FileViewAsWordwise", "DiscViewAsCAT", "DiscViewAsEX", "DiscViewFreeSpaceMap"})
            View(item);
        for (const char* item :
             {"DiscSetTitle", "DiscSetBootOptions", "FileSetFileAddresses", "TavriloSerialPort",
              "TavriloSendBasicProgram", "TavriloCli", "HelpAboutQuoravel"})
            Dialog(item);
        Find();
        Trace();
        Listing();
        frmRX::Show()->Close();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return 20;
    }
};

TEST_F(WindowSoak, WindowsLeaveNothingBehind) {
    constexpr int kWarmUp = 5;
    constexpr long kNoise = 1024; // kilobytes
    for (int round = 0; round < kWarmUp; ++round)
        Round();
    const auto widgets = QApplication::allWidgets().size();
    const long memory = Memory();
    int windows = 0;
    while (windows < WindowsToOpen())
        windows += Round();
    EXPECT_EQ(QApplication::allWidgets().size(), widgets);
    if (kMemoryCounts) {
        EXPECT_LT(Memory(), memory + kNoise);
    }
    std::cout << windows << " windows, " << memory << " KB before, " << Memory() << " KB after\n";
}

} // namespace
} // namespace quoravel
