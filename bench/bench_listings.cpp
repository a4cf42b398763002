#include "disc/module1.h"
#include "platform/host.h"
#include "view/basic.h"
#include "view/disassembler.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <random>
#include <span>

// A whole drive as a BASIC program and as machine code, into a sink that only counts. Bytes a
// second are those of the text that comes out. The desktop asks a real clock, as each yield does.

namespace quoravel {
namespace {

class BenchHost : public Host {
  public:
    BenchHost() { InstallHost(this); }

    ~BenchHost() override { InstallHost(nullptr); }

    using Host::MsgBox;

    void MsgBox(std::string_view, std::string_view) override {}

    bool AskYesNo(std::string_view, std::string_view) override { return false; }

    void DoEvents(int) override {}

    std::chrono::nanoseconds Now() override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }

    std::optional<std::filesystem::path> AskOpenFile(const FileType&) override { return {}; }

    std::optional<std::filesystem::path> AskSaveFile(const FileType&, std::string_view) override {
        return {};
    }

    std::optional<std::filesystem::path> AskFolder() override { return {}; }

    std::optional<std::filesystem::path> PreferencesFolder() override { return {}; }

    std::optional<std::filesystem::path> StateFolder() override { return {}; }

    void Quit() override {}

    void OpenLink(std::string_view, std::function<void(int, const std::string&)>) override {}
};

class CountingSink : public ViewSink {
  public:
    void ShowData(std::string_view text) override {
        bytes += std::ssize(text);
        benchmark::DoNotOptimize(text.data());
    }

    std::int64_t bytes = 0;
};

void Report(benchmark::State& state, const CountingSink& sink) {
    state.SetBytesProcessed(sink.bytes);
}

/// 10 IF i%*i%>size% THEN 120 / 20 PRINT "wrong", all over the drive.
void FillWithBasic() {
    constexpr auto lines = std::to_array<std::uint8_t>(
        {0,   10,   0,   0xE7, ' ',  'i', '%',  '*',  'i',  '%',  '>', 's', 'i',
         'z', 'e',  '%', ' ',  0x8C, ' ', 0x8D, 0x44, 0x78, 0x40, 13,  0,   20,
         0,   0xF1, ' ', '"',  'w',  'r', 'o',  'n',  'g',  '"',  13});
    Module1::DiscImg.SetByte(0, 13);
    for (int at = 1; at < kDriveBytes; at += static_cast<int>(lines.size()))
        Module1::DiscImg.Write(at, lines);
}

void FillWithCode() {
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same bytes in each run
    for (int at = 0; at < kDriveBytes; ++at)
        Module1::DiscImg.SetByte(at, static_cast<std::uint8_t>(random()));
}

void Basic(benchmark::State& state) {
    const BenchHost desktop;
    FillWithBasic();
    CountingSink sink;
    for (auto _ : state)
        ListBasic(0, kDriveBytes, sink);
    Report(state, sink);
}

BENCHMARK(Basic)->Unit(benchmark::kMillisecond);

void Disassembly(benchmark::State& state) {
    const BenchHost desktop;
    FillWithCode();
    CountingSink sink;
    for (auto _ : state)
        Disassemble(0, kDriveBytes, 0x1900, sink);
    Report(state, sink);
}

BENCHMARK(Disassembly)->Unit(benchmark::kMillisecond);

void ClockOfAYield(benchmark::State& state) {
    const BenchHost desktop;
    for (auto _ : state)
        Yield();
}

BENCHMARK(ClockOfAYield);

} // namespace
} // namespace quoravel
