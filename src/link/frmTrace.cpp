#include "link/frmTrace.h"

#include "disc/module1.h"
#include "link/trace.h"
#include "platform/qt/accessible.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/guard.h"
#include "platform/qt/text.h"
#include "prefs/xml_preferences.h"
#include "shell/frmPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>
#include <string>

namespace quoravel {

namespace {

constexpr QSize kNewSize(762, 359);
constexpr char kBeyondLatin1 = 26; // as BytesOfScreenText gives it

/// Keys that read a text and could not change one: those that type nothing, copy, select all.
bool IsReadingKey(const QKeyEvent& key) {
    return key.text().isEmpty() || key.matches(QKeySequence::Copy) ||
           key.matches(QKeySequence::SelectAll);
}

} // namespace

frmTrace::frmTrace() : rtbTrace_(new EditField(this)) {
    TellAs(*this, QAccessible::Window);
    setObjectName(QStringLiteral("frmTrace"));
    setWindowTitle(QStringLiteral("Trace"));
    setMinimumSize(kLeastWindowSize, kLeastWindowSize);
    setMaximumSize(kLargestWindowSize, kLargestWindowSize);
    rtbTrace_->setObjectName(QStringLiteral("rtbTrace"));
    rtbTrace_->setAccessibleName(QStringLiteral("Trace"));
    rtbTrace_->installEventFilter(this);
    auto* close_key = new QShortcut(QKeySequence::Close, this);
    Connect(close_key, &QShortcut::activated, this, [this] { close(); });
    InstallTracePane(this);
}

frmTrace::~frmTrace() {
    if (!closed_) // a closed one is not the pane any more, and another may be
        InstallTracePane(nullptr);
}

void frmTrace::Event_Open() {
    const QRect place = StoredPlace("Trace", kNewSize);
    setGeometry({place.topLeft(), place.size()});
    move(place.topLeft());
}

void frmTrace::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    rtbTrace_->setGeometry(rect());
}

/// A key does nothing in the pane, unless it only reads.
bool frmTrace::eventFilter(QObject* watched, QEvent* event) {
    return event->type() == QEvent::KeyPress && !IsReadingKey(static_cast<QKeyEvent&>(*event))
               ? true
               : QWidget::eventFilter(watched, event);
}

int frmTrace::TextLength() const {
    return static_cast<int>(rtbTrace_->Text().size());
}

void frmTrace::CutOldest(int characters) {
    rtbTrace_->SetSelStart(0);
    rtbTrace_->SetSelLength(characters);
    rtbTrace_->SetSelText({});
}

/// Stays at the end, unless somebody has scrolled up to read.
void frmTrace::Append(std::string_view utf8) {
    const QScrollBar& bar = *rtbTrace_->verticalScrollBar();
    const bool at_end = bar.value() == bar.maximum();
    rtbTrace_->SetSelStart(TextLength());
    std::string bytes = BytesOfScreenText(HostText(utf8));
    std::ranges::replace(bytes, kBeyondLatin1, '?'); // of a date in another script
    rtbTrace_->SetSelText(bytes);
    if (at_end)
        rtbTrace_->SetScrollPosition(TextLength());
}

void frmTrace::closeEvent(QCloseEvent* /*event*/) {
    Guarded([this] {
        if (!closed_)
            Event_Close();
    });
}

void frmTrace::Event_Close() {
    closed_ = true;
    Module1::gTraceWindow = false;
    CloseTraceFile();
    StorePlace("Trace", *this, size());
    InstallTracePane(nullptr);
    DeleteWhenIdle(this);
    hide(); // or a box that comes in the events below would stand over a window that is closed
    XMLPreferences::WritePrefFile(); // events run, and another trace may be opened
}

} // namespace quoravel
