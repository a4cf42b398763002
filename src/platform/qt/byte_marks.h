#pragma once

#include <string_view>

class QColor;
class QFont;
class QPainter;
class QPointF;
class QTextLine;

namespace quoravel {

/// True for bytes without a picture of their own: control codes, and the soft hyphen, which has no
/// width in a text.
[[nodiscard]] constexpr bool HasMark(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code < 32 || (code >= 127 && code < 160) || code == 173;
}

/// A range of characters in a line.
struct Columns {
    int first;
    int last; ///< included
};

/// Draws the marks of such bytes over a line of laid-out text that has a blank for each: a box as
/// wide as the cell with two small hex digits. `font` is the line's: they need no other. `bytes`
/// are those of the whole layout, whose top left corner is `origin`.
void DrawMarks(QPainter& painter, const QTextLine& line, const QPointF& origin,
               std::string_view bytes, Columns columns, const QFont& font, const QColor& color);

} // namespace quoravel
