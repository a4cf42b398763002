#pragma once

#include <QPointer>
#include <QTreeWidget>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// A list of rows with columns, several of which can be selected. Cells hold Latin-1 bytes and give
/// back exactly those. What is highlighted is what commands act on: a click beside the rows leaves
/// the selection alone.
class Listbox : public QTreeWidget {
    Q_OBJECT

  public:
    explicit Listbox(QWidget* parent = nullptr);

    /// Sets up the columns: their headings, and their widths in percent of the list.
    void SetColumns(const std::vector<std::string_view>& headings,
                    const std::vector<int>& percentages);

    void DeleteAllRows();
    /// Adds a row with a text for each column.
    void AddRow(const std::vector<std::string_view>& cells);

    [[nodiscard]] int ListCount() const { return topLevelItemCount(); }

    /// Text of a cell; empty where there is none.
    [[nodiscard]] std::string Cell(int row, int column) const;
    void SetCell(int row, int column, std::string_view text);

    [[nodiscard]] bool Selected(int row) const;
    /// Makes `row` the only selected one, and the one that the keyboard starts from.
    void SelectOnly(int row);

    /// Shows whether commands act on this list: if not, its selected rows are grey.
    void SetCurrent(bool current);

    /// Opens a cell for editing, its text selected. False if there is no such row.
    bool EditCell(int row, int column);
    [[nodiscard]] bool IsEditing(int row, int column) const;
    /// Commits the open edit, if there is one.
    void CommitEdit();

    /// Asked when the selected rows are dragged away or copied, and must be set: the files to
    /// offer, all of which exist. None: no drag begins.
    std::function<std::vector<std::filesystem::path>()> DragRow;

  Q_SIGNALS:
    /// The keyboard now belongs to this list, or the mouse went down in it beside the rows.
    void GotFocus();
    /// A mouse button went down on a cell; x and y in pixels within the list.
    void CellClick(int row, int column, int x, int y);
    /// A key moved to a row, or chose the one where it is.
    void RowChange(int row);
    /// Every row is wanted, by the keys that the desktop has for it.
    void SelectAllRequested();
    /// A row is to be renamed, by the desktop's key for it.
    void RenameRequested(int row);
    /// An edit was committed and is closed; the cell holds the new text.
    void CellAction(int row, int column);
    /// A key went down in the editor of a cell; its character code, 0 if it has none.
    void CellKeyDown(int row, int column, int key);
    /// An edit is over, however it ended: committed, given up, or its row is gone.
    void EditEnded();
    /// Files were dropped or pasted here.
    void DropObject(std::vector<std::filesystem::path> files);
    /// A menu for the chosen rows is asked for at a place on the screen.
    void ContextualClick(QPoint where);

  protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

  private:
    class CellEditor;

    void PlaceColumns();
    void ShowWhetherCurrent();
    bool TakeKey(const QKeyEvent& key);
    [[nodiscard]] std::unique_ptr<QMimeData> ChosenFiles() const;
    void TakeFiles(const QMimeData& offer);

    std::vector<int> percentages_;
    QPointer<QWidget> editor_; ///< of the cell that is being edited
    QPersistentModelIndex edited_;
    bool current_ = true;         ///< commands act on this list
    bool committed_ = false;      ///< the text of the open editor has gone into its cell
    bool by_key_ = false;         ///< the open edit is being ended by a key
    bool pressed_beside_ = false; ///< the mouse went down where there is no row
};

} // namespace quoravel
