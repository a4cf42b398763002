#include "platform/qt/application.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QFileOpenEvent>

namespace quoravel {

App::App(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("Quoravel"));
    setApplicationVersion(QStringLiteral("2.0.0"));
    setDesktopFileName(QStringLiteral("quoravel"));
    setQuitOnLastWindowClosed(false); // the main window's close ends the program, nothing else does
}

bool App::event(QEvent* event) {
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);
    const QString file = static_cast<QFileOpenEvent*>(event)->file();
    if (!file.isEmpty() && Event_OpenDocument)
        Guarded([&] { Event_OpenDocument(PathOfText(file)); });
    return true;
}

} // namespace quoravel
