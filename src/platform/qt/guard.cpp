#include "platform/qt/guard.h"

#include <string>

namespace quoravel {

void TellFailure(const std::exception& failure) {
    static bool telling = false; // painting what lies under the box may fail as well
    if (std::exchange(telling, true))
        return;
    try {
        host().MsgBox("That could not be done: " + std::string(failure.what()) +
                      ". Better save your disc under another name.");
    } catch (const AppQuitting&) { // NOLINT(bugprone-empty-catch): as in Guarded
    }
    telling = false;
}

} // namespace quoravel
