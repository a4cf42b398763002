#include "view/frmView.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/host.h"
#include "platform/qt/busy_cursor.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/guard.h"
#include "platform/qt/text.h"
#include "platform/text.h"
#include "view/basic.h"
#include "view/catalogue_pages.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/text_view.h"
#include "view/viewed_file.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <QCoreApplication>
#include <QEvent>

#include <array>
#include <utility>

namespace quoravel {

namespace {

/// Thrown by ShowData into a renderer whose window has been closed.
class ViewClosed {};

int SectorOf(const ListRow& file) {
    return static_cast<int>(HexValue(file.Sector));
}

/// Where the file begins in the block, on the drive that is the current one now.
int BaseOf(const ListRow& file) {
    return GetStartSectorOfDrive(Module1::cur_drive) + SectorOf(file) * kSectorBytes;
}

std::uint16_t LoadAddressOf(const ListRow& file) {
    return static_cast<std::uint16_t>(HexValue(file.Load)); // the low four digits
}

/// `text` with an LF behind each CR.
std::string WithLineFeeds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text[i] == '\r')
            result += '\n';
        if (i % kBytesPerYield == 0)
            Yield();
    }
    return result;
}

} // namespace

frmView::frmView(ListRow file)
    : frmDocument({"frmView", "rtbView", "View"}), file_(std::move(file)) {
    setWindowTitle(QStringLiteral("View File"));
}

void frmView::Event_Open() {
    frmDocument::Event_Open();
    Module1::gViewForm = std::static_pointer_cast<frmView>(shared_from_this());
}

void frmView::Show_File() {
    Form_Resize();
    const BusyCursor busy;
    try {
        RunRenderer();
        WriteGathered();
    } catch (const ViewClosed&) {
        return;
    }
    rtb().SetSelStart(0); // the keyboard begins where the eye does
    rtb().SetScrollPosition(0);
    rtb().Refresh();
}

void frmView::RunRenderer() {
    static constexpr std::array renderers{
        // by ViewTag
        &frmView::ShowText, &frmView::ShowHex, &frmView::Show_Basic, &frmView::ShowMap,
        &frmView::ShowCat,  &frmView::ShowEX,  &frmView::ShowDis,    &frmView::ShowWordwise,
    };
    if (Tag >= 0 && Tag < std::ssize(renderers))
        (this->*renderers[static_cast<std::size_t>(Tag)])();
}

/// The one way into the text control. It may pump, and then the window may be gone or the caret
/// elsewhere, so nothing is written before that is over. Documents come in single characters; those
/// wait for the end of their line or style, as each insertion has its price.
void frmView::ShowData(std::string_view text) {
    const bool part_of_line = text.size() == 1 && text[0] != '\r';
    const std::string lines = part_of_line ? std::string(text) : WithLineFeeds(text);
    if (!part_of_line)
        Yield(); // so that the window is painted while it fills
    if (IsClosed())
        throw ViewClosed();
    if (gathered_underline_ != WordWise::Underline || gathered_bold_ != WordWise::DoubleStrike)
        WriteGathered();
    gathered_underline_ = WordWise::Underline;
    gathered_bold_ = WordWise::DoubleStrike;
    gathered_ += lines;
    if (!part_of_line)
        WriteGathered();
}

void frmView::WriteGathered() {
    if (gathered_.empty())
        return;
    rtb().SetSelStart(static_cast<int>(rtb().Text().size()));
    rtb().SetSelLength(0);
    rtb().SetSelUnderline(gathered_underline_);
    rtb().SetSelBold(gathered_bold_);
    rtb().SetSelText(gathered_);
    gathered_.clear();
}

void frmView::SetTitle(std::string_view title) {
    setWindowTitle(ScreenText(title));
}

void frmView::NameAfterFile(std::string_view what) {
    gName = file_.FileName;
    SetTitle(std::string(what) + gName);
}

void frmView::ShowText() {
    NameAfterFile("View File - ");
    ListText(BaseOf(file_), HexValue(file_.Size), *this);
}

void frmView::ShowHex() {
    NameAfterFile("View File - ");
    ListHex(BaseOf(file_), HexValue(file_.Size), *this);
}

void frmView::Show_Basic() {
    NameAfterFile("View File - ");
    ListBasic(BaseOf(file_), HexValue(file_.Size), *this);
}

void frmView::ShowDis() {
    NameAfterFile("Disassemble File - ");
    Disassemble(SectorOf(file_), HexValue(file_.Size), LoadAddressOf(file_), *this);
}

void frmView::ShowWordwise() {
    constexpr int kWidening = 50; // long lines shall fit
    NameAfterFile("View File - ");
    Module1::gOffset = BaseOf(file_);
    Module1::gSize = ViewedLength(Module1::gOffset, HexValue(file_.Size));
    Module1::a_load = file_.Load;
    Module1::a_exec = file_.Exec;
    if (!WordWise::IsDocument(Module1::a_load, Module1::a_exec)) {
        ShowData("This does not appear to be a WordWise Document");
        return;
    }
    resize(width() + kWidening, height());
    WordWise::FormatDocument(*this);
}

void frmView::ShowMap() {
    SetTitle(kMapTitle);
    gName = kMapName;
    ListMap(*this);
}

void frmView::ShowCat() {
    SetTitle(kCatTitle);
    ListCat(*this);
}

void frmView::ShowEX() {
    SetTitle(kEXTitle);
    ListEX(*this);
}

Views::~Views() {
    for (const auto& view : open_)
        view->Closed = nullptr;
    open_.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // no loop will do it now
}

void Views::Open(ViewTag tag, const ListRow& file) {
    // A window must not be deleted inside one of its own events, its close being one.
    const std::shared_ptr<frmView> view(new frmView(file), DeleteWhenIdle);
    open_.push_back(view);
    view->Closed = [this, closed = view.get()] {
        std::erase_if(open_, [&](const auto& v) { return v.get() == closed; });
    };
    view->Event_Open();
    view->Tag = tag;
    view->show();
    view->Show_File();
}

void Views::CloseAll() {
    for (const auto& view : std::vector(open_))
        view->close();
}

} // namespace quoravel
