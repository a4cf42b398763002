#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// `bytes` in base64, padded, with a CR LF pair between every two lines of 45 characters; empty for
/// no bytes.
[[nodiscard]] std::string EncodeBase64(std::span<const std::uint8_t> bytes);

/// The bytes that `text` stands for. Reads up to the first "="; characters outside the alphabet
/// (line ends, indentation, anything) are skipped, and bits short of a byte at the end dropped.
[[nodiscard]] std::vector<std::uint8_t> DecodeBase64(std::string_view text);

} // namespace quoravel
