#include "link/frmCLI.h"

#include "link/link_use.h"
#include "link/ring.h"
#include "link/star_command.h"
#include "platform/host.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QEventLoop>
#include <QLineEdit>

namespace quoravel {

namespace {

constexpr std::size_t kFullPane = 1'000'000; // far more than a person reads
constexpr int kCut = 500'000;
constexpr float kFaint = 0.6F;

/// Thrown into a wait for the micro when nobody looks at its answer any more.
class ConsoleClosed {};

/// In a colour of its own: not every desktop's dark colours have one for it.
void ShowPlaceholder(QWidget& field) {
    QPalette colours = field.palette();
    QColor faint = colours.color(QPalette::Text);
    faint.setAlphaF(kFaint);
    colours.setColor(QPalette::PlaceholderText, faint);
    field.setPalette(colours);
}

} // namespace

frmCLI::frmCLI() : frmDocument({"frmCLI", "rtbCLI", "CLI"}), txtCmd_(new QLineEdit(&content())) {
    setWindowTitle(QStringLiteral("* Commands"));
    setWindowModality(Qt::ApplicationModal);
    rtb().setAccessibleName(QStringLiteral("Answers"));
    txtCmd_->setObjectName(QStringLiteral("txtCmd"));
    txtCmd_->setAccessibleName(QStringLiteral("Star command"));
    txtCmd_->setPlaceholderText(QStringLiteral("Star command"));
    ShowPlaceholder(*txtCmd_);
    Connect(txtCmd_, &QLineEdit::returnPressed, this, [this] { txtCmd_KeyDown(); });
    menu().Handle("EditCut", [this] { txtCmd_->cut(); });
    menu().Handle("EditPaste", [this] { txtCmd_->paste(); });
    menu().Handle("EditClear", [this] {
        if (txtCmd_->hasSelectedText())
            txtCmd_->del();
    });
}

void frmCLI::Event_Open() {
    frmDocument::Event_Open();
    txtCmd_->setFocus();
}

void frmCLI::Form_Resize() {
    const int height = txtCmd_->sizeHint().height();
    const QRect all = content().rect();
    txtCmd_->setGeometry(0, all.height() - height, all.width(), height);
    rtb().setGeometry(0, 0, all.width(), all.height() - height);
}

void frmCLI::EditCopy_Action() {
    if (txtCmd_->hasFocus())
        txtCmd_->copy();
    else
        frmDocument::EditCopy_Action();
}

void frmCLI::EditSelectAll_Action() {
    if (txtCmd_->hasFocus())
        txtCmd_->selectAll();
    else
        frmDocument::EditSelectAll_Action();
}

/// Enter. A command that failed stays in the field.
void frmCLI::txtCmd_KeyDown() {
    const auto self = shared_from_this(); // the window may be closed during the wait
    const LinkUse use;
    if (!use)
        return;
    try {
        const WaitWatch watch([this] {
            if (IsClosed())
                throw ConsoleClosed();
        });
        RunCommand(BytesOfScreenText(txtCmd_->text()));
    } catch (const ConsoleClosed&) {
        Swallow_Rubbish(); // or the answer would be taken for that to the next command
    }
}

void frmCLI::RunCommand(std::string_view command) {
    const auto show = [this](std::string_view output) { return ShowOutput(output); };
    if (!SendStarCommand(command, show))
        return;
    txtCmd_->clear();
    rtb().SetSelStart(static_cast<int>(rtb().Text().size()));
}

bool frmCLI::ShowOutput(std::string_view output) {
    if (IsClosed())
        return false;
    if (rtb().Text().size() > kFullPane) { // a line that chatters does so without end
        rtb().SetSelStart(0);
        rtb().SetSelLength(kCut);
        rtb().SetSelText({});
    }
    rtb().SetSelStart(static_cast<int>(rtb().Text().size()));
    rtb().SetSelText(output);
    rtb().SetScrollPosition(static_cast<int>(rtb().Text().size())); // the last line
    return true;
}

void ShowConsole() {
    // A command may still be waiting in it when it is closed.
    const std::shared_ptr<frmCLI> console(new frmCLI, DeleteWhenIdle);
    QEventLoop until_closed;
    console->Closed = [&] { until_closed.quit(); };
    console->Event_Open();
    console->show();
    until_closed.exec();
    console->Closed = nullptr;
    if (host().IsQuitting())
        throw AppQuitting();
}

} // namespace quoravel
