#include "support/disc_builder.h"

#include "disc/module1.h"

#include <string>

namespace quoravel {

namespace {

constexpr int kFirst = 0;
constexpr int kSecond = 512;
constexpr int kCount = 261;

unsigned HighBits(std::uint32_t value, unsigned shift) {
    return (value >> 16U & 3U) << shift;
}

} // namespace

DiscBuilder::DiscBuilder(int drive, bool watford, int sectors)
    : start_(drive * kDriveBytes), root_(watford ? 4 : 2) {
    Module1::DiscImg.Fill(start_, kDriveBytes, 0);
    Byte(262, sectors / 256).Byte(263, sectors % 256);
    if (watford) {
        Text(kSecond, "\xAA\xAA\xAA\xAA\xAA\xAA\xAA\xAA");
        Byte(774, sectors / 256).Byte(775, sectors % 256);
    }
}

DiscBuilder& DiscBuilder::Title(std::string_view title) {
    std::string padded(title);
    padded.resize(12);
    Text(0, std::string_view(padded).substr(0, 8));
    Text(256, std::string_view(padded).substr(8));
    return *this;
}

DiscBuilder& DiscBuilder::File(const Entry& entry) {
    Add(kFirst, entry);
    return *this;
}

DiscBuilder& DiscBuilder::SecondFile(const Entry& entry) {
    Add(kSecond, entry);
    return *this;
}

DiscBuilder& DiscBuilder::Fill(int files, int second) {
    for (int i = 0; i < files; ++i)
        File({.name = "A" + std::to_string(i), .length = 256, .sector = root_ + files - 1 - i});
    for (int j = 0; j < second; ++j)
        SecondFile({.name = "B" + std::to_string(j),
                    .length = 256,
                    .sector = root_ + files + second - 1 - j});
    return *this;
}

DiscBuilder& DiscBuilder::Data(int sector, std::string_view text) {
    Text(sector * kSectorBytes, text);
    return *this;
}

DiscBuilder& DiscBuilder::Byte(int offset, int value) {
    Module1::DiscImg.SetByte(start_ + offset, static_cast<std::uint8_t>(value));
    return *this;
}

void DiscBuilder::Add(int catalogue, const Entry& entry) {
    const int count = catalogue + kCount;
    const int slot = Module1::DiscImg.Byte(start_ + count) / 8;
    std::string name(entry.name);
    name.resize(7, ' ');
    name += static_cast<char>(entry.dir | (entry.locked ? 128 : 0));
    Text(catalogue + 8 + 8 * slot, name);

    const unsigned packed = HighBits(entry.exec, 6) | HighBits(entry.length, 4) |
                            HighBits(entry.load, 2) | static_cast<unsigned>(entry.sector) >> 8U;
    const int info = catalogue + 264 + 8 * slot;
    int at = info;
    for (const std::uint32_t field : {entry.load, entry.exec, entry.length}) {
        Byte(at, static_cast<int>(field & 255U)).Byte(at + 1, static_cast<int>(field >> 8U & 255U));
        at += 2;
    }
    Byte(info + 6, static_cast<int>(packed)).Byte(info + 7, entry.sector & 255);
    Byte(count, 8 * (slot + 1));
}

void DiscBuilder::Text(int offset, std::string_view text) {
    for (const char c : text)
        Byte(offset++, static_cast<unsigned char>(c));
}

} // namespace quoravel
