#include "link/frmFirst.h"

#include "disc/module1.h"
#include "link/link_use.h"
#include "platform/qt/progress.h"
#include "shell/frmDialog.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace quoravel {

namespace {

constexpr int kIndent = 24; // of what is typed, in pixels
constexpr std::size_t kFirstTyped = 2;

constexpr std::array kInstructions{
    "1. Make sure the serial cable is well connected",
    "2. Type at the BBC :",
    "<BREAK>",
    "*BASIC",
    "*FX 7, 4", // receive and send at 1200 baud
    "*FX 8, 4",
    "*FX 2, 1", // what comes in is typed
};

} // namespace

frmFirst::frmFirst(QWidget* parent)
    : QDialog(parent), pb_(MakeProgressBar(this, QStringLiteral("Share of the program sent"))) {
    setObjectName(QStringLiteral("frmFirst"));
    setWindowTitle(QStringLiteral("Send Basic Program"));
    auto* column = new QVBoxLayout(this);
    for (std::size_t i = 0; i < kInstructions.size(); ++i) {
        auto* label = new QLabel(QLatin1StringView(kInstructions[i]), this);
        label->setObjectName(QStringLiteral("StaticText%1").arg(i + 1));
        label->setTextFormat(Qt::PlainText); // <BREAK> is no tag
        label->setIndent(i < kFirstTyped ? 0 : kIndent);
        column->addWidget(label);
    }
    column->addWidget(pb_);
    QWidget* buttons = MakeButtons(*this, "Go", [this] { cmdOK_Action(); });
    column->addWidget(buttons);
    cmdOK_ = buttons->findChild<QPushButton*>(QStringLiteral("cmdOK"));
    cmdCancel_ = buttons->findChild<QPushButton*>(QStringLiteral("cmdCancel"));
}

/// The dialog lives until this returns, closed or not, as its event loop runs below it.
void frmFirst::cmdOK_Action() {
    const LinkUse use;
    if (!use)
        return;
    cmdOK_->setEnabled(false);
    if (SendBasicProgram(*this))
        accept();
    else
        cmdOK_->setEnabled(true);
}

/// Meant: without a send to stop, the mark stays until the next transfer clears it.
void frmFirst::cmdCancel_Action() {
    Module1::TXAbort = true;
    QDialog::reject();
}

void frmFirst::reject() {
    if (cmdCancel_->isEnabled())
        cmdCancel_Action();
}

void frmFirst::SetProgress(int percent) {
    if (isVisible())
        pb_->setValue(percent);
}

void frmFirst::DimCancel() {
    cmdCancel_->setEnabled(false);
}

} // namespace quoravel
