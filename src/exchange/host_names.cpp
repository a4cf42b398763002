#include "exchange/host_names.h"

#include "disc/catalogue.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace quoravel {

namespace {

constexpr std::array<std::string_view, 4> kReserved{"CON", "PRN", "LPT", "COM"};
constexpr std::string_view kSeparators = "/\\:";

bool IsControlCode(char c) {
    return static_cast<unsigned char>(c) < 32 || c == 127;
}

} // namespace

std::string DFS_TO_MAC(std::string_view name) {
    std::string host_name(name);
    std::ranges::replace_if(
        host_name, [](char c) { return kSeparators.find(c) != std::string_view::npos; }, '_');
    for (const std::string_view reserved : kReserved)
        if (EqualIgnoringCase(host_name, reserved))
            host_name += '_';
    return host_name;
}

std::string HostFileName(std::string_view name) {
    std::string host_name = DFS_TO_MAC(name);
    std::ranges::replace_if(host_name, IsControlCode, '_');
    if (host_name == "..") // directory "." and a name of spaces
        host_name = "._";
    return host_name;
}

std::string BytesOfHostName(const std::filesystem::path& file) {
    return LowBytesOfUtf8(file.filename().string());
}

std::string ShapeName(std::string_view name) {
    std::string shaped(name.substr(0, kLongestName));
    std::ranges::replace(shaped, ' ', '_');
    if (const auto dot = shaped.find('.'); dot != std::string::npos && dot > 1)
        shaped.resize(dot); // what follows is a host extension
    if (shaped.size() > 1 && shaped[1] == '_')
        shaped[1] = '.';
    else if (shaped.find('.') == std::string::npos)
        shaped = "$." + shaped.substr(0, kLongestBareName);
    return shaped;
}

} // namespace quoravel
