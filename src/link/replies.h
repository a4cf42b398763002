#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// What the micro answers, and the few fixed messages that it gets.

namespace quoravel {

inline constexpr std::string_view kSuccessText = "-----BBC-----PC-----"; ///< without its line end

/// The answer to an error line: asks for the text of the error.
inline constexpr std::string_view kErrorAcknowledge = "-----BBCerror1-----PC-----";

/// Gives up a track that the micro waits for.
inline constexpr std::string_view kAbortMessage = "\x1B\x02";

inline constexpr int kLongestReply = 65535;

/// True if all of `reply` says that a command is done, whatever its case and with either line end.
[[nodiscard]] bool IsSuccessLine(std::string_view reply);

/// True if all of `reply` says that a star command failed. Its first character may be missing.
[[nodiscard]] bool IsErrorLine(std::string_view reply);

/// The whole number that `reply` starts with: blanks, then digits, the rest ignored; 0 if there is
/// none. Numbers beyond 2147483647 count as that.
[[nodiscard]] std::int32_t NumberOf(std::string_view reply);

/// A get track ("G") or put track ("g") message.
[[nodiscard]] std::string TrackMessage(char command, int drive, std::int64_t track);

} // namespace quoravel
