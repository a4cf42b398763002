#pragma once

#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quoravel {

class EditField;

// Printing a styled text. All lengths are in points, 72 to the inch; places on a page count from
// the top left corner of what the page setup leaves to print on.

/// What a user has chosen about the paper.
class PrinterSetup {
  public:
    /// The desktop's paper, without margins.
    PrinterSetup();

    /// All of it as a text, for SetSetupString. A text of another kind changes nothing.
    [[nodiscard]] std::string SetupString() const;
    void SetSetupString(const std::string& text);

    /// Size of what can be printed on: the paper less the margins.
    [[nodiscard]] double Width() const;
    [[nodiscard]] double Height() const;

    /// Lets the user choose. False after Cancel, which changes nothing.
    [[nodiscard]] bool PageSetupDialog();

    [[nodiscard]] const QPageLayout& layout() const { return layout_; }

  private:
    QPageLayout layout_;
};

/// The pages of a print job, which ends with this object.
class Graphics {
  public:
    /// Starts a job on a printer that is set up. False from IsOpen if that fails.
    explicit Graphics(std::unique_ptr<QPrinter> printer);

    [[nodiscard]] bool IsOpen() const { return painter_.isActive(); }

    void NextPage() { printer_->newPage(); }

    [[nodiscard]] QPainter& painter() { return painter_; }

    [[nodiscard]] QPrinter& printer() { return *printer_; }

    /// The printer's dots in a point.
    [[nodiscard]] double DotsPerPoint() const { return printer_->resolution() / 72.0; }

  private:
    std::unique_ptr<QPrinter> printer_;
    QPainter painter_;
};

/// Asks for a printer, beginning with `setup` if there is one, and starts a job on it, which print
/// queues show as `document` (UTF-8, possibly empty). Nothing after Cancel, and, behind a box that
/// tells it, if the job cannot be started.
[[nodiscard]] std::unique_ptr<Graphics> OpenPrinterDialog(const PrinterSetup* setup,
                                                          std::string_view document);

/// Puts the text of a control on pages, in its font and style, lines broken where `width` ends.
/// What happens to the control after this has been made does not show.
class StyledTextPrinter {
  public:
    /// `graphics` must outlive this object.
    StyledTextPrinter(const EditField& field, Graphics& graphics, double width);

    /// True when all of the text has been drawn.
    [[nodiscard]] bool Eof() const { return !line_.isValid(); }

    /// Draws the next lines, as many as fit into `height` and at least one.
    void DrawBlock(double left, double top, double height);

  private:
    void BeginLine(const QTextBlock& line);
    void NextRow();
    void DrawRow(const QPointF& where);

    std::unique_ptr<QTextDocument> document_;
    std::string text_; ///< the bytes of the document
    QFont font_;
    Graphics& graphics_;
    double width_; ///< in dots
    QTextBlock line_;
    QTextLayout layout_; ///< of line_
    int row_ = 0;        ///< of layout_, to be drawn next
};

/// The two dialogs of printing. Each shows how a printer is set up, changes that and tells whether
/// the user agreed. Tests put their own in place.
struct PrintDialogs {
    std::function<bool(QPrinter&)> page_setup;
    std::function<bool(QPrinter&)> print;
};

[[nodiscard]] PrintDialogs& print_dialogs();

} // namespace quoravel
