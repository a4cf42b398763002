#include "platform/qt/byte_marks.h"

#include "platform/qt/text.h"
#include "platform/text.h"

#include <QPainter>
#include <QTextLine>

#include <algorithm>

namespace quoravel {

namespace {

constexpr double kDigitSize = 0.5; // of the line's height: two digits fit one above the other
constexpr float kBoxStrength = 0.15F;

/// The digits of `code` in `cell`, over a faint box.
void DrawMark(QPainter& painter, const QRectF& cell, unsigned char code, const QColor& color) {
    QColor box = color;
    box.setAlphaF(kBoxStrength);
    const double gap = cell.width() / 16;
    painter.fillRect(cell.adjusted(gap, gap, -gap, -gap), box);
    const QString digits = ScreenText(Hex(code, 2));
    const QSizeF half(cell.width(), cell.height() / 2);
    painter.drawText(QRectF(cell.topLeft(), half), Qt::AlignCenter, digits.first(1));
    painter.drawText(QRectF(cell.topLeft() + QPointF(0, half.height()), half), Qt::AlignCenter,
                     digits.last(1));
}

} // namespace

void DrawMarks(QPainter& painter, const QTextLine& line, const QPointF& origin,
               std::string_view bytes, Columns columns, const QFont& font, const QColor& color) {
    QFont small = font;
    small.setPixelSize(std::max(1, static_cast<int>(line.height() * kDigitSize)));
    painter.setFont(small);
    painter.setPen(color);
    const int end = std::min(
        {columns.last + 1, line.textStart() + line.textLength(), static_cast<int>(bytes.size())});
    for (int i = std::max(columns.first, line.textStart()); i < end; ++i) {
        const char byte = bytes[static_cast<std::size_t>(i)];
        if (!HasMark(byte))
            continue;
        const double left = line.cursorToX(i);
        const QRectF cell(left, line.y(), line.cursorToX(i + 1) - left, line.height());
        DrawMark(painter, cell.translated(origin), static_cast<unsigned char>(byte), color);
    }
}

} // namespace quoravel
