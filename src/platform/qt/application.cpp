#include "platform/qt/application.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QFileOpenEvent>
#include <QIcon>
#include <QTimer>

namespace quoravel {

namespace {

constexpr int kPatience = 100; // milliseconds between two looks whether a dialog still stands

QIcon WindowIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48})
        icon.addFile(QStringLiteral(":/quoravel-%1.png").arg(size), {size, size});
    return icon;
}

} // namespace

App::App(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("Quoravel"));
    setApplicationVersion(QStringLiteral("2.0.0"));
    setDesktopFileName(QStringLiteral("quoravel"));
    setWindowIcon(WindowIcon());
    setQuitOnLastWindowClosed(false); // the main window's close ends the program, nothing else does
}

bool App::event(QEvent* event) {
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);
    const QString file = static_cast<QFileOpenEvent*>(event)->file();
    if (!file.isEmpty())
        OpenDocument(PathOfText(file));
    return true;
}

/// A box or a dialog is answered first: what it asks is about the disc in memory.
void App::OpenDocument(const std::filesystem::path& file) {
    if (activeModalWidget() != nullptr) {
        auto* later = new QTimer(this);
        later->setSingleShot(true);
        Connect(later, &QTimer::timeout, this, [this, later, file] {
            later->deleteLater();
            OpenDocument(file);
        });
        later->start(kPatience);
    } else if (Event_OpenDocument) {
        Guarded([&] { Event_OpenDocument(file); });
    }
}

} // namespace quoravel
