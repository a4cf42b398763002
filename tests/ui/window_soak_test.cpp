// Windows of every kind, opened and closed over and over.

#include "link/frmRX.h"
#include "support/main_window_test.h"
#include "view/frmView.h"

#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace quoravel {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryCounts = false; // what is freed is kept for a while
#else
constexpr bool kMemoryCounts = true;
#endif

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
    /// Opens and closes one window of each kind; gives how many.
    int Round() {
        const auto close = [](QWidget& shown) { shown.close(); };
        for (const char* item :
             {"FileViewAsText", "FileViewAsHex", "FileViewAsBasic", "FileDisassembleFile",
              "FileViewAsWordwise", "DiscViewAsCAT", "DiscViewAsEX", "DiscViewFreeSpaceMap"}) {
            Choose(item);
            Module1::gViewForm.lock()->close();
        }
        for (const char* item :
             {"DiscSetTitle", "DiscSetBootOptions", "FileSetFileAddresses", "TavriloSerialPort",
              "TavriloSendBasicProgram", "TavriloCli", "HelpAboutQuoravel"})
            InDialog(item, close);
        Choose("DiscViewAsCAT");
        const auto view = Module1::gViewForm.lock();
        InDialog(*view, "EditFind", close);
        view->close();
        Choose("TraceWindow");
        Find("frmTrace")->close();
        desktop.folders = {folder.path() / "config"};
        desktop.files = {folder.path() / "log.txt"};
        Choose("DiscEXDrive");
        frmRX::Show()->Close();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return 20;
    }
};

TEST_F(WindowSoak, WindowsLeaveNothingBehind) {
    constexpr int kWarmUp = 5;
    constexpr long kNoise = 1024; // kilobytes
    window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
    PlugInCable();
    for (int round = 0; round < kWarmUp; ++round)
        Round();
    const auto widgets = QApplication::allWidgets().size();
    const long memory = Memory();
    const int wanted = qEnvironmentVariable("QUORAVEL_SOAK_WINDOWS", QStringLiteral("300")).toInt();
    int windows = 0;
    while (windows < wanted)
        windows += Round();
    EXPECT_EQ(QApplication::allWidgets().size(), widgets);
    if (kMemoryCounts) {
        EXPECT_LT(Memory(), memory + kNoise);
    }
    std::cout << windows << " windows, " << memory << " KB before, " << Memory() << " KB after\n";
}

} // namespace
} // namespace quoravel
