#include "platform/qt/printing.h"

#include "platform/host.h"
#include "platform/qt/byte_marks.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/modal.h"
#include "platform/qt/text.h"

#include <QPageSetupDialog>
#include <QPrintDialog>

#include <sstream>

namespace quoravel {

namespace {

bool AskPageSetup(QPrinter& printer) {
    return QPageSetupDialog(&printer, WindowInUse()).exec() == QDialog::Accepted;
}

bool AskPrinter(QPrinter& printer) {
    QPrintDialog dialog(&printer, WindowInUse());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false); // the pages are not known yet
    return dialog.exec() == QDialog::Accepted;
}

/// A dialog is a wait: the program may have ended meanwhile.
bool Ask(const std::function<bool(QPrinter&)>& dialog, QPrinter& printer) {
    const bool agreed = dialog(printer);
    if (host().IsQuitting())
        throw AppQuitting();
    return agreed;
}

/// A printer on whose whole paper can be drawn, so that places are ours to count.
std::unique_ptr<QPrinter> WholePaperPrinter(const QPageLayout* layout) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setFullPage(true);
    if (layout != nullptr)
        printer->setPageLayout(*layout);
    else
        printer->setPageMargins({});
    return printer;
}

QTextLayout::FormatRange FormatOf(const QTextFragment& fragment, int line_start) {
    QTextLayout::FormatRange range;
    range.start = fragment.position() - line_start;
    range.length = fragment.length();
    range.format = fragment.charFormat();
    return range;
}

QList<QTextLayout::FormatRange> FormatsOf(const QTextBlock& line) {
    QList<QTextLayout::FormatRange> formats;
    for (auto it = line.begin(); !it.atEnd(); ++it)
        formats.append(FormatOf(it.fragment(), line.position()));
    return formats;
}

} // namespace

PrintDialogs& print_dialogs() {
    static PrintDialogs dialogs{AskPageSetup, AskPrinter};
    return dialogs;
}

PrinterSetup::PrinterSetup() : layout_(WholePaperPrinter(nullptr)->pageLayout()) {
}

std::string PrinterSetup::SetupString() const {
    const QSizeF paper = layout_.pageSize().size(QPageSize::Point);
    const QMarginsF margins = layout_.margins(QPageLayout::Point);
    std::ostringstream text;
    text << paper.width() << ' ' << paper.height() << ' '
         << (layout_.orientation() == QPageLayout::Landscape) << ' ' << margins.left() << ' '
         << margins.top() << ' ' << margins.right() << ' ' << margins.bottom();
    return text.str();
}

void PrinterSetup::SetSetupString(const std::string& text) {
    std::istringstream numbers(text);
    double width = 0;
    double height = 0;
    bool landscape = false;
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    if (!(numbers >> width >> height >> landscape >> left >> top >> right >> bottom))
        return;
    const QPageSize paper({width, height}, QPageSize::Point, {}, QPageSize::FuzzyMatch);
    if (!paper.isValid())
        return;
    layout_.setPageSize(paper);
    layout_.setOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    layout_.setUnits(QPageLayout::Point);
    layout_.setMargins({left, top, right, bottom});
}

double PrinterSetup::Width() const {
    const QMarginsF margins = layout_.margins(QPageLayout::Point);
    return layout_.fullRect(QPageLayout::Point).width() - margins.left() - margins.right();
}

double PrinterSetup::Height() const {
    const QMarginsF margins = layout_.margins(QPageLayout::Point);
    return layout_.fullRect(QPageLayout::Point).height() - margins.top() - margins.bottom();
}

bool PrinterSetup::PageSetupDialog() {
    const auto printer = WholePaperPrinter(&layout_);
    if (!Ask(print_dialogs().page_setup, *printer))
        return false;
    layout_ = printer->pageLayout();
    return true;
}

Graphics::Graphics(std::unique_ptr<QPrinter> printer) : printer_(std::move(printer)) {
    if (!painter_.begin(printer_.get()))
        return;
    const QMarginsF margins = printer_->pageLayout().margins(QPageLayout::Point);
    painter_.translate(QPointF(margins.left(), margins.top()) * DotsPerPoint());
}

std::unique_ptr<Graphics> OpenPrinterDialog(const PrinterSetup* setup, std::string_view document) {
    auto printer = WholePaperPrinter(setup != nullptr ? &setup->layout() : nullptr);
    printer->setDocName(HostText(document));
    if (!Ask(print_dialogs().print, *printer))
        return nullptr;
    const QString target =
        printer->outputFileName().isEmpty() ? printer->printerName() : printer->outputFileName();
    auto graphics = std::make_unique<Graphics>(std::move(printer));
    if (!graphics->IsOpen()) {
        host().MsgBox("Cannot print to " + Utf8OfHostText(target));
        return nullptr;
    }
    return graphics;
}

StyledTextPrinter::StyledTextPrinter(const EditField& field, Graphics& graphics, double width)
    : document_(field.document()->clone()),
      text_(field.Text()),
      font_(field.font(), &graphics.printer()),
      graphics_(graphics),
      width_(width * graphics.DotsPerPoint()) {
    BeginLine(document_->firstBlock());
}

/// Breaks the next line of the text into rows.
void StyledTextPrinter::BeginLine(const QTextBlock& line) {
    line_ = line;
    row_ = 0;
    layout_.clearLayout();
    if (!line.isValid())
        return;
    layout_.setFont(font_);
    layout_.setText(line.text());
    layout_.setFormats(FormatsOf(line));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout_.setTextOption(option);
    layout_.beginLayout();
    for (QTextLine row = layout_.createLine(); row.isValid(); row = layout_.createLine()) {
        row.setLeadingIncluded(true);
        row.setLineWidth(width_);
    }
    layout_.endLayout();
}

void StyledTextPrinter::NextRow() {
    if (++row_ >= layout_.lineCount())
        BeginLine(line_.next());
}

void StyledTextPrinter::DrawRow(const QPointF& where) {
    const QTextLine row = layout_.lineAt(row_);
    const QPointF origin = where - row.position();
    QPainter& painter = graphics_.painter();
    painter.setPen(Qt::black);
    row.draw(&painter, origin);
    DrawMarks(painter, row, origin, EditField::LineText(text_, line_),
              {row.textStart(), row.textStart() + row.textLength()}, layout_.font(), Qt::black);
}

void StyledTextPrinter::DrawBlock(double left, double top, double height) {
    const double scale = graphics_.DotsPerPoint();
    double filled = 0;
    while (!Eof()) {
        const double row_height = layout_.lineAt(row_).height();
        if (filled > 0 && filled + row_height > height * scale)
            return;
        DrawRow({left * scale, top * scale + filled});
        filled += row_height;
        NextRow();
    }
}

} // namespace quoravel
