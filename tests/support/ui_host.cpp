#include "support/ui_host.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

namespace quoravel {

void UiHost::DoEvents(int milliseconds) {
    ++pumps;
    if (on_pump)
        on_pump();
    const QDeadlineTimer deadline(milliseconds, Qt::PreciseTimer);
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    while (!quitting && milliseconds > 0 && !deadline.hasExpired());
    if (quitting)
        throw AppQuitting();
}

std::chrono::nanoseconds UiHost::Now() {
    ahead_ += clock_step;
    return std::chrono::steady_clock::now().time_since_epoch() + ahead_;
}

void UiHost::Quit() {
    ++quits;
    quitting = true;
}

} // namespace quoravel
