#include "platform/qt/guard.h"

#include <string>
#include <vector>

namespace quoravel {

namespace {

int entries = 0;              // that stand, one inside the other
std::vector<QObject*> closed; // windows to delete when none does

} // namespace

Entered::Entered() {
    ++entries;
}

Entered::~Entered() {
    if (--entries > 0)
        return;
    for (QObject* window : std::exchange(closed, {}))
        window->deleteLater();
}

void DeleteWhenIdle(QObject* window) {
    if (entries > 0)
        closed.push_back(window);
    else
        window->deleteLater();
}

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
