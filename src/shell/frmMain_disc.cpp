// frmMain: opening, saving and making discs.

#include "disc/image_files.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/qt/listbox.h"
#include "shell/frmMain.h"

#include <optional>
#include <vector>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

/// Loads `file` in the form that its name asks for; a name that asks for none loads nothing, but
/// must be readable all the same.
std::optional<FileError> LoadDisc(const fs::path& file, std::optional<ImageForm> form) {
    if (form == ImageForm::Interleaved)
        return LoadDisc_DSD(file);
    if (form == ImageForm::Linear)
        return LoadDisc_SSD(file);
    std::vector<std::uint8_t> nothing;
    return ReadFile(file, 0, nothing);
}

} // namespace

bool frmMain::OpenDisc(const fs::path& file) {
    if (!DiscIsFree())
        return false;
    const std::string name = FileName(file);
    const auto form = FormOfName(name);
    if (const auto error = LoadDisc(file, form)) {
        host().MsgBox("Cannot open " + name + ": " + error->reason);
        return false;
    }
    // Meant: a file with none of the known endings loads nothing and is the current file all the
    // same, so that the next refresh shows its name and a plain save goes to it.
    Module1::gsRoot = name;
    Module1::gsFile = file;
    opened_.Note(file);
    host().StartDialogsIn(file.parent_path());
    if (form == ImageForm::Interleaved)
        ShowBothSides();
    else if (form == ImageForm::Linear)
        ShowOneSide();
    return true;
}

void frmMain::ShowBothSides() {
    lvwDB(1).resize(lvwDB(0).width(), lvwDB(1).height());
    lvwDB(1).show();
    SetContentWidth(2 * lvwDB(0).width());
    SizeControls(width() / 2);
    GetRootTitles(1);
    GetRootTitles(0);
}

void frmMain::ShowOneSide() {
    // Drive 1 is in use only while its list is shown: no command, no edit and no key goes there.
    lvwDB(1).DeleteAllRows();
    SetCurrentDrive(0);
    if (lvwDB(1).hasFocus())
        lvwDB(0).setFocus();
    lvwDB(1).hide();
    SetContentWidth(lvwDB(0).width());
    SizeControls(width());
    GetRootTitles(0);
}

void frmMain::SetContentWidth(int width) {
    if (!isMaximized() && !isFullScreen()) // there the desktop keeps the width, and we fill it
        resize(width, height());
}

bool frmMain::KeepCopyOf(const fs::path& file, const std::string& name) {
    const auto error = opened_.KeepCopyOf(file);
    return !error || host().AskYesNo("No copy of the old " + name + " could be kept: " +
                                         error->reason + ". Save all the same ?",
                                     "Changes cannot be undone");
}

frmMain::SaveResult frmMain::DiscSave(const fs::path& file) {
    fs::path target = file;
    if (target.empty()) {
        const auto chosen = host().AskSaveFile(FileTypes1::pAny, Module1::gsRoot);
        if (!chosen)
            return SaveResult::Cancelled;
        target = *chosen;
    }
    // The name decides the form, not the disc in memory: without ".DSD" the second side is left
    // out.
    const std::string name = FileName(target);
    if (!KeepCopyOf(target, name))
        return SaveResult::Failed;
    const bool interleaved = FormOfName(name) == ImageForm::Interleaved;
    if (const auto error = interleaved ? SaveDisc_DSD(target) : SaveDisc_SSD(target)) {
        host().MsgBox("Cannot save " + name + ": " + error->reason);
        return SaveResult::Failed;
    }
    Module1::gsRoot = name;
    Module1::gsFile = target;
    SetTitleBar();
    return SaveResult::Saved;
}

void frmMain::QuerySaveChanges() {
    Module1::gDirty = false;
    if (!host().AskYesNo("Save your changes now ?", "Changes will be lost"))
        return;
    SaveResult result = DiscSave(Module1::gsFile);
    if (result != SaveResult::Failed)
        return;
    // The command that asked goes on whatever happens here, so this is the moment to save
    // elsewhere.
    result = DiscSave({});
    Module1::gDirty = result != SaveResult::Saved;
}

void frmMain::DiscOpenDiscImage_Action() {
    if (Module1::gDirty)
        QuerySaveChanges();
    if (const auto file = host().AskOpenFile(FileTypes1::pDiscImages))
        OpenDisc(*file);
}

void frmMain::DiscSaveDiscImage_Action() {
    DiscSave(Module1::gsFile);
}

void frmMain::DiscSaveDiscImageAs_Action() {
    DiscSave({});
}

void frmMain::NewDiscImage(std::string_view root, int drives, int tracks, bool watford) {
    if (Module1::gDirty)
        QuerySaveChanges();
    Module1::gsRoot = root;
    for (int drive = 0; drive < drives; ++drive)
        NewDisc(drive, tracks, watford);
    if (drives == kDrives)
        ShowBothSides();
    else
        ShowOneSide();
}

void frmMain::DiscNew80DSD() {
    NewDiscImage("NewDisc.dsd", kDrives, 80, false);
}

void frmMain::DiscNew80SSD() {
    NewDiscImage("NewDisc.ssd", 1, 80, false);
}

void frmMain::DiscNew40SSD() {
    NewDiscImage("NewDisc.ssd", 1, 40, false);
}

void frmMain::DiscNew80DSDWatford() {
    NewDiscImage("NewDisc.dsd", kDrives, 80, true);
}

void frmMain::DiscNew80SSDWatford() {
    NewDiscImage("NewDisc.ssd", 1, 80, true);
}

void frmMain::DiscNew40SSDWatford() {
    NewDiscImage("NewDisc.ssd", 1, 40, true);
}

} // namespace quoravel
