#pragma once

#include <string_view>

namespace quoravel {

/// A kind of file, as open and save dialogs offer it.
struct FileType {
    std::string_view Name;
    std::string_view Extensions; ///< separated by ";", each with its "."; empty for every file
    std::string_view TypeCode;
    std::string_view CreatorCode;
};

namespace FileTypes1 {

inline constexpr FileType pDiscImages{"Disc Images", ".img;.ssd;.dsd;.IMG;.SSD;.DSD", "special/any",
                                      "????"};
inline constexpr FileType pAny{"Any", "", "????", "????"};
inline constexpr FileType pLogFiles{"Log Files", ".log", "special/any", "????"};

} // namespace FileTypes1

} // namespace quoravel
