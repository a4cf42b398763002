// frmDocument: paper.

#include "platform/host.h"
#include "platform/qt/printing.h"
#include "view/frmDocument.h"

namespace quoravel {

namespace {

// In points. The margins beyond what the page setup asks for.
constexpr double kPageWidth = 540; // without a page setup
constexpr double kPageHeight = 648;
constexpr double kSetupMargin = 36;
constexpr double kBlockMargin = 48;
constexpr double kBlockLeft = 36;
constexpr double kBlockTop = 36;

} // namespace

void frmDocument::FilePageSetup_Action() {
    PrinterSetup setup;
    if (!PageSetup.empty())
        setup.SetSetupString(PageSetup);
    if (setup.PageSetupDialog())
        PageSetup = setup.SetupString();
}

void frmDocument::FilePrint_Action() {
    PrinterSetup setup;
    double width = kPageWidth;
    double height = kPageHeight;
    if (!PageSetup.empty()) {
        setup.SetSetupString(PageSetup);
        width = setup.Width() - kSetupMargin;
        height = setup.Height() - kSetupMargin;
    }
    const auto graphics = OpenPrinterDialog(PageSetup.empty() ? nullptr : &setup, HostName());
    if (!graphics)
        return;
    StyledTextPrinter printer(*rtb_, *graphics, width - kBlockMargin);
    while (!printer.Eof()) {
        printer.DrawBlock(kBlockLeft, kBlockTop, height - kBlockMargin);
        if (!printer.Eof())
            graphics->NextPage();
        Yield();
    }
}

} // namespace quoravel
