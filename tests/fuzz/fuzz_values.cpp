#include "fuzz/fuzz.h"
#include "platform/text.h"
#include "prefs/base64.h"
#include "prefs/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

// Any text as each kind of value that a preferences file can hold, and the bytes of the input as
// values to be written.

namespace quoravel {

namespace {

void CheckNumber(std::string_view text) {
    const double value = Val(text);
    Require(std::isfinite(value), "a text is a finite number");
    const auto whole = static_cast<double>(IntegerFromText(text));
    Require(std::abs(value) >= 2147483647.0 || whole == std::trunc(value),
            "a whole number is the number without its fraction");
}

void CheckReal(double value) {
    const std::string text = RealText(value);
    Require(text.find_first_not_of("-.0123456789") == std::string::npos &&
                std::ranges::count(text, '.') == 1 && text.front() != '.' && text.back() != '.',
            "a written number has digits on both sides of a point");
    if (std::isfinite(value))
        Require(std::abs(Val(text) - value) <= 1e-15 * std::max(1.0, std::abs(value)),
                "a written number reads back");
}

void CheckDates(std::string_view text, std::int64_t seconds) {
    if (const auto date = DateFromText(text))
        Require(text.find(DateText(*date)) != std::string_view::npos, "a date reads one way");
    const Date date{std::chrono::seconds(seconds)};
    const auto again = DateFromText(DateText(date));
    Require(again.has_value(), "every written date is a date");
    Require(*again == date || DateText(date).starts_with("0000-01-01T00:00:00") ||
                DateText(date).starts_with("9999-12-31T23:59:59"),
            "and the same, up to the years that have four digits");
}

void CheckColours(std::string_view text, std::int64_t bits) {
    for (const Colour colour : {ColourFromText(text), Colour{static_cast<std::uint32_t>(bits)}})
        Require(ColourFromText(ColourText(colour)) == colour, "a written colour reads back");
}

void CheckBase64(Bytes bytes) {
    const std::string text = EncodeBase64(bytes);
    Require(std::ranges::equal(DecodeBase64(text), bytes), "written bytes read back");
    for (std::size_t line = 0; line < text.size(); line += 47)
        Require(text.find_first_of("\r\n", line) >= std::min(line + 45, text.size()),
                "a line has 45 characters");
    const std::string_view any = AsText(bytes);
    Require(DecodeBase64(any).size() <= any.size() * 3 / 4, "a text holds no more than it can");
}

void CheckXmlText(std::string_view text) {
    const std::string xml = XmlText(text);
    Require(IsUtf8(xml) && XmlText(xml) == xml, "what a document can hold stays as it is");
    Require(
        std::ranges::none_of(
            xml, [](char c) { return c >= 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r'; }),
        "no control code gets into a document");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    const Bytes bytes(data, size);
    const std::string_view text = AsText(bytes);
    std::int64_t number = 0;
    double real = 0;
    std::memcpy(&number, data, std::min(size, sizeof number));
    std::memcpy(&real, data, std::min(size, sizeof real));
    CheckNumber(text);
    CheckReal(real);
    CheckReal(Val(text));
    CheckDates(text, number);
    CheckColours(text, number);
    CheckBase64(bytes);
    CheckXmlText(text);
    return 0;
}
