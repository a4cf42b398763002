#include "shell/frmProgress.h"

#include "disc/module1.h"
#include "platform/qt/accessible.h"
#include "platform/qt/guard.h"
#include "platform/qt/progress.h"
#include "platform/qt/text.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quoravel {

frmProgress::frmProgress(QWidget* parent)
    : QWidget(parent, Qt::Window),
      pb_(MakeProgressBar(this, QStringLiteral("Images listed"))),
      txtImages_(new QLabel(QStringLiteral("Found 0 Images"), this)) {
    TellAs(*this, QAccessible::Dialog);
    setObjectName(QStringLiteral("frmProgress"));
    setWindowTitle(QStringLiteral("*EX Progress"));
    resize(331, 121);
    txtImages_->setObjectName(QStringLiteral("txtImages"));
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("Cancel"));
    Connect(cancel, &QPushButton::clicked, this, [] { Cancel_Action(); });
    auto* column = new QVBoxLayout(this);
    column->addWidget(pb_);
    column->addWidget(txtImages_);
    column->addWidget(cancel, 0, Qt::AlignRight);
}

void frmProgress::Cancel_Action() {
    Module1::gCancel = true;
}

void frmProgress::closeEvent(QCloseEvent* /*event*/) {
    Cancel_Action(); // not refused, or it would keep all windows from being closed at the end
}

void frmProgress::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        Cancel_Action();
    else
        QWidget::keyPressEvent(event);
}

void frmProgress::SetImages(std::string_view text) {
    txtImages_->setText(HostText(text));
}

void frmProgress::SetProgress(int percent) {
    pb_->setValue(percent);
}

} // namespace quoravel
