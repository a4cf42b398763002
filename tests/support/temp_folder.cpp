#include "support/temp_folder.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace quoravel {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    std::random_device seed;
    do
        path_ = fs::temp_directory_path() / ("quoravel-test-" + std::to_string(seed()));
    while (!fs::create_directory(path_));
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

fs::path TempFolder::File(std::string_view name, std::span<const std::uint8_t> bytes) const {
    return File(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

fs::path TempFolder::File(std::string_view name, std::string_view text) const {
    const fs::path file = path_ / name;
    std::ofstream stream(file, std::ios::binary);
    stream.write(text.data(), std::ssize(text));
    EXPECT_TRUE(stream.flush()) << file;
    return file;
}

std::vector<std::string> TempFolder::Names(std::string_view folder) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_ / folder))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

std::string TextOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::uint8_t> BytesOf(const fs::path& file) {
    const std::string text = TextOf(file);
    return {text.begin(), text.end()};
}

} // namespace quoravel
