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

    /// A window of the program by its name, or nullptr.
    template<class Window = QWidget>
    [[nodiscard]] Window* Find(const char* name) const {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == QLatin1StringView(name) && top->isVisible())
                return dynamic_cast<Window*>(top);
        return nullptr;
    }

    /// Whether a person who opens the menu of the trace finds an item enabled.
    [[nodiscard]] bool IsEnabled(const char* item) const;

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
