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

    [[nodiscard]] bool IsQuitting() const override { return quitting; }

    /// What the clock goes on by, beside its own pace, each time that somebody looks at it: loops
    /// then yield as often on a fast machine as on a slow one.
    std::chrono::nanoseconds clock_step{0};

    bool quitting = false; ///< from Quit on every pump throws; a test that starts anew clears it

  private:
    std::chrono::nanoseconds ahead_{0};
};

} // namespace quoravel
