// frmMain: the cable to the micro.

#include "link/frmCLI.h"
#include "link/frmFirst.h"
#include "link/frmRX.h"
#include "link/frmSerial.h"
#include "link/frmTrace.h"
#include "link/link_use.h"
#include "link/ring.h"
#include "link/trace.h"
#include "link/transfer.h"
#include "platform/host.h"
#include "platform/qt/modal.h"
#include "platform/qt/text.h"
#include "shell/frmMain.h"

#include <string>

namespace quoravel {

namespace {

constexpr int kWireDrives = 4; // a double-sided disc is two of them

/// Tells if something else is using the cable.
bool LinkIsFree() {
    return static_cast<bool>(LinkUse());
}

bool HasSerialPort() {
    if (!SystemSerialPorts().empty())
        return true;
    host().MsgBox("No Serial Ports Found On System");
    return false;
}

/// The menu name of a transfer, such as "ReceiveSSDDrive2".
std::string ItemName(const char* direction, const char* form, int drive) {
    return std::string(direction) + form + "Drive" + std::to_string(drive);
}

} // namespace

void frmMain::AddLinkHandlers() {
    for (int drive = 0; drive < kWireDrives; ++drive) {
        menu_.Handle(ItemName("Receive", "SSD", drive), [this, drive] { Receive(drive, true); });
        menu_.Handle(ItemName("Send", "SSD", drive), [this, drive] { Send(drive, true); });
    }
    for (int drive = 0; drive < kWireDrives / 2; ++drive) {
        menu_.Handle(ItemName("Receive", "DSD", drive), [this, drive] { Receive(drive, false); });
        menu_.Handle(ItemName("Send", "DSD", drive), [this, drive] { Send(drive, false); });
    }
    menu_.Handle("TavriloSerialPort", [this] { TavriloSerialPort_Action(); });
    menu_.Handle("TavriloSendBasicProgram", [this] { TavriloSendBasicProgram_Action(); });
    menu_.Handle("TavriloCli", [] { TavriloCli_Action(); });
    menu_.Handle("TraceWindow", [this] { TraceWindow_Action(); });
    menu_.Handle("TraceToFile", [] { TraceToFile(); });
    menu_.SetRule("TraceWindow", [] { return !Module1::gTraceWindow; });
    menu_.SetRule("TraceToFile", [] { return !Module1::gTraceFileOpen; });
}

void frmMain::TavriloSerialPort_Action() {
    if (HasSerialPort() && LinkIsFree()) // it would change the speed of what goes out
        ShowModal<frmSerial>(this, Serial1_);
}

void frmMain::TavriloSendBasicProgram_Action() {
    if (HasSerialPort() && LinkIsFree())
        ShowModal<frmFirst>(this);
}

void frmMain::TavriloCli_Action() {
    if (HasSerialPort() && LinkIsFree())
        ShowConsole();
}

/// ReceiveSSDDrive0_Action and its fellows.
void frmMain::Receive(int drive, bool single_sided) {
    if (!HasSerialPort())
        return;
    std::filesystem::path file;
    {
        const LinkUse use;
        if (!use || !(single_sided ? RX_SSD(drive, *this, file) : RX_DSD(drive, *this, file)))
            return;
    }
    if (menu_.Item("OptionsAutoLoad").isChecked())
        OpenDisc(file);
}

/// SendSSDDrive0_Action and its fellows.
void frmMain::Send(int drive, bool single_sided) {
    if (!HasSerialPort())
        return;
    if (const LinkUse use; use)
        TX_DISC(drive, single_sided, *this);
}

std::shared_ptr<TransferWindow> frmMain::NewTransferWindow() {
    auto window = frmRX::Show();
    transfer_ = window;
    return window;
}

bool frmMain::PlaysWave() const {
    return menu_.Item("OptionsPlayWave").isChecked();
}

void frmMain::TraceWindow_Action() {
    Module1::gTraceWindow = true;
    frmTr_ = new frmTrace; // deletes itself when it has been closed
    frmTr_->Event_Open();
    frmTr_->show();
}

/// What cannot be told at once, as the port may be in the middle of anything.
void frmMain::TraceTrouble(const QString& reason) {
    TraceLine(Utf8OfHostText(reason));
}

/// The windows of the link go with the program, as the user would close them.
void frmMain::CloseLinkWindows() {
    if (const auto transfer = transfer_.lock())
        transfer->Close();
    if (!frmTr_.isNull())
        frmTr_->close();
}

} // namespace quoravel
