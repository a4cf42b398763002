#include "link/frmRX.h"

#include "disc/module1.h"
#include "platform/qt/accessible.h"
#include "platform/qt/guard.h"
#include "platform/qt/progress.h"
#include "platform/qt/text.h"
#include "prefs/xml_preferences.h"
#include "shell/frmPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quoravel {

namespace {

constexpr int kLeastWidth = 320;

QLabel* AddLabel(QWidget& window, QVBoxLayout& column, const QString& name, const QString& text) {
    auto* label = new QLabel(text, &window);
    label->setObjectName(name);
    column.addWidget(label);
    return label;
}

} // namespace

frmRX::frmRX() : pb_(MakeProgressBar(this, QStringLiteral("Progress"))) {
    TellAs(*this, QAccessible::Dialog);
    setObjectName(QStringLiteral("frmRX"));
    setWindowTitle(QStringLiteral("Receive Disc Image"));
    auto* column = new QVBoxLayout(this);
    lblTtl_ =
        AddLabel(*this, *column, QStringLiteral("lblTtl"), QStringLiteral("Receive In Progress"));
    lblRX_ = AddLabel(*this, *column, QStringLiteral("lblRX"),
                      QStringLiteral("Receiving Track 0 of 159"));
    pb_->setMinimumWidth(kLeastWidth); // not the window's: it is to grow with its texts
    column->addWidget(pb_);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    Connect(cancel, &QPushButton::clicked, this, [this] { close(); });
    column->addWidget(cancel, 0, Qt::AlignRight);
}

std::shared_ptr<frmRX> frmRX::Show() {
    // Cancel closes the window inside one of its own events, and must not delete it there.
    const std::shared_ptr<frmRX> window(new frmRX, DeleteWhenIdle);
    window->Event_Open();
    window->show();
    return window;
}

void frmRX::Event_Open() {
    Module1::TXAbort = false;
    adjustSize();
    move(StoredPosition("RX", size()));
}

void frmRX::Event_Close() {
    closed_ = true;
    StorePosition("RX", *this);
    hide(); // or a box that comes in the events below would stand over a window that is closed
    XMLPreferences::WritePrefFile();
}

void frmRX::closeEvent(QCloseEvent* /*event*/) {
    Guarded([this] {
        if (closed_)
            return;
        Module1::TXAbort = true; // by Cancel or otherwise: nobody can stop it later
        Event_Close();
    });
}

void frmRX::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        close();
    else
        QWidget::keyPressEvent(event);
}

void frmRX::SetTitle(std::string_view text) {
    if (!closed_)
        setWindowTitle(HostText(text));
}

void frmRX::SetTtl(std::string_view text) {
    if (!closed_)
        lblTtl_->setText(HostText(text));
}

void frmRX::SetRX(std::string_view text) {
    if (!closed_)
        lblRX_->setText(HostText(text));
}

void frmRX::SetProgress(int percent) {
    if (!closed_)
        pb_->setValue(percent);
}

void frmRX::Close() {
    if (closed_)
        return;
    Event_Close();
    close();
}

} // namespace quoravel
