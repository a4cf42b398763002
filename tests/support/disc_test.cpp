#include "support/disc_test.h"

namespace quoravel {

DiscTest::DiscTest() {
    Module1::Init();
    Module1::InstallStatusLine(this);
    Module1::cur_drive = 0;
    Module1::mSelectedItem = -1;
    Module1::gDirty = false;
    Module1::gsRoot.clear();
    Module1::FreeSpaceMap = {};
    Module1::FreeSpaceLen = {};
    Module1::FreeSpaceNum = {};
}

DiscTest::~DiscTest() {
    Module1::InstallStatusLine(nullptr);
}

std::vector<std::pair<int, int>> FreeRegions(int drive) {
    const auto row = static_cast<std::size_t>(drive);
    std::vector<std::pair<int, int>> regions;
    for (std::size_t i = 0; i < static_cast<std::size_t>(Module1::FreeSpaceNum.at(row)); ++i)
        regions.emplace_back(Module1::FreeSpaceMap.at(row).at(i),
                             Module1::FreeSpaceLen.at(row).at(i));
    return regions;
}

std::vector<std::uint8_t> BlockBytes(int offset, int count) {
    const auto part = Module1::DiscImg.Part(offset, count);
    return {part.begin(), part.end()};
}

std::string BlockText(int offset, int count) {
    const auto part = Module1::DiscImg.Part(offset, count);
    return {part.begin(), part.end()};
}

} // namespace quoravel
