#pragma once

#include <string_view>

namespace quoravel {

/// The file that holds the program for the micro.
inline constexpr std::string_view kCompanionFile = "tavrilo.bas";

/// The window that a bootstrap runs in. Once it has been closed, calls do nothing.
class BootstrapWindow {
  public:
    BootstrapWindow() = default;
    BootstrapWindow(const BootstrapWindow&) = delete;
    BootstrapWindow& operator=(const BootstrapWindow&) = delete;
    virtual ~BootstrapWindow() = default;

    virtual void SetProgress(int percent) = 0;

    /// From now on the user can no longer cancel: what frees the micro's keyboard must go out.
    virtual void DimCancel() = 0;
};

/// Types the companion program at the prompt of a bare micro, at 1200 baud, and leaves the port
/// open at 19200. A program that is not there is told in a box. False if the port does not open,
/// which is told too; the window then stays for another try. The caller holds a LinkUse.
[[nodiscard]] bool SendBasicProgram(BootstrapWindow& window);

} // namespace quoravel
