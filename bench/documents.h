#pragma once

#include "disc/module1.h"

#include <string>
#include <string_view>

namespace quoravel {

/// 60 KB of justified prose, as WordWise stores it: paragraphs of ten lines with a word underlined
/// and a few in bold in each.
inline std::string Prose() {
    constexpr std::size_t kBytes = 60 * 1024;
    constexpr std::string_view kParagraph =
        "The harbour was built by the \2US\7town\2UE\7 between 1821 and 1829, when stone from the "
        "quarry could be had for not much more than its carriage. The northern pier is 212 yards "
        "long. It was lengthened twice, in 1844 and in 1871, and carries a light. In 1903 a "
        "railway reached the town, and \2DS\7the last of the ships\2DE\7 was sold in the same "
        "year. Since then the quay has served the boats of the lifeguard, of three fishermen, and "
        "of whoever comes over from the islands for the market on the first Monday of each month, "
        "which has been held there since the square was given to the cars.\r\r";
    std::string text = "\2JO\7";
    while (text.size() < kBytes)
        text += kParagraph;
    return text;
}

/// Puts it into sector 2 of drive 0. Gives its length.
inline int PutProse() {
    int place = 512;
    for (const char c : Prose())
        Module1::DiscImg.SetByte(place++, static_cast<std::uint8_t>(c));
    return place - 512;
}

} // namespace quoravel
