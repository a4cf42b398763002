#pragma once

#include <QTreeWidget>

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

  Q_SIGNALS:
    /// The keyboard now belongs to this list.
    void GotFocus();
    /// A mouse button went down on a cell; x and y in pixels within the list.
    void CellClick(int row, int column, int x, int y);
    /// A key moved to another row.
    void RowChange(int row);
    /// Every row is wanted, by the keys that the desktop has for it.
    void SelectAllRequested();
    /// A menu is asked for at a place on the screen.
    void ContextualClick(QPoint where);

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void PlaceColumns();

    std::vector<int> percentages_;
};

} // namespace quoravel
