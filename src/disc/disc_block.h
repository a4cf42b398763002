#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quoravel {

inline constexpr int kSectorBytes = 256;
inline constexpr int kTrackSectors = 10;
inline constexpr int kTrackBytes = kTrackSectors * kSectorBytes; // 2560
inline constexpr int kDriveTracks = 80;
inline constexpr int kDriveSectors = kDriveTracks * kTrackSectors; // 800
inline constexpr int kDriveBytes = kDriveTracks * kTrackBytes;     // 204800
inline constexpr int kDrives = 2;
inline constexpr int kDiscBytes = kDrives * kDriveBytes; // 409600

/// The bytes of a disc: two drives one behind the other, each with its sectors in linear order.
/// Access is total: a read outside the block gives 0, a write outside it does nothing, so that no
/// number from a damaged catalogue can do harm. Offsets are in bytes from the start of the block.
class DiscBlock {
  public:
    /// A block of 409600 zero bytes.
    DiscBlock() : bytes_(kDiscBytes) {}

    [[nodiscard]] std::uint8_t Byte(std::int64_t offset) const {
        return Holds(offset) ? bytes_[static_cast<std::size_t>(offset)] : std::uint8_t{0};
    }

    void SetByte(std::int64_t offset, std::uint8_t value) {
        if (!Holds(offset))
            return;
        bytes_[static_cast<std::size_t>(offset)] = value;
        blank_from_ = std::max(blank_from_, offset + 1);
    }

    /// Sets `count` bytes from `offset` on to `value`.
    void Fill(std::int64_t offset, std::int64_t count, std::uint8_t value);

    /// Puts `source` at `offset`.
    void Write(std::int64_t offset, std::span<const std::uint8_t> source);

    /// The first `count` bytes (at most all), to be written to at once.
    [[nodiscard]] std::span<std::uint8_t> Head(std::size_t count);

    /// Copies `count` bytes one by one in ascending order, so that an overlapping copy upwards
    /// repeats what it has just written.
    void CopyAscending(std::int64_t from, std::int64_t to, std::int64_t count);

    /// The whole block, to be looked at.
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return bytes_; }

    /// The part of `count` bytes from `offset` on that lies inside the block.
    [[nodiscard]] std::span<const std::uint8_t> Part(std::int64_t offset, std::int64_t count) const;

  private:
    [[nodiscard]] static bool Holds(std::int64_t offset) {
        return offset >= 0 && offset < kDiscBytes;
    }

    std::vector<std::uint8_t> bytes_;
    std::int64_t blank_from_ = 0; ///< from here on all is 0, and need not be cleared
};

} // namespace quoravel
