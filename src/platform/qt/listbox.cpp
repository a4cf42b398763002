#include "platform/qt/listbox.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QUrl>

#include <algorithm>
#include <array>
#include <utility>

namespace quoravel {

namespace {

constexpr float kGreyness = 0.25F; // of rows that commands do not act on

QColor Mixed(const QColor& base, const QColor& text) {
    const auto mix = [](float a, float b) { return a + (b - a) * kGreyness; };
    return QColor::fromRgbF(mix(base.redF(), text.redF()), mix(base.greenF(), text.greenF()),
                            mix(base.blueF(), text.blueF()));
}

bool ChoosesARow(int key) {
    static constexpr std::array keys{Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Home, Qt::Key_End,
                                     Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Space};
    return std::ranges::find(keys, key) != keys.end();
}

} // namespace

/// Makes the editors of cells and tells the list what happens in them.
class Listbox::CellEditor : public QStyledItemDelegate {
  public:
    explicit CellEditor(Listbox& list) : QStyledItemDelegate(&list), list_(list) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        list_.editor_ = QStyledItemDelegate::createEditor(parent, option, index);
        list_.edited_ = index;
        list_.committed_ = false;
        list_.by_key_ = false;
        return list_.editor_;
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        // An edit that loses the focus untouched is no commit; Enter and Tab always are.
        const auto* line = qobject_cast<QLineEdit*>(editor);
        if (!list_.by_key_ && line != nullptr && !line->isModified())
            return;
        QStyledItemDelegate::setModelData(editor, model, index);
        list_.committed_ = true;
    }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object == list_.editor_ && event->type() == QEvent::KeyPress) {
            const auto& key = *static_cast<QKeyEvent*>(event);
            list_.by_key_ = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
                            key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
            Q_EMIT list_.CellKeyDown(list_.edited_.row(), list_.edited_.column(), CharacterOf(key));
        }
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
    header()->setContextMenuPolicy(Qt::PreventContextMenu); // the menu is for rows
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
    QWidget* editor = editor_;
    editor_.clear();
    // The keyboard comes back to this list, and nothing is committed: rows that go would take an
    // open editor with them and say nothing.
    if (editor != nullptr)
        QTreeWidget::closeEditor(editor, QAbstractItemDelegate::NoHint);
    clear();
    if (editor != nullptr)
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

void Listbox::SetCurrent(bool current) {
    current_ = current;
    ShowWhetherCurrent();
}

/// The grey comes from the desktop's colours, which may change while the program runs.
void Listbox::ShowWhetherCurrent() {
    const QPalette desktop = QGuiApplication::palette();
    QPalette colours;
    if (!current_) {
        const QColor text = desktop.color(QPalette::Active, QPalette::Text);
        colours.setColor(QPalette::Highlight,
                         Mixed(desktop.color(QPalette::Active, QPalette::Base), text));
        colours.setColor(QPalette::HighlightedText, text);
    }
    setPalette(colours);
}

void Listbox::changeEvent(QEvent* event) {
    QTreeWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ShowWhetherCurrent();
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

/// The files of the chosen rows for another program; nothing if there are none.
std::unique_ptr<QMimeData> Listbox::ChosenFiles() const {
    std::vector<std::filesystem::path> chosen;
    Guarded([&] { chosen = DragRow(); });
    QList<QUrl> urls;
    for (const auto& file : chosen)
        urls.append(QUrl::fromLocalFile(PathText(file)));
    if (urls.isEmpty())
        return nullptr;
    auto offer = std::make_unique<QMimeData>();
    offer->setUrls(urls);
    return offer;
}

void Listbox::startDrag(Qt::DropActions) {
    auto offer = ChosenFiles();
    if (offer == nullptr)
        return;
    auto* drag = new QDrag(this); // Qt deletes both when it is over
    drag->setMimeData(offer.release());
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
    event->setDropAction(Qt::CopyAction);
    event->accept();
    TakeFiles(*event->mimeData());
}

void Listbox::TakeFiles(const QMimeData& offer) {
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : offer.urls())
        if (url.isLocalFile())
            files.push_back(PathOfUrl(url));
    if (!files.empty())
        Q_EMIT DropObject(files);
}

void Listbox::focusInEvent(QFocusEvent* event) {
    QTreeWidget::focusInEvent(event);
    // A window that comes back to the front, or a menu that closes, gives back a focus that was
    // never meant to move.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason &&
        event->reason() != Qt::MenuBarFocusReason)
        Q_EMIT GotFocus();
}

void Listbox::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    pressed_beside_ = !index.isValid();
    if (pressed_beside_) {
        event->accept();
        Q_EMIT GotFocus();
        return;
    }
    QTreeWidget::mousePressEvent(event);
    Q_EMIT CellClick(index.row(), index.column(), at.x(), at.y());
}

/// What began beside the rows is no drag of them; Qt still knows the last row that was pressed.
void Listbox::mouseMoveEvent(QMouseEvent* event) {
    if (pressed_beside_)
        event->accept();
    else
        QTreeWidget::mouseMoveEvent(event);
}

/// Keys that stand for commands; true if it was one. Copy and paste do what drag and drop do.
bool Listbox::TakeKey(const QKeyEvent& key) {
    if (key.matches(QKeySequence::SelectAll)) {
        Q_EMIT SelectAllRequested();
    } else if (key.matches(QKeySequence::Copy)) {
        if (auto files = ChosenFiles())
            QGuiApplication::clipboard()->setMimeData(files.release());
    } else if (key.matches(QKeySequence::Paste)) {
        if (const QMimeData* offer = QGuiApplication::clipboard()->mimeData())
            TakeFiles(*offer);
    } else if (key.key() == Qt::Key_F2 && key.modifiers() == Qt::NoModifier) {
        if (currentIndex().isValid())
            Q_EMIT RenameRequested(currentIndex().row());
    } else {
        return false;
    }
    return true;
}

/// Home on the first row moves nowhere and chooses it nevertheless, as a click would; otherwise
/// the only file of a list could not be chosen by key.
void Listbox::keyPressEvent(QKeyEvent* event) {
    if (TakeKey(*event))
        return;
    const int before = currentIndex().row();
    QTreeWidget::keyPressEvent(event);
    const int after = currentIndex().row();
    if (after >= 0 && (after != before || ChoosesARow(event->key())))
        Q_EMIT RowChange(after);
}

void Listbox::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Mouse) {
        Q_EMIT ContextualClick(event->globalPos());
        return;
    }
    if (!currentIndex().isValid())
        return;
    Q_EMIT RowChange(currentIndex().row()); // the menu is for this list's row, as it is for F2
    Q_EMIT ContextualClick(viewport()->mapToGlobal(visualRect(currentIndex()).center()));
}

void Listbox::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    PlaceColumns();
}

} // namespace quoravel
