#pragma once

#include "platform/serial.h"

namespace quoravel {

inline constexpr SerialProfile kTransferProfile{19200};
inline constexpr SerialProfile kBootstrapProfile{1200}; ///< while a program is typed into the micro

/// Makes `port` and `timer` those that the link works on, Serial1 and Timer4; nullptr removes them.
/// The caller keeps ownership.
void InstallLink(Serial* port, Timer* timer);

/// The port and the timeout timer of the link. There must be ones: see InstallLink.
[[nodiscard]] Serial& Serial1();
[[nodiscard]] Timer& Timer4();

} // namespace quoravel
