#pragma once

#include "disc/module1.h"
#include "link/windows.h"

#include <string>
#include <string_view>

// What goes over the cable and why a track is asked for again, in a window and in a file. Only
// while Module1::gTraceWindow is set; nothing is built when it is not. No fault of it is told.

namespace quoravel {

/// Makes `pane` the place that the trace writes to; nullptr: nowhere. The caller keeps ownership,
/// and sets or clears gTraceWindow.
void InstallTracePane(TracePane* pane);

/// Adds `text`, which ends in CR, with date and time to the trace. Pumps events.
void ShowData(std::string_view text);

/// Adds `bytes` in hex and as characters, 16 to a line; `sent` says in which direction they went.
/// Pumps events.
void DumpHex(std::string_view bytes, bool sent);

/// The parts, texts and whole numbers, as one line of the trace.
template<class... Parts>
void TraceLine(const Parts&... parts) {
    if (!Module1::gTraceWindow)
        return;
    std::string line;
    const auto add = [&](const auto& part) {
        if constexpr (requires { std::to_string(part); })
            line += std::to_string(part);
        else
            line += std::string_view(part); // NOLINT(*-array-to-pointer-decay): most are literals
    };
    (add(parts), ...);
    ShowData(line + '\r');
}

/// The menu command: asks for a file and writes the trace to it from now on, in place of the file
/// of before. Sets gTraceFileOpen.
void TraceToFile();

/// Ends the writing to a file, if there is one. Clears gTraceFileOpen.
void CloseTraceFile();

} // namespace quoravel
