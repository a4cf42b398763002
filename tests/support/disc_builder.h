#pragma once

#include <cstdint>
#include <string_view>

namespace quoravel {

/// A file for a catalogue, as the fields of its entry hold it: addresses and length of 18 bits,
/// sector of 10.
struct Entry {
    std::string_view name; ///< up to seven characters, padded with spaces
    char dir = '$';
    bool locked = false;
    std::uint32_t load = 0;
    std::uint32_t exec = 0;
    std::uint32_t length = 0;
    int sector = 0;
};

/// A file of `length` bytes from `sector` on.
[[nodiscard]] constexpr Entry At(int sector, std::uint32_t length, std::string_view name = "A") {
    return {.name = name, .length = length, .sector = sector};
}

/// Writes a catalogue into one drive of DiscImg, byte by byte and with nothing of the code under
/// test but the block. Files stand in the order of the calls: give the highest on the disc first.
class DiscBuilder {
  public:
    static constexpr bool kWatford = true;

    /// Empties the whole drive and gives it an empty catalogue of `sectors` sectors.
    explicit DiscBuilder(int drive = 0, bool watford = false, int sectors = 800);

    /// Up to 12 characters, the rest NUL.
    DiscBuilder& Title(std::string_view title);

    /// Adds a file to the first catalogue.
    DiscBuilder& File(const Entry& entry);

    /// Adds a file to Watford's second catalogue.
    DiscBuilder& SecondFile(const Entry& entry);

    /// Adds files until there are `files` in the first and `second` in the second catalogue, one
    /// sector each, packed from the root up in the order that compaction expects. Names are A0, A1
    /// and so on in the first, B0, B1 in the second catalogue.
    DiscBuilder& Fill(int files, int second = 0);

    /// Puts `text` at the start of a sector.
    DiscBuilder& Data(int sector, std::string_view text);

    /// Sets one byte, counted from the start of the drive.
    DiscBuilder& Byte(int offset, int value);

  private:
    void Add(int catalogue, const Entry& entry);
    void Text(int offset, std::string_view text);

    int start_;
    int root_;
};

} // namespace quoravel
