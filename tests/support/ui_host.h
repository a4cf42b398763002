#pragma once

#include "support/scripted_host.h"

namespace quoravel {

/// The scripted desktop for tests of windows: boxes and dialogs are answered from the queues, time
/// and events are Qt's own.
class UiHost : public ScriptedHost {
  public:
    void DoEvents(int milliseconds) override;
    std::chrono::nanoseconds Now() override;
    void Quit() override;

    bool quitting = false; ///< from Quit on every pump throws; a test that starts anew clears it
};

} // namespace quoravel
