#pragma once

#include "prefs/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quoravel {

// Values as the text of their elements, and back. A point is a point whatever the locale.

/// The number that `text` starts with: blanks are skipped, then sign, digits, point and exponent
/// count and the rest is ignored. 0 if there is none; what is too large becomes the largest.
[[nodiscard]] double Val(std::string_view text);

/// Val without its fraction, held to what 32 bits can say.
[[nodiscard]] std::int32_t IntegerFromText(std::string_view text);

/// The fewest digits that read back as `value`, at least one on each side of the point, at most 15
/// behind it, without an exponent. Infinity becomes the largest number, what is no number 0.
[[nodiscard]] std::string RealText(double value);

/// "YYYY-MM-DDThh:mm:ssZ"; years outside 0 to 9999 are moved to that range's end.
[[nodiscard]] std::string DateText(Date date);

/// The date in DateText's form, blanks around it allowed; nothing if it is not one.
[[nodiscard]] std::optional<Date> DateFromText(std::string_view text);

/// "#" and the value in upper-case hex without leading zeros.
[[nodiscard]] std::string ColourText(Colour colour);

/// The colour in ColourText's form, blanks before it allowed; black if it is none.
[[nodiscard]] Colour ColourFromText(std::string_view text);

/// `text` as a document can hold it: what is not UTF-8 is taken as Latin-1, and the characters that
/// XML forbids are dropped.
[[nodiscard]] std::string XmlText(std::string_view text);

} // namespace quoravel
