#include "shell/frmMain.h"

#include "disc/compact.h"
#include "link/ring.h"
#include "link/serial.h"
#include "platform/qt/guard.h"
#include "platform/qt/listbox.h"
#include "platform/qt/modal.h"
#include "platform/qt/text.h"
#include "prefs/xml_preferences.h"
#include "shell/frmAbout.h"
#include "shell/frmPlace.h"
#include "shell/menus.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QTimer>

#include <utility>

namespace quoravel {

namespace {

constexpr QSize kNewSize(800, 600); // of the content, below the menu bar
constexpr int kRefreshPeriod = 100; // milliseconds from a drop to the new lists
constexpr int kLeastStartWidth = 800;
constexpr int kLeastWidth = 400; // lower than at the start, and meant to be

/// The options: the name of the menu item and the key of its mark in the preferences.
constexpr std::array<std::pair<std::string_view, const char*>, 3> kOptions{{
    {"OptionsDeleteLockedFiles", "DeleteLocked"},
    {"OptionsPlayWave", "PlayWave"},
    {"OptionsAutoLoad", "AutoLoad"},
}};

} // namespace

frmMain::frmMain()
    : content_(new QWidget(this)),
      panes_{},
      tmrRefresh_(new QTimer(this)),
      Serial1_([] { Serial1_DataAvailable(); }, TraceTrouble),
      Timer4_([] { Timer4_Action(); }),
      menu_(*menuBar(), frmMainMenu) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quoravel"));
    setMinimumSize(kLeastWidth, kLeastWindowSize); // so that no width under it ever comes
    setMaximumSize(kLargestWindowSize, kLargestWindowSize);
    menuBar()->setObjectName(QStringLiteral("frmMainMenu"));
    setCentralWidget(content_);
    for (int drive = 0; drive < kDrives; ++drive)
        BuildPane(drive);
    tmrRefresh_->setObjectName(QStringLiteral("tmrRefresh"));
    tmrRefresh_->setSingleShot(true);
    tmrRefresh_->setInterval(kRefreshPeriod);
    Connect(tmrRefresh_, &QTimer::timeout, this, [this] { tmrRefresh_Action(); });
    AddMenuHandlers();
    AddLinkHandlers();
    Module1::InstallStatusLine(this);
    InstallLink(&Serial1_, &Timer4_);
}

frmMain::~frmMain() {
    InstallLink(nullptr, nullptr);
    Module1::InstallStatusLine(nullptr);
}

void frmMain::AddMenuHandlers() {
    const auto handle = [this](std::string_view name, void (frmMain::*action)()) {
        menu_.Handle(name, [this, action] {
            if (DiscIsFree())
                (this->*action)();
        });
    };
    handle("DiscOpenDiscImage", &frmMain::DiscOpenDiscImage_Action);
    handle("NewDiscImageTrackDSD400Kdsd", &frmMain::DiscNew80DSD);
    handle("NewDiscImageTrackSSD200Kssd", &frmMain::DiscNew80SSD);
    handle("NewDiscImageTrackSSD100Kssd", &frmMain::DiscNew40SSD);
    handle("NewDiscImageTrackDSD400KdsdWatford", &frmMain::DiscNew80DSDWatford);
    handle("NewDiscImageTrackSSD200KssdWatford", &frmMain::DiscNew80SSDWatford);
    handle("NewDiscImageTrackSSD100KssdWatford", &frmMain::DiscNew40SSDWatford);
    handle("DiscSaveDiscImage", &frmMain::DiscSaveDiscImage_Action);
    handle("DiscSaveDiscImageAs", &frmMain::DiscSaveDiscImageAs_Action);
    handle("DiscSetTitle", &frmMain::DiscSetTitle_Action);
    handle("DiscSetBootOptions", &frmMain::DiscSetBootOptions_Action);
    handle("DiscCompactDisc", &frmMain::DiscCompactDisc_Action);
    handle("DiscViewAsCAT", &frmMain::DiscViewAsCAT_Action);
    handle("DiscViewAsEX", &frmMain::DiscViewAsEX_Action);
    handle("DiscViewFreeSpaceMap", &frmMain::DiscViewFreeSpaceMap_Action);
    handle("DiscEXDrive", &frmMain::DiscEXDrive_Action);
    handle("FileViewAsText", &frmMain::FileViewAsText_Action);
    handle("FileViewAsBasic", &frmMain::FileViewAsBasic_Action);
    handle("FileDisassembleFile", &frmMain::FileDisassembleFile_Action);
    handle("FileViewAsHex", &frmMain::FileViewAsHex_Action);
    handle("FileViewAsWordwise", &frmMain::FileViewAsWordwise_Action);
    handle("FileLockFile", &frmMain::FileLockFile_Action);
    handle("FileUnlockFile", &frmMain::FileUnlockFile_Action);
    handle("FileDeleteFile", &frmMain::FileDeleteFile_Action);
    handle("FileRenameFile", &frmMain::FileRenameFile_Action);
    handle("FileExportFile", &frmMain::FileExportFile_Action);
    menu_.Handle("FileSetFileAddresses", [this] {
        if (DiscIsFree())
            FileSetFileAddresses_Action();
    });
    menu_.Handle("FileSelectAll", [this] { FileSelectAll_Action(); });
    menu_.Handle("HelpAboutQuoravel", [this] { HelpAboutQuoravel_Action(); });
    menu_.Handle("FileQuit", [this] { close(); });
    for (const auto& [item, key] : kOptions)
        menu_.Handle(item, [] {}); // the item flips its own mark; others read it
}

bool frmMain::DiscIsFree() const {
    if (job_ != nullptr)
        host().MsgBox(job_);
    return job_ == nullptr;
}

void frmMain::Event_Open() {
    XMLPreferences::InitPrefFile("Quoravel.pref");
    XMLPreferences::WritePrefFile();
    RestorePlace();
    show();
    Module1::Init();
    DiscNew80DSD();
    SetCurrentDrive(0);
    Module1::gSerialPort = 0;
    Serial1_.SetProfile(kTransferProfile); // of the first port, whichever that is when it is opened
    for (const auto& [item, key] : kOptions)
        menu_.Item(item).setChecked(XMLPreferences::GetPrefBoolean(key, true));
}

void frmMain::RestorePlace() {
    const QRect place = StoredPlace("Main", kNewSize, kLeastStartWidth);
    move(place.topLeft());
    resize(place.width(), place.height() + menuBar()->heightForWidth(place.width()));
}

bool frmMain::Event_CancelClose() {
    for (int drive = 0; drive < kDrives; ++drive)
        lvwDB(drive).CommitEdit(); // a name that was typed is a change to be asked about
    if (Module1::gDirty)
        QuerySaveChanges();
    return false;
}

void frmMain::Event_Close() {
    if (Module1::gDirty)
        QuerySaveChanges();
    setEnabled(false); // nothing may begin, or change the disc, in the last events that run here
    CloseLink();
    StorePlace("Main", *this, content_->size());
    for (const auto& [item, key] : kOptions)
        XMLPreferences::SetPrefBoolean(key, menu_.Item(item).isChecked());
    XMLPreferences::WritePrefFile();
    CloseLinkWindows();
    views_.CloseAll();
    host().Quit();
}

void frmMain::closeEvent(QCloseEvent* event) {
    Guarded([&] {
        if (Event_CancelClose()) {
            event->ignore();
            return;
        }
        Event_Close();
    });
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    Event_Resized();
}

void frmMain::Event_Resized() {
    SizeControls(IsTwoSided() ? width() / 2 : width());
}

void frmMain::SetTitleBar() {
    QString title = HostText("Quoravel - " + Module1::gsRoot + (Module1::gDirty ? "*" : ""));
    title.replace(QStringLiteral("[*]"),
                  QStringLiteral("[*][*]")); // a mark of Qt's, doubled to show
    setWindowTitle(title);
}

void frmMain::DiscCompactDisc_Action() {
    Compact(Module1::cur_drive);
    GetRootTitles(Module1::cur_drive);
}

void frmMain::HelpAboutQuoravel_Action() {
    ShowModal<frmAbout>(this);
}

} // namespace quoravel
