// frmMain: the *EX listing of a whole folder.

#include "disc/image_files.h"
#include "platform/host.h"
#include "platform/qt/busy_cursor.h"
#include "platform/qt/listbox.h"
#include "shell/frmMain.h"
#include "shell/frmProgress.h"

#include <QScopedValueRollback>

namespace quoravel {

namespace {

/// Of the file that a listing goes to; the dialog itself offers every file.
constexpr const char* kProposal = "exall.txt";

} // namespace

void frmMain::DiscEXDrive_Action() {
    for (int drive = 0; drive < kDrives; ++drive)
        lvwDB(drive).CommitEdit(); // a name that was typed belongs to this disc
    if (!ListFolder())
        return;
    SetCurrentDrive(Module1::cur_drive); // which the listing has moved
    // Meant: the disc comes back from its file; changes that nobody wanted to save are gone. A file
    // with no known ending is a current file that loads nothing.
    const bool comes_back = FormOfName(FileName(Module1::gsFile)).has_value();
    if (comes_back && OpenDisc(Module1::gsFile))
        return;
    // The last image of the listing must not be taken for a disc of the user's, nor saved as one.
    Module1::gsFile.clear();
    DiscNew80DSD();
    SetCurrentDrive(0);
}

/// False if it was given up before it began. The images go through the one block, so until the end
/// no command may take what is in there for the user's disc.
bool frmMain::ListFolder() {
    const QScopedValueRollback job(job_, "A listing is in progress");
    if (Module1::gDirty)
        QuerySaveChanges();
    const auto folder = host().AskFolder();
    if (!folder)
        return false;
    const auto log = host().AskSaveFile(FileTypes1::pAny, kProposal);
    if (!log)
        return false;
    const BusyCursor busy;
    frmProgress progress(this);
    progress.show();
    Module1::gCancel = false;
    ListImagesBelow(*folder, *log, progress);
    return true;
}

} // namespace quoravel
