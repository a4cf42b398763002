// frmMain: the commands that change the catalogue.

#include "disc/catalogue.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "platform/host.h"
#include "platform/qt/listbox.h"
#include "platform/qt/modal.h"
#include "shell/frmAddr.h"
#include "shell/frmBoot.h"
#include "shell/frmMain.h"
#include "shell/frmTitle.h"

#include <QAction>

namespace quoravel {

namespace {

constexpr int kEscape = 27;
constexpr int kWaitStep = 10; // milliseconds between two looks at gDone

} // namespace

bool frmMain::MayOverrideLocks() const {
    return menu_.Item("OptionsDeleteLockedFiles").isChecked();
}

/// Runs a command on the name of each selected row of the current list, then rebuilds the list.
/// Commands may show boxes, so list and selection are looked at anew for each row.
void frmMain::ForSelectedNames(const std::function<void(const std::string&)>& command) {
    if (Module1::mSelectedItem < 0)
        return;
    for (int row = 0; row < lvwDB(Module1::cur_drive).ListCount(); ++row)
        if (lvwDB(Module1::cur_drive).Selected(row))
            command(lvwDB(Module1::cur_drive).Cell(row, 0));
    GetRootTitles(Module1::cur_drive);
}

void frmMain::FileLockFile_Action() {
    ForSelectedNames(LockFile);
}

void frmMain::FileUnlockFile_Action() {
    ForSelectedNames(UnlockFile);
}

void frmMain::FileDeleteFile_Action() {
    ForSelectedNames([this](const std::string& name) { DeleteFile(name, MayOverrideLocks()); });
}

void frmMain::FileRenameFile_Action() {
    if (Module1::mSelectedItem < 0)
        return;
    Listbox& list = lvwDB(Module1::cur_drive);
    if (list.IsEditing(Module1::mSelectedItem, 0))
        return;
    // Chosen during another rename: that one still needs gOldString as it is.
    for (int drive = 0; drive < kDrives; ++drive)
        lvwDB(drive).CommitEdit();
    Module1::gOldString = list.Cell(Module1::mSelectedItem, 0);
    if (!list.EditCell(Module1::mSelectedItem, 0))
        return; // a row of the list that was left: there is nothing to wait for
    const int edited = Module1::cur_drive;
    Module1::gDone = false;
    while (!Module1::gDone)
        host().DoEvents(kWaitStep);
    // A click in the other list may have ended the edit. What was typed must not stay in the cell.
    const int current = Module1::cur_drive;
    if (edited != current)
        GetRootTitles(edited);
    SetCurrentDrive(current);
    GetRootTitles(current);
}

void frmMain::lvwDB_CellAction(int drive, int row, int column) {
    const std::string name = lvwDB(drive).Cell(row, column);
    if (!name.empty())
        RenameFile(name, Module1::gOldString, MayOverrideLocks());
    Module1::gDone = true;
}

void frmMain::lvwDB_CellKeyDown(int key) {
    if (key == kEscape)
        Module1::gDone = true;
}

bool frmMain::FileSetFileAddresses_Action() {
    const int drive = Module1::cur_drive;
    const int row = Module1::mSelectedItem;
    Listbox& list = lvwDB(drive);
    if (row < 0 || row >= list.ListCount())
        return false;
    const std::string name = list.Cell(row, 0);
    Module1::a_load = list.Cell(row, 2);
    Module1::a_exec = list.Cell(row, 3);
    ShowModal<frmAddr>(this);
    if (!Module1::a_change)
        return false;
    SetCurrentDrive(drive); // the refresh after a drop may have moved it while the dialog stood
    SetFileAttr(name, Module1::a_load, Module1::a_exec);
    const int pos = GetPos(drive, name);
    if (pos == -1)
        return true;
    const int info = GetDirOffset(drive, pos) + kInfoDistance;
    if (list.Cell(row, 0) == name) {
        list.SetCell(row, 2, GetLoad(info));
        list.SetCell(row, 3, GetExec(info));
    }
    ShowFree(drive); // the title bar gets its star at the next refresh
    return false;
}

void frmMain::DiscSetTitle_Action() {
    ShowModal<frmTitle>(this);
}

void frmMain::DiscSetBootOptions_Action() {
    ShowModal<frmBoot>(this);
}

} // namespace quoravel
