#pragma once

#include <functional>
#include <string_view>

namespace quoravel {

/// Has the micro carry out a star command; `text` is what the user typed, in bytes. Its output goes
/// to `show` piece by piece, in bytes with CR LF line ends, to be added at the end; `show` gives
/// false when nobody looks any more, and the conversation then ends. A failure is told in a box and
/// gives false: the command line keeps its text. The caller holds a LinkUse.
[[nodiscard]] bool SendStarCommand(std::string_view text,
                                   const std::function<bool(std::string_view)>& show);

} // namespace quoravel
