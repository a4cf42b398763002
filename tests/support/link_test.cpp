#include "support/link_test.h"

#include "disc/module1.h"
#include "link/ring.h"
#include "link/trace.h"

#include <sstream>
#include <stdexcept>
#include <utility>

namespace quoravel {

namespace {

using namespace std::chrono_literals;

constexpr auto kLongestTest = std::chrono::hours(2); // on the test's clock

} // namespace

bool FakePort::Open() {
    log += "open ";
    return opens;
}

void FakePort::Write(std::string_view bytes) {
    writes.emplace_back(bytes);
    log += std::to_string(settings.back()) + ' ';
    on_write(bytes);
}

void FakeTimer::SetEnabled(bool enabled) {
    enabled_ = enabled;
    due_ = desktop_.now + period;
}

std::shared_ptr<TransferWindow> DeskDouble::NewTransferWindow() {
    Module1::TXAbort = false;
    window = std::make_shared<WindowDouble>();
    return window;
}

LinkWorld::LinkWorld() {
    Module1::Init();
    Module1::TXAbort = Module1::gSerialPortOpen = Module1::RXTimeout = false;
    InstallLink(&port, &timer);
    port.on_write = [this](std::string_view bytes) { micro.Take(bytes, desktop.now); };
    desktop.on_pump = [this] { Pump(); };
    desktop.program_folder = folder.path();
}

LinkWorld::~LinkWorld() {
    CloseTraceFile();
    InstallTracePane(nullptr);
    InstallLink(nullptr, nullptr);
}

void LinkWorld::Arrive(int milliseconds, std::string_view bytes) {
    Later(milliseconds, [this, text = std::string(bytes)] { port.received += text; });
}

void LinkWorld::Later(int milliseconds, std::function<void()> what) {
    later_.emplace(desktop.now + std::chrono::milliseconds(milliseconds), std::move(what));
}

void LinkWorld::Cancel() {
    Module1::TXAbort = true;
}

void LinkWorld::Spoil(const std::string& message,
                      const std::function<void(CompanionDouble::Reply&)>& how) {
    micro.spoil = [=, done = false](CompanionDouble::Reply& reply) mutable {
        if (reply.to == message && !std::exchange(done, true))
            how(reply);
    };
}

void LinkWorld::Trace() {
    Module1::gTraceWindow = true;
    InstallTracePane(&pane);
}

std::vector<std::string> LinkWorld::TraceLines() const {
    constexpr std::size_t kStamp = 20; // "2026-11-23 12:34:56 "
    std::vector<std::string> lines;
    std::istringstream text(pane.text);
    for (std::string line; std::getline(text, line);)
        if (const auto said = line.substr(kStamp, line.size() - kStamp - 1);
            !said.starts_with("TX: ") && !said.starts_with("RX: "))
            lines.push_back(said);
    return lines;
}

void LinkWorld::Pump() {
    if (desktop.now > kLongestTest)
        throw std::runtime_error("this never ends");
    while (!later_.empty() && later_.begin()->first <= desktop.now)
        later_.extract(later_.begin()).mapped()();
    port.received += micro.Give(desktop.now);
    if (!port.received.empty())
        Serial1_DataAvailable();
    if (timer.IsDue() && !Module1::RXTimeout)
        Timer4_Action();
}

} // namespace quoravel
