#include "platform/qt/listbox.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QUrl>

#include <utility>

namespace quoravel {

/// Makes the editors of cells and tells the list what happens in them.
class Listbox::CellEditor : public QStyledItemDelegate {
  public:
    explicit CellEditor(Listbox& list) : QStyledItemDelegate(&list), list_(list) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        list_.editor_ = QStyledItemDelegate::createEditor(parent, option, index);
        list_.edited_ = index;
        list_.committed_ = false;
        return list_.editor_;
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        QStyledItemDelegate::setModelData(editor, model, index);
        list_.committed_ = true;
    }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object == list_.editor_ && event->type() == QEvent::KeyPress)
            Q_EMIT list_.CellKeyDown(list_.edited_.row(), list_.edited_.column(),
                                     CharacterOf(*static_cast<QKeyEvent*>(event)));
        return QStyledItemDelegate::eventFilter(object, event);
    }

  private:
    static int CharacterOf(const QKeyEvent& key) {
        if (key.key() == Qt::Key_Escape)
            return 27;
        return key.text().isEmpty() ? 0 : key.text().front().unicode();
    }

    Listbox& list_;
};

Listbox::Listbox(QWidget* parent) : QTreeWidget(parent) {
    setItemDelegate(new CellEditor(*this));
    setDragDropMode(QAbstractItemView::DragDrop);
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
    const bool editing = !editor_.isNull();
    editor_.clear();
    clear(); // takes an open editor with it and says nothing
    if (editing)
        Q_EMIT EditEnded();
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

bool Listbox::EditCell(int row, int column) {
    QTreeWidgetItem* item = topLevelItem(row);
    if (item == nullptr)
        return false;
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    editItem(item, column);
    return !editor_.isNull();
}

bool Listbox::IsEditing(int row, int column) const {
    return !editor_.isNull() && edited_.row() == row && edited_.column() == column;
}

void Listbox::CommitEdit() {
    if (editor_.isNull())
        return;
    commitData(editor_);
    closeEditor(editor_, QAbstractItemDelegate::NoHint);
}

/// Without the hints of Tab, which would open the next cell. What the commit leads to may show a
/// box, and a box takes the focus, which would commit again: so it is told only now.
void Listbox::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint) {
    if (editor != editor_)
        return;
    QTreeWidget::closeEditor(editor, QAbstractItemDelegate::NoHint);
    editor_.clear();
    if (std::exchange(committed_, false))
        Q_EMIT CellAction(edited_.row(), edited_.column());
    Q_EMIT EditEnded();
}

void Listbox::startDrag(Qt::DropActions) {
    std::vector<std::filesystem::path> dragged;
    Guarded([&] { dragged = DragRow(); });
    QList<QUrl> urls;
    for (const auto& file : dragged)
        urls.append(QUrl::fromLocalFile(PathText(file)));
    if (urls.isEmpty())
        return;
    auto* offer = new QMimeData;
    offer->setUrls(urls);
    auto* drag = new QDrag(this); // Qt deletes both when it is over
    drag->setMimeData(offer);
    drag->exec(Qt::CopyAction);
}

void Listbox::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        dragMoveEvent(event);
}

void Listbox::dragMoveEvent(QDragMoveEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(event->mimeData()->hasUrls());
}

void Listbox::dropEvent(QDropEvent* event) {
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            files.push_back(PathOfUrl(url));
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT DropObject(files);
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
    if (event->key() == Qt::Key_F2 && event->modifiers() == Qt::NoModifier) {
        Q_EMIT RenameRequested();
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
