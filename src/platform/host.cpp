#include "platform/host.h"

#include <cassert>

namespace quoravel {

namespace {

using namespace std::chrono_literals;

constexpr auto kYieldPace =
    12ms; // Cancel answers well within 50 ms, and pumping costs next to nothing.

Host* installed = nullptr;
std::chrono::nanoseconds last_pump{0};

} // namespace

Host& host() {
    assert(installed != nullptr);
    return *installed;
}

void InstallHost(Host* the_host) {
    installed = the_host;
    if (installed != nullptr)
        last_pump = installed->Now(); // nothing is due yet
}

void Yield() {
    if (host().Now() - last_pump < kYieldPace)
        return;
    host().DoEvents(0);
    last_pump = host().Now();
}

} // namespace quoravel
