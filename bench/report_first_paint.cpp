#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <cstdio>
#include <cstdlib>

// Loaded before a program with a window, this prints the time of day in microseconds once the first
// window has been painted, and ends the program there. The program needs no hook for it.

namespace {

void ReportAndEnd() {
    using namespace std::chrono;
    const auto now = duration_cast<microseconds>(system_clock::now().time_since_epoch());
    std::printf("%lld\n", static_cast<long long>(now.count()));
    std::fflush(stdout);
    std::_Exit(0);
}

class FirstPaint : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && qobject_cast<QWidget*>(watched) != nullptr) {
            QCoreApplication::instance()->removeEventFilter(this);
            QTimer::singleShot(0, &ReportAndEnd); // when all of the window is on the screen
        }
        return false;
    }
};

void WatchForFirstPaint() {
    auto* application = QCoreApplication::instance();
    application->installEventFilter(new FirstPaint(application));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(WatchForFirstPaint)
