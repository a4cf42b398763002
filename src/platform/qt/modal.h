#pragma once

#include "platform/host.h"

#include <QApplication>
#include <QDialog>

#include <utility>

namespace quoravel {

/// The window that boxes and dialogs stand over: the one in use. One that was closed a moment ago
/// can still count as that, and would take the dialog with it when it goes; then there is none.
[[nodiscard]] inline QWidget* WindowInUse() {
    QWidget* window = QApplication::activeWindow();
    return window != nullptr && window->isVisible() ? window : nullptr;
}

/// Hides a window that has been closed and will be deleted. Dialogs over it stand on the stack of
/// whoever asks, and would be deleted with it: they are left as by Cancel, and no more stand over
/// it.
inline void HideForGood(QWidget& window) {
    window.hide();
    for (QDialog* dialog : window.findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
        dialog->setParent(nullptr, dialog->windowFlags()); // hides it, which ends its wait
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
