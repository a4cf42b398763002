#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/host.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace quoravel {

namespace {

constexpr int kTitleLength = 12;
constexpr std::string_view kForbidden = "-.:*#$&@^";

/// Offset from the start of the drive of character i of the title: eight lie in sector 0, four in
/// sector 1.
constexpr int TitleByte(int i) {
    return i < 8 ? i : kInfoDistance + i - 8;
}

bool FitsInTitle(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 32 && code <= 127 && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

inline namespace Module2 {

std::string GetTitle(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    std::string title;
    for (int i = 0; i < kTitleLength; ++i)
        title += static_cast<char>(Module1::DiscImg.Byte(start + TitleByte(i)) & 127U);
    return std::string(Trim(std::string_view(title).substr(0, title.find('\0'))));
}

void SetTitle(int drive, std::string_view text) {
    const std::string_view title = Trim(text);
    if (!std::ranges::all_of(title, FitsInTitle)) {
        host().MsgBox("Title " + Latin1ToUtf8(title) + " Contains Illegal Characters");
        return;
    }
    const std::string padded =
        (std::string(title) + MyString(kTitleLength, std::string_view("\0", 1)));
    const int start = GetStartSectorOfDrive(drive);
    for (int i = 0; i < kTitleLength; ++i)
        Module1::DiscImg.SetByte(start + TitleByte(i),
                                 static_cast<std::uint8_t>(padded[static_cast<std::size_t>(i)]));
    UpdateSequenceNumber(drive);
}

} // namespace Module2

} // namespace quoravel
