#pragma once

#include "support/companion_double.h"
#include "support/main_window_test.h"
#include "support/pty_peer.h"

#include <QTimer>

#include <string>

namespace quoravel {

/// The program with a cable, a pseudo terminal, to a micro that answers without delay.
class LinkWindowTest : public MainWindowTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs `act` once, as soon as `ready` holds while the program waits or runs.
    void When(std::function<bool()> ready, std::function<void()> act);

    PtyPeer cable;
    CompanionDouble micro;

  private:
    void Exchange();

    QTimer pump_;
    std::vector<std::pair<std::function<bool()>, std::function<void()>>> acts_;
};

} // namespace quoravel
