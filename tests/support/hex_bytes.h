#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quoravel {

/// The bytes of "0D 00 0A": two digits each, one space between them.
[[nodiscard]] inline std::vector<std::uint8_t> HexBytes(std::string_view digits) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < digits.size(); at += 3)
        bytes.push_back(static_cast<std::uint8_t>(HexValue(digits.substr(at, 2))));
    return bytes;
}

} // namespace quoravel
