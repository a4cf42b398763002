#pragma once

#include <string_view>

namespace quoravel {

/// Position of `wanted` in `text`, looked for from position `from` on: the first character is 1,
/// and 0 means that there is none. The case of the letters A to Z makes no difference. Nothing is
/// found at once, anywhere up to the end of the text.
[[nodiscard]] int FindText(std::string_view text, std::string_view wanted, int from);

} // namespace quoravel
