#pragma once

#include "link/ring.h"
#include "link/serial.h"
#include "platform/qt/guard.h"
#include "support/companion_double.h"

#include <QTimer>

#include <chrono>

namespace quoravel {

/// A cable straight into a micro, on which the link's timeouts pass fifty times as fast. To be made
/// after the main window, which installs its own.
class QuickLink : private Serial, private Timer {
  public:
    explicit QuickLink(CompanionDouble& micro) : micro_(micro) {
        micro_.byte_time = CompanionDouble::Time{0};
        timer_.setSingleShot(true);
        Connect(&timer_, &QTimer::timeout, &timer_, [this] {
            firing_ = true;
            Timer4_Action();
            firing_ = false;
        });
        InstallLink(this, this);
    }

    ~QuickLink() override { InstallLink(nullptr, nullptr); }

  private:
    static constexpr int kHaste = 50;

    [[nodiscard]] static CompanionDouble::Time Now() {
        return std::chrono::steady_clock::now().time_since_epoch();
    }

    void SetProfile(const SerialProfile& profile) override { profile_ = profile; }

    [[nodiscard]] SerialProfile Profile() const override { return profile_; }

    bool Open() override { return open_ = true; }

    void Close() override { open_ = false; }

    void Write(std::string_view bytes) override {
        if (open_)
            micro_.Take(bytes, Now());
    }

    [[nodiscard]] std::string ReadAll() override { return std::exchange(received_, {}); }

    void Poll() override {
        received_ += micro_.Give(Now());
        if (open_ && !received_.empty())
            Serial1_DataAvailable();
    }

    void SetPeriod(int milliseconds) override { timer_.setInterval(milliseconds / kHaste); }

    void SetEnabled(bool enabled) override { enabled ? timer_.start() : timer_.stop(); }

    [[nodiscard]] bool Enabled() const override { return timer_.isActive() || firing_; }

    CompanionDouble& micro_;
    QTimer timer_;
    SerialProfile profile_ = kTransferProfile;
    std::string received_;
    bool open_ = false;
    bool firing_ = false;
};

} // namespace quoravel
