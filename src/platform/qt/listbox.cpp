#include "platform/qt/listbox.h"

#include "platform/qt/text.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace quoravel {

Listbox::Listbox(QWidget* parent) : QTreeWidget(parent) {
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideNone);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(1);
    header()->setSectionResizeMode(QHeaderView::Fixed);
    header()->setSectionsMovable(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void Listbox::SetColumns(const std::vector<std::string_view>& headings,
                         const std::vector<int>& percentages) {
    QStringList labels;
    for (const std::string_view heading : headings)
        labels.append(ScreenText(heading));
    percentages_ = percentages;
    setColumnCount(static_cast<int>(headings.size()));
    setHeaderLabels(labels);
    PlaceColumns();
}

void Listbox::PlaceColumns() {
    // From edge to edge, so that the columns fill the list whatever the rounding.
    int percent = 0;
    int left = 0;
    for (int column = 0; column < static_cast<int>(percentages_.size()); ++column) {
        percent += percentages_[static_cast<std::size_t>(column)];
        const int right = viewport()->width() * percent / 100;
        header()->resizeSection(column, right - left);
        left = right;
    }
}

void Listbox::DeleteAllRows() {
    clear();
}

void Listbox::AddRow(const std::vector<std::string_view>& cells) {
    QStringList texts;
    for (const std::string_view cell : cells)
        texts.append(ScreenText(cell));
    addTopLevelItem(new QTreeWidgetItem(texts));
}

std::string Listbox::Cell(int row, int column) const {
    const QTreeWidgetItem* item = topLevelItem(row);
    return item == nullptr ? std::string() : BytesOfScreenText(item->text(column));
}

void Listbox::SetCell(int row, int column, std::string_view text) {
    if (QTreeWidgetItem* item = topLevelItem(row))
        item->setText(column, ScreenText(text));
}

bool Listbox::Selected(int row) const {
    const QTreeWidgetItem* item = topLevelItem(row);
    return item != nullptr && item->isSelected();
}

void Listbox::SelectOnly(int row) {
    setCurrentItem(topLevelItem(row), 0,
                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void Listbox::focusInEvent(QFocusEvent* event) {
    QTreeWidget::focusInEvent(event);
    // A window that comes back to the front, or a menu that closes, gives back a focus that was
    // never meant to move.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        Q_EMIT GotFocus();
}

void Listbox::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    if (!index.isValid()) {
        event->accept();
        return;
    }
    QTreeWidget::mousePressEvent(event);
    Q_EMIT CellClick(index.row(), index.column(), at.x(), at.y());
}

void Listbox::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::SelectAll)) {
        Q_EMIT SelectAllRequested();
        return;
    }
    const int before = currentIndex().row();
    QTreeWidget::keyPressEvent(event);
    const int after = currentIndex().row();
    if (after >= 0 && after != before)
        Q_EMIT RowChange(after);
}

void Listbox::contextMenuEvent(QContextMenuEvent* event) {
    const bool by_mouse = event->reason() == QContextMenuEvent::Mouse;
    Q_EMIT ContextualClick(by_mouse
                               ? event->globalPos()
                               : viewport()->mapToGlobal(visualItemRect(currentItem()).center()));
}

void Listbox::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    PlaceColumns();
}

} // namespace quoravel
