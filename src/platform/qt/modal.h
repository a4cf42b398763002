#pragma once

#include "platform/host.h"

#include <utility>

namespace quoravel {

/// Makes a dialog, shows it and waits until it is closed. Unwinds if the program ended meanwhile.
template<class Dialog, class... Arguments>
void ShowModal(Arguments&&... arguments) {
    Dialog dialog(std::forward<Arguments>(arguments)...);
    dialog.exec();
    if (host().IsQuitting())
        throw AppQuitting();
}

} // namespace quoravel
