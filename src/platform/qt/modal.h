#pragma once

#include "platform/host.h"

#include <QApplication>
#include <QWidget>

#include <utility>

namespace quoravel {

/// The window that boxes and dialogs stand over: the one in use. One that was closed a moment ago
/// can still count as that, and would take the dialog with it when it goes; then there is none.
[[nodiscard]] inline QWidget* WindowInUse() {
    QWidget* window = QApplication::activeWindow();
    return window != nullptr && window->isVisible() ? window : nullptr;
}

/// Makes a dialog, shows it and waits until it is closed. Unwinds if the program ended meanwhile.
template<class Dialog, class... Arguments>
void ShowModal(Arguments&&... arguments) {
    Dialog dialog(std::forward<Arguments>(arguments)...);
    dialog.exec();
    if (host().IsQuitting())
        throw AppQuitting();
}

} // namespace quoravel
