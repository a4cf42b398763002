#pragma once

#include "platform/host.h"
#include "view/sink.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>

namespace quoravel {

/// A desktop with nothing on it but a real clock, which each yield asks. Installs itself for as
/// long as it lives.
class BenchHost : public Host {
  public:
    BenchHost() { InstallHost(this); }

    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    ~BenchHost() override { InstallHost(nullptr); }

    using Host::MsgBox;

    void MsgBox(std::string_view /*text*/, std::string_view /*title*/) override {}

    bool AskYesNo(std::string_view /*text*/, std::string_view /*title*/) override { return false; }

    void DoEvents(int /*milliseconds*/) override {}

    std::chrono::nanoseconds Now() override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }

    std::optional<std::filesystem::path> AskOpenFile(const FileType& /*filter*/) override {
        return {};
    }

    std::optional<std::filesystem::path> AskSaveFile(const FileType& /*filter*/,
                                                     std::string_view /*proposal*/) override {
        return {};
    }

    std::optional<std::filesystem::path> AskFolder() override { return {}; }

    std::optional<std::filesystem::path> PreferencesFolder() override { return {}; }

    std::optional<std::filesystem::path> StateFolder() override { return {}; }

    std::filesystem::path ProgramFolder() override { return {}; }

    void PlaySound(const std::filesystem::path& /*file*/) override {}

    std::string ShortDate() override { return {}; }

    std::string LongTime() override { return {}; }

    void StartDialogsIn(const std::filesystem::path& /*folder*/) override {}

    void Quit() override {}

    [[nodiscard]] bool IsQuitting() const override { return false; }

    void OpenLink(std::string_view /*url*/,
                  std::function<void(int, const std::string&)> /*done*/) override {}
};

/// Counts the text of a view and drops it.
class CountingSink : public ViewSink {
  public:
    std::int64_t bytes = 0;

    void ShowData(std::string_view text) override {
        benchmark::DoNotOptimize(text.data());
        bytes += std::ssize(text);
    }
};

} // namespace quoravel
