#include "link/serial.h"

#include <cassert>

namespace quoravel {

namespace {

Serial* installed_port = nullptr;
Timer* installed_timer = nullptr;

} // namespace

void InstallLink(Serial* port, Timer* timer) {
    installed_port = port;
    installed_timer = timer;
}

Serial& Serial1() {
    assert(installed_port != nullptr);
    return *installed_port;
}

Timer& Timer4() {
    assert(installed_timer != nullptr);
    return *installed_timer;
}

} // namespace quoravel
