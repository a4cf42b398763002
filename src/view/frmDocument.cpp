#include "view/frmDocument.h"

#include "exchange/host_names.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/guard.h"
#include "platform/saving.h"
#include "platform/text.h"
#include "prefs/xml_preferences.h"
#include "shell/frmPlace.h"
#include "shell/menus.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QShortcut>

namespace quoravel {

namespace {

constexpr QSize kNewSize(611, 359); // of the content, below the menu bar

} // namespace

frmDocument::frmDocument(const Names& names)
    : place_(names.place),
      content_(new QWidget(this)),
      rtb_(new EditField(content_)),
      menu_(*menuBar(), frmViewMenu) {
    setObjectName(QLatin1StringView(names.window));
    setMinimumSize(kLeastWindowSize, kLeastWindowSize);
    setMaximumSize(kLargestWindowSize, kLargestWindowSize);
    menuBar()->setObjectName(QLatin1StringView(names.window) + QStringLiteral("Menu"));
    rtb_->setObjectName(QLatin1StringView(names.text));
    rtb_->setAccessibleName(QStringLiteral("Text"));
    setCentralWidget(content_);
    rtb_->setFocus();
    AddMenuHandlers();
}

/// Cut, Paste and Clear have no handler, as the text cannot be changed: they are dimmed.
void frmDocument::AddMenuHandlers() {
    const auto held = [this](void (frmDocument::*action)()) {
        return [this, action] {
            const auto self = weak_from_this().lock();
            (this->*action)();
        };
    };
    menu_.Handle("FileSaveFile", held(&frmDocument::FileSaveFile_Action));
    menu_.Handle("FilePageSetup", held(&frmDocument::FilePageSetup_Action));
    menu_.Handle("FilePrint", held(&frmDocument::FilePrint_Action));
    menu_.Handle("FileQuit", held(&frmDocument::FileQuit_Action));
    menu_.Handle("EditFind", held(&frmDocument::EditFind_Action));
    menu_.Handle("EditFindNext", held(&frmDocument::EditFindNext_Action));
    menu_.Handle("EditCopy", held(&frmDocument::EditCopy_Action));
    menu_.Handle("EditSelectAll", held(&frmDocument::EditSelectAll_Action));
    // The menus have no item for it: it comes by the desktop's own key.
    auto* close_key = new QShortcut(QKeySequence::Close, this);
    Connect(close_key, &QShortcut::activated, this, held(&frmDocument::FileClose_Action));
}

void frmDocument::Event_Open() {
    const QRect place = StoredPlace(place_, kNewSize);
    move(place.topLeft());
    resize(place.width(), place.height() + menuBar()->heightForWidth(place.width()));
    Form_Resize();
}

void frmDocument::Form_Resize() {
    rtb_->setGeometry(content_->rect());
}

void frmDocument::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void frmDocument::closeEvent(QCloseEvent* /*event*/) {
    Guarded([this] {
        if (!closed_)
            Event_Close();
    });
}

void frmDocument::Event_Close() {
    closed_ = true;
    StorePlace(place_, *this, content_->size());
    if (Closed)
        Closed();
    hide(); // or a box that comes in the events below would stand over a window that is closed
    XMLPreferences::WritePrefFile(); // events run, and the program may end in them
}

void frmDocument::FileClose_Action() {
    close();
}

/// Quitting is closing the main window, with all that it asks; it has no name here.
void frmDocument::FileQuit_Action() {
    QApplication::closeAllWindows();
}

std::string frmDocument::HostName() const {
    return Latin1ToUtf8(HostFileName(gName));
}

void frmDocument::FileSaveFile_Action() {
    const auto file = host().AskSaveFile(FileTypes1::pAny, HostName());
    if (!file)
        return;
    // The text goes out with its own line ends, and one of the host's behind it.
    if (const auto error = ReplaceFile(*file, AsBytes(Latin1ToUtf8(rtb_->Text()) + "\n")))
        host().MsgBox("Cannot save " + FileName(*file) + ": " + error->reason);
}

void frmDocument::EditCopy_Action() {
    rtb_->copy();
}

void frmDocument::EditSelectAll_Action() {
    rtb_->selectAll();
}

} // namespace quoravel
