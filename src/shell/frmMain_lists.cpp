// frmMain: the two lists, their status lines and the selection that they share.

#include "disc/free_space.h"
#include "disc/listing.h"
#include "platform/qt/busy_cursor.h"
#include "platform/qt/guard.h"
#include "platform/qt/listbox.h"
#include "platform/qt/status_box.h"
#include "platform/qt/text.h"
#include "shell/frmMain.h"

#include <QLabel>
#include <QMenu>

namespace quoravel {

namespace {

QString NameOf(const char* control, int drive) {
    return QStringLiteral("%1(%2)").arg(QLatin1StringView(control)).arg(drive);
}

} // namespace

void frmMain::BuildPane(int drive) {
    auto* list = new Listbox(content_);
    list->setObjectName(NameOf("lvwDB", drive));
    list->setAccessibleName(QStringLiteral("Files of drive %1").arg(drive));
    auto* box = new StatusBox(content_);
    box->setObjectName(NameOf("StatusBox", drive));
    box->setAccessibleName(QStringLiteral("Status of drive %1").arg(drive));
    box->Text().setObjectName(NameOf("MsgText", drive));
    panes_[static_cast<std::size_t>(drive)] = {list, box};

    ConnectList(*list, drive);
}

void frmMain::ConnectList(Listbox& list, int drive) {
    Connect(&list, &Listbox::GotFocus, this, [this, drive] { lvwDB_GotFocus(drive); });
    Connect(&list, &Listbox::CellClick, this,
            [this, drive](int row, int, int, int) { lvwDB_CellClick(drive, row); });
    // A key that moves to another row chooses it as a click does.
    Connect(&list, &Listbox::RowChange, this,
            [this, drive](int row) { lvwDB_CellClick(drive, row); });
    Connect(&list, &Listbox::SelectAllRequested, this, [this, drive] {
        lvwDB_GotFocus(drive);
        FileSelectAll_Action();
    });
    Connect(&list, &Listbox::RenameRequested, this, [this, drive](int row) {
        lvwDB_CellClick(drive, row);
        if (DiscIsFree())
            FileRenameFile_Action();
    });
    Connect(&list, &Listbox::CellAction, this,
            [this, drive](int row, int column) { lvwDB_CellAction(drive, row, column); });
    Connect(&list, &Listbox::CellKeyDown, this,
            [this](int, int, int key) { lvwDB_CellKeyDown(key); });
    // However an edit ends, its rows gone included, nobody waits for it any longer.
    Connect(&list, &Listbox::EditEnded, this, [] { Module1::gDone = true; });
    Connect(&list, &Listbox::ContextualClick, this,
            [this](QPoint where) { lvwDB_MouseDown(where); });
    // The program that the files come from waits for the drop to end, so the import follows it.
    Connect(
        &list, &Listbox::DropObject, this,
        [this, drive](const std::vector<std::filesystem::path>& files) {
            lvwDB_DropObject(drive, files);
        },
        Qt::QueuedConnection);
    list.DragRow = [this] { return lvwDB_DragRow(); };
}

Listbox& frmMain::lvwDB(int drive) const {
    return *panes_[static_cast<std::size_t>(drive)].lvwDB;
}

bool frmMain::IsTwoSided() const {
    return !lvwDB(1).isHidden();
}

void frmMain::SetMsgText(int drive, std::string_view text) {
    panes_[static_cast<std::size_t>(drive)].Status->SetText(text);
}

void frmMain::MakeRootColumns(int drive) {
    lvwDB(drive).SetColumns({"FileName", "Attr", "Load", "Exec", "Size", "Sector"},
                            {26, 10, 16, 16, 16, 16});
}

void frmMain::GetRootTitles(int drive) {
    const BusyCursor busy;
    SetTitleBar();
    Module1::mSelectedItem = -1;
    Listbox& list = lvwDB(drive);
    list.DeleteAllRows();
    MakeRootColumns(drive);
    for (const ListRow& row : SortedListFiles(drive))
        list.AddRow({row.FileName, row.Attr, row.Load, row.Exec, row.Size, row.Sector});
    ShowFree(drive);
    if (list.ListCount() > 0) {
        list.SelectOnly(0);
        SetCurrentDrive(drive);
        Module1::mSelectedItem = 0;
        if (lvwDB(1 - drive).hasFocus())
            list.setFocus(); // the keyboard goes where the commands go
    }
}

void frmMain::SizeControls(int width) {
    const int height = panes_[0].Status->LeastHeight();
    const int status_top = content_->height() - height;
    const auto place = [&](Pane& pane, int left) {
        pane.lvwDB->setGeometry(left, 0, width, status_top);
        pane.Status->setGeometry(left, status_top, width, height);
    };
    panes_[1].Status->setVisible(IsTwoSided()); // and with it the text inside
    place(panes_[0], 0);
    if (IsTwoSided())
        place(panes_[1], width);
}

void frmMain::SetCurrentDrive(int drive) {
    Module1::cur_drive = drive;
    for (int i = 0; i < kDrives; ++i)
        lvwDB(i).SetCurrent(i == drive);
}

void frmMain::lvwDB_GotFocus(int drive) {
    SetCurrentDrive(drive);
}

void frmMain::lvwDB_CellClick(int drive, int row) {
    Module1::mSelectedItem = row;
    SetCurrentDrive(drive);
}

void frmMain::lvwDB_MouseDown(QPoint where) {
    menu_.Menu("FileMenu").popup(where);
}

void frmMain::FileSelectAll_Action() {
    Listbox& list = lvwDB(Module1::cur_drive);
    if (list.ListCount() == 0)
        return;
    list.selectAll();
    Module1::mSelectedItem = 0;
    list.setFocus();
}

} // namespace quoravel
