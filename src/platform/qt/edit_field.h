#pragma once

#include <QPlainTextEdit>

#include <string>
#include <string_view>

namespace quoravel {

/// A text of many lines in one fixed-pitch font, to be read, searched and copied; the program alone
/// writes into it. It keeps the exact bytes that it was given, and positions count in them, from 0.
/// On screen each byte takes one cell: Latin-1 characters are themselves, CR LF ends a line, and
/// what has no picture of its own shows as its two hex digits.
///
/// Writing is cheap: what is written reaches the screen with the next event, all at once.
class EditField : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit EditField(QWidget* parent = nullptr);

    [[nodiscard]] const std::string& Text() const { return text_; }

    // The selection, as a position and a number of bytes. What lies outside the text is cut off:
    // a start of -1 is the start of the text. A selection does not scroll the text.
    [[nodiscard]] int SelStart() const;
    [[nodiscard]] int SelLength() const;
    [[nodiscard]] std::string_view SelText() const;
    /// Puts the caret there, with nothing selected.
    void SetSelStart(int position);
    /// Selects that many bytes from SelStart on.
    void SetSelLength(int length);
    /// Puts `text` in place of the selection and the caret behind it.
    void SetSelText(std::string_view text);
    // The style of what SetSelText writes.
    void SetSelUnderline(bool underline);
    void SetSelBold(bool bold);

    /// The line at the top, counted from 0; a value beyond the end shows the last page.
    [[nodiscard]] int ScrollPosition() const;
    void SetScrollPosition(int line);
    /// Scrolls to the side if the caret cannot be seen otherwise.
    void ShowCaretColumn();

    /// The line that a position is in, counted from 0.
    [[nodiscard]] int LineNumAtCharPos(int position) const;
    /// Pixels that show text from top to bottom.
    [[nodiscard]] int Height() const;
    /// Pixels from one line to the next.
    [[nodiscard]] double TextHeight() const;

    /// Shows at once what has changed.
    void Refresh();

    /// The bytes of a line without its end, out of those of the whole document.
    [[nodiscard]] static std::string_view LineText(std::string_view text, const QTextBlock& line);

  protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;

  private:
    [[nodiscard]] int OffsetOf(int document_position) const;
    [[nodiscard]] int DocumentPositionOf(int offset) const;
    void Select(int start, int end);
    void BeginWriting();
    void EndWriting();
    void PaintMarks(const QTextBlock& line, const QRectF& place);

    std::string text_;
    QTextCharFormat style_;
    bool writing_ = false; ///< an edit block is open, so what was written is not laid out yet
};

} // namespace quoravel
