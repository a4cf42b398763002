#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quoravel {

/// What a real BBC Micro printed about one side of a disc, or about a file on it.
struct GoldenPage {
    std::string image; ///< name of the image file
    int drive = 0;
    std::string file; ///< `D.NAME`, or empty
    std::vector<std::string> lines;
};

/// All pages of a golden file, which has "=== image drive file" before each.
[[nodiscard]] std::vector<GoldenPage> GoldenPages(std::string_view golden_file);

/// Loads the image of a page and makes its drive cur_drive; the test fails if it cannot.
void OpenDiscOf(const GoldenPage& page);

/// Place and length in the block of a page's file, as its catalogue says.
[[nodiscard]] std::pair<int, std::uint32_t> PlaceOf(const GoldenPage& page);

/// Lines as renderers end them.
[[nodiscard]] std::string JoinLines(const std::vector<std::string>& lines);

} // namespace quoravel
