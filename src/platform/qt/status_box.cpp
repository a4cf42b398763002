#include "platform/qt/status_box.h"

#include "platform/qt/accessible.h"
#include "platform/qt/text.h"

#include <QLabel>

#include <algorithm>

namespace quoravel {

namespace {

constexpr int kHeight = 20; // for letters of the usual size
constexpr int kMargin = 20; // on each side of the text, unless it needs the room

} // namespace

StatusBox::StatusBox(QWidget* parent) : QFrame(parent), text_(new QLabel(this)) {
    TellAs(*this, QAccessible::StatusBar);
    setFrameShape(QFrame::StyledPanel);
    text_->setTextFormat(Qt::PlainText);
}

void StatusBox::SetText(std::string_view latin1) {
    text_->setText(ScreenText(latin1));
    text_->setToolTip(ScreenText(latin1)); // a narrow window cuts the line short
    PlaceText();
}

int StatusBox::LeastHeight() const {
    return std::max(kHeight, fontMetrics().height());
}

void StatusBox::PlaceText() {
    const int between_margins = width() - 2 * kMargin;
    const bool fits = text_->sizeHint().width() <= between_margins;
    text_->setGeometry(kMargin, 0, fits ? between_margins : width() - kMargin, height());
}

void StatusBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    PlaceText();
}

} // namespace quoravel
