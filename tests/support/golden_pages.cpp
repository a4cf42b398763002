#include "support/golden_pages.h"

#include "disc/catalogue.h"
#include "disc/image_files.h"
#include "disc/module1.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace quoravel {

namespace {

constexpr std::string_view kMark = "=== ";

std::filesystem::path TestData(std::string_view folder, std::string_view name) {
    return std::filesystem::path(TEST_DATA) / folder / name;
}

} // namespace

std::vector<GoldenPage> GoldenPages(std::string_view golden_file) {
    std::ifstream in(TestData("golden", golden_file));
    std::vector<GoldenPage> pages;
    for (std::string line; std::getline(in, line);)
        if (line.starts_with(kMark)) {
            GoldenPage& page = pages.emplace_back();
            std::istringstream(line.substr(kMark.size())) >> page.image >> page.drive >> page.file;
        } else {
            pages.at(pages.size() - 1).lines.push_back(line);
        }
    EXPECT_FALSE(pages.empty()) << "no pages in " << golden_file;
    return pages;
}

void OpenDiscOf(const GoldenPage& page) {
    const auto image = TestData("discs", page.image);
    const auto error = FormOfName(page.image) == ImageForm::Interleaved ? LoadDisc_DSD(image)
                                                                        : LoadDisc_SSD(image);
    ASSERT_FALSE(error) << page.image << ": " << error->reason;
    Module1::cur_drive = page.drive;
}

std::pair<int, std::uint32_t> PlaceOf(const GoldenPage& page) {
    const int file = GetPos(page.drive, page.file);
    EXPECT_GE(file, 0) << page.file;
    const int info = GetDirOffset(page.drive, file) + kInfoDistance;
    return {GetStartSectorOfDrive(page.drive) + StartSector(info) * kSectorBytes, FileLength(info)};
}

std::string JoinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r";
    return text;
}

} // namespace quoravel
