// frmMain: files in and out, by menu and by drag and drop.

#include "exchange/export.h"
#include "exchange/import.h"
#include "platform/host.h"
#include "platform/qt/busy_cursor.h"
#include "platform/qt/listbox.h"
#include "shell/frmMain.h"

#include <QScopedValueRollback>
#include <QTimer>

namespace quoravel {

namespace fs = std::filesystem;

ListRow frmMain::RowOf(int drive, int row) const {
    const Listbox& list = lvwDB(drive);
    return {list.Cell(row, 0), list.Cell(row, 1), list.Cell(row, 2),
            list.Cell(row, 3), list.Cell(row, 4), list.Cell(row, 5)};
}

std::vector<ListRow> frmMain::SelectedRows(int drive) const {
    std::vector<ListRow> rows;
    for (int row = 0; row < lvwDB(drive).ListCount(); ++row)
        if (lvwDB(drive).Selected(row))
            rows.push_back(RowOf(drive, row));
    return rows;
}

void frmMain::FileExportFile_Action() {
    if (Module1::mSelectedItem == -1)
        return;
    const auto folder = host().AskFolder();
    if (!folder)
        return;
    const BusyCursor busy;
    const QScopedValueRollback job(job_, "An export is in progress");
    const int drive = Module1::cur_drive; // a click during the export does not change what goes out
    for (const ListRow& row : SelectedRows(drive)) {
        if (!ExportRow(row, drive, *folder))
            return;
        Yield();
    }
}

std::vector<fs::path> frmMain::lvwDB_DragRow() {
    if (!DiscIsFree())
        return {};
    const BusyCursor busy;
    return dragged_.Export(SelectedRows(Module1::cur_drive), Module1::cur_drive);
}

void frmMain::lvwDB_DropObject(int drive, const std::vector<fs::path>& files) {
    if (!DiscIsFree())
        return;
    const BusyCursor busy;
    const QScopedValueRollback job(job_, "An import is in progress");
    for (const fs::path& file : files) {
        if (ImportFile(drive, file))
            break;
        Yield();
    }
    tmrRefresh_->start();
}

void frmMain::tmrRefresh_Action() {
    if (IsTwoSided())
        GetRootTitles(1);
    GetRootTitles(0);
}

} // namespace quoravel
