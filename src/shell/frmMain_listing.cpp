// frmMain: the *EX listing of a whole folder.

#include "disc/image_files.h"
#include "platform/host.h"
#include "platform/qt/busy_cursor.h"
#include "shell/frmMain.h"
#include "shell/frmProgress.h"

#include <QScopedValueRollback>

namespace quoravel {

namespace {

/// Of the file that a listing goes to; the dialog itself offers every file.
constexpr const char* kProposal = "exall.txt";

} // namespace

void frmMain::DiscEXDrive_Action() {
    if (listing_) { // both would load their images into the one block
        host().MsgBox("A listing is in progress");
        return;
    }
    const QScopedValueRollback listing(listing_, true);
    if (Module1::gDirty)
        QuerySaveChanges();
    const auto folder = host().AskFolder();
    if (!folder)
        return;
    const auto log = host().AskSaveFile(FileTypes1::pAny, kProposal);
    if (!log)
        return;
    ListFolder(*folder, *log);
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

void frmMain::ListFolder(const std::filesystem::path& folder, const std::filesystem::path& log) {
    const BusyCursor busy;
    frmProgress progress(this);
    progress.show();
    Module1::gCancel = false;
    ListImagesBelow(folder, log, progress);
}

} // namespace quoravel
