#pragma once

#include "link/serial.h"
#include "link/windows.h"
#include "support/companion_double.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace quoravel {

/// A serial port that is a few variables.
class FakePort : public Serial {
  public:
    void SetProfile(const SerialProfile& profile) override { settings.push_back(profile.Baud); }

    [[nodiscard]] SerialProfile Profile() const override { return {settings.back()}; }

    bool Open() override;

    void Close() override { log += "close "; }

    void Write(std::string_view bytes) override;

    [[nodiscard]] std::string ReadAll() override { return std::exchange(received, {}); }

    void Poll() override { ++polls; }

    std::vector<int> settings{19200}; ///< every baud rate that was set
    std::string log;                  ///< "open", "close" and "1200" or "19200" for each Write
    std::vector<std::string> writes;
    std::string received; ///< what ReadAll gives
    bool opens = true;
    int polls = 0;
    std::function<void(std::string_view)> on_write = [](std::string_view) {};

    /// All that was written.
    [[nodiscard]] std::string Sent() const {
        return std::accumulate(writes.begin(), writes.end(), std::string());
    }
};

/// A timer that a test's clock fires.
class FakeTimer : public Timer {
  public:
    explicit FakeTimer(ScriptedHost& desktop) : desktop_(desktop) {}

    void SetPeriod(int milliseconds) override { period = std::chrono::milliseconds(milliseconds); }

    void SetEnabled(bool enabled) override;

    [[nodiscard]] bool Enabled() const override { return enabled_; }

    [[nodiscard]] bool IsDue() const { return enabled_ && desktop_.now >= due_; }

    std::chrono::nanoseconds period{0};

  private:
    ScriptedHost& desktop_;
    bool enabled_ = false;
    std::chrono::nanoseconds due_{0};
};

/// What a progress window would show.
class WindowDouble : public TransferWindow {
  public:
    void SetTitle(std::string_view text) override { shown.emplace_back(text); }

    void SetTtl(std::string_view text) override { shown.emplace_back(text); }

    void SetRX(std::string_view text) override { shown.emplace_back(text); }

    void SetProgress(int percent) override { progress.push_back(percent); }

    void Close() override { ++closes; }

    std::vector<std::string> shown;
    std::vector<int> progress;
    int closes = 0;
};

class DeskDouble : public TransferDesk {
  public:
    [[nodiscard]] std::shared_ptr<TransferWindow> NewTransferWindow() override;

    [[nodiscard]] bool PlaysWave() const override { return plays_wave; }

    std::shared_ptr<WindowDouble> window; ///< the last one
    bool plays_wave = false;
};

class PaneDouble : public TracePane {
  public:
    [[nodiscard]] int TextLength() const override { return static_cast<int>(text.size()); }

    void CutOldest(int characters) override { text.erase(0, static_cast<std::size_t>(characters)); }

    void Append(std::string_view utf8) override { text += utf8; }

    std::string text;
};

/// What the link works on in a test: a port, its timer, a micro at the other end, and a clock that
/// only waiting moves. Ten seconds of waiting take none.
class LinkWorld {
  public:
    LinkWorld();
    ~LinkWorld();
    LinkWorld(const LinkWorld&) = delete;
    LinkWorld& operator=(const LinkWorld&) = delete;

    /// Bytes that come down the line some milliseconds from now.
    void Arrive(int milliseconds, std::string_view bytes);

    /// Something that happens some milliseconds from now, while somebody waits.
    void Later(int milliseconds, std::function<void()> what);

    /// The Cancel button of the progress window.
    static void Cancel();

    /// Spoils the micro's first answer to one message.
    void Spoil(const std::string& message, const std::function<void(CompanionDouble::Reply&)>& how);

    /// Starts the trace.
    void Trace();

    /// The lines of the trace, without date and time and without dumps.
    [[nodiscard]] std::vector<std::string> TraceLines() const;

    [[nodiscard]] std::int64_t Milliseconds() const { return desktop.now.count() / 1'000'000; }

    ScriptedHost desktop;
    FakePort port;
    FakeTimer timer{desktop};
    CompanionDouble micro;
    DeskDouble desk;
    PaneDouble pane;
    TempFolder folder;

  private:
    void Pump();

    std::multimap<std::chrono::nanoseconds, std::function<void()>> later_;
};

class LinkTest : public testing::Test, protected LinkWorld {};

} // namespace quoravel
