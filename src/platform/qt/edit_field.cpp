#include "platform/qt/edit_field.h"

#include "platform/qt/byte_marks.h"
#include "platform/qt/text.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace quoravel {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

QFont FixedFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (const auto preferred = QStringLiteral("Courier New"); QFontDatabase::hasFamily(preferred))
        font.setFamily(preferred);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setStyleStrategy(QFont::PreferNoShaping); // no ligatures: each byte keeps its cell
    return font;
}

/// `text` as the document holds it: one character for each byte, one block end for each line end.
QString DocumentText(std::string_view text) {
    QString result;
    result.reserve(static_cast<qsizetype>(text.size()));
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i).starts_with(kLineEnd)) {
            result += QChar::ParagraphSeparator;
            ++i;
        } else {
            result += HasMark(text[i]) ? QChar(QChar::Nbsp) : QLatin1Char(text[i]);
        }
    }
    return result;
}

} // namespace

EditField::EditField(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setLineWrapMode(NoWrap);
    setFrameShape(QFrame::NoFrame);
    setFont(FixedFont());
}

// Each block end of the document stands for the two bytes of a line end, so an offset is ahead of
// its document position by the number of lines before it.

int EditField::OffsetOf(int document_position) const {
    return document_position + document()->findBlock(document_position).blockNumber();
}

int EditField::DocumentPositionOf(int offset) const {
    if (offset >= static_cast<int>(text_.size()))
        return document()->characterCount() - 1;
    int line = 0;
    for (int above = document()->blockCount(); above - line > 1;) {
        const int middle = (line + above) / 2;
        (document()->findBlockByNumber(middle).position() + middle <= offset ? line : above) =
            middle;
    }
    const QTextBlock block = document()->findBlockByNumber(line);
    // Inside a line end counts as before it.
    return std::min(std::max(offset, 0) - line, block.position() + block.length() - 1);
}

int EditField::SelStart() const {
    return OffsetOf(textCursor().selectionStart());
}

int EditField::SelLength() const {
    return OffsetOf(textCursor().selectionEnd()) - SelStart();
}

std::string_view EditField::SelText() const {
    return std::string_view(text_).substr(static_cast<std::size_t>(SelStart()),
                                          static_cast<std::size_t>(SelLength()));
}

void EditField::SetSelStart(int position) {
    Select(position, position);
}

void EditField::SetSelLength(int length) {
    const int start = SelStart();
    const int rest = static_cast<int>(text_.size()) - start;
    Select(start, start + std::clamp(length, 0, rest));
}

void EditField::Select(int start, int end) {
    QTextCursor cursor = textCursor();
    const int from = DocumentPositionOf(start);
    const int to = DocumentPositionOf(end);
    if (cursor.anchor() == from && cursor.position() == to)
        return;
    EndWriting();
    const int column = horizontalScrollBar()->value();
    const int line = ScrollPosition();
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    setTextCursor(cursor); // scrolls to it
    horizontalScrollBar()->setValue(column);
    SetScrollPosition(line);
}

void EditField::SetSelText(std::string_view text) {
    auto from = static_cast<std::size_t>(SelStart());
    auto to = from + static_cast<std::size_t>(SelLength());
    // Half a line end at either edge may become whole, or the other way round.
    std::string bytes(text);
    if (from > 0 && text_[from - 1] == '\r')
        bytes.insert(0, 1, text_[--from]);
    if (to < text_.size() && text_[to] == '\n')
        bytes += text_[to++];

    BeginWriting();
    QTextCursor cursor = textCursor();
    cursor.setPosition(DocumentPositionOf(static_cast<int>(from)));
    cursor.setPosition(DocumentPositionOf(static_cast<int>(to)), QTextCursor::KeepAnchor);
    cursor.insertText(DocumentText(bytes), style_);
    text_.replace(from, to - from, bytes);
}

void EditField::SetSelUnderline(bool underline) {
    style_.setFontUnderline(underline);
}

void EditField::SetSelBold(bool bold) {
    style_.setFontWeight(bold ? QFont::Bold : QFont::Normal);
}

// Laying out and drawing each piece as it comes would take a hundred times as long as the writing.
// So a block of edits stays open until the event loop runs. The event posted here comes before any
// other; the overrides below are for those that Qt sends without the loop.

void EditField::BeginWriting() {
    if (writing_)
        return;
    writing_ = true;
    QTextCursor(document()).beginEditBlock();
    QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::HighEventPriority);
}

void EditField::EndWriting() {
    if (!writing_)
        return;
    writing_ = false;
    QTextCursor(document()).endEditBlock();
}

bool EditField::event(QEvent* event) {
    EndWriting();
    return QPlainTextEdit::event(event);
}

bool EditField::viewportEvent(QEvent* event) {
    EndWriting();
    return QPlainTextEdit::viewportEvent(event);
}

int EditField::ScrollPosition() const {
    return verticalScrollBar()->value();
}

void EditField::SetScrollPosition(int line) {
    EndWriting();
    verticalScrollBar()->setValue(line);
}

void EditField::ShowCaretColumn() {
    EndWriting();
    const int x = cursorRect().center().x();
    if (x < 0 || x >= viewport()->width()) {
        QScrollBar& bar = *horizontalScrollBar();
        bar.setValue(bar.value() + x - viewport()->width() / 2);
    }
}

int EditField::LineNumAtCharPos(int position) const {
    return document()->findBlock(DocumentPositionOf(position)).blockNumber();
}

int EditField::Height() const {
    return viewport()->height();
}

double EditField::TextHeight() const {
    return QFontMetricsF(font()).lineSpacing();
}

void EditField::Refresh() {
    EndWriting();
    viewport()->repaint();
}

std::string_view EditField::LineText(std::string_view text, const QTextBlock& line) {
    const int start = line.position() + line.blockNumber();
    const int length = line.length() - 1; // without the block's end
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
}

void EditField::paintEvent(QPaintEvent* event) {
    QPlainTextEdit::paintEvent(event);
    QRectF place;
    for (QTextBlock line = firstVisibleBlock(); line.isValid(); line = line.next()) {
        place = blockBoundingGeometry(line).translated(contentOffset());
        if (place.top() > event->rect().bottom())
            break;
        PaintMarks(line, place);
    }
}

void EditField::PaintMarks(const QTextBlock& line, const QRectF& place) {
    const QTextLine row = line.layout()->lineAt(0);
    if (!row.isValid())
        return;
    // A line can have hundreds of thousands of bytes; those to the sides are not looked at.
    const int first = row.xToCursor(-place.left(), QTextLine::CursorOnCharacter);
    const int last = row.xToCursor(viewport()->width() - place.left());
    const int end = std::max(first, last + 1);
    const int from = std::clamp(textCursor().selectionStart() - line.position(), first, end);
    const int to = std::clamp(textCursor().selectionEnd() - line.position(), first, end);
    QPainter painter(viewport());
    const auto draw = [&](Columns columns, const QBrush& color) {
        DrawMarks(painter, row, place.topLeft(), LineText(text_, line), columns, font(),
                  color.color());
    };
    draw({first, from - 1}, palette().text());
    draw({from, to - 1}, palette().highlightedText());
    draw({to, end - 1}, palette().text());
}

QMimeData* EditField::createMimeDataFromSelection() const {
    QString text = ScreenText(SelText());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    auto* selection = new QMimeData;
    selection->setText(text);
    return selection;
}

} // namespace quoravel
