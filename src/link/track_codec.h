#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

// How a track travels: a length, a payload in which runs are compressed, and a CRC over both that
// is told apart. docs/serial-protocol.md shows the bytes. Nothing here waits or pumps events.

namespace quoravel {

inline constexpr std::size_t kTrackLength = 2560;

/// What a packet is expanded into: room for one byte more than a track, so that a packet that is
/// one too long is told as 2561.
using TrackBuffer = std::array<std::uint8_t, kTrackLength + 1>;
using TrackBytes = std::span<const std::uint8_t, kTrackLength>;

/// Takes `byte` into `crc` (polynomial 00AF, most significant bit first). -1 counts as 255; of both
/// only the lowest bits matter. A packet starts with 0.
void CalcCrc(std::int32_t& crc, std::int32_t byte);

/// A packet as it goes down the line.
class TrackPacket {
  public:
    /// Compresses a track.
    explicit TrackPacket(TrackBytes track);

    /// Both length bytes and the payload.
    [[nodiscard]] std::span<const std::uint8_t> bytes() const {
        return std::span(bytes_).first(used_);
    }

    /// Bytes of payload, up to 4480.
    [[nodiscard]] int payload() const { return static_cast<int>(used_ - kLengthBytes); }

  private:
    static constexpr std::size_t kLengthBytes = 2;

    void Put(std::uint8_t byte) { bytes_[used_++] = byte; }

    void PutRun(std::uint8_t value, std::size_t count);

    std::array<std::uint8_t, 4561> bytes_; ///< the first used_ of them are set
    std::size_t used_ = kLengthBytes;
};

/// How far the reading of a packet is. All but the first two are failures.
enum class TrackState { Reading, Good, TimedOut, BadLength, UnknownEscape, WrongSize };

/// Reads a packet byte by byte. What it has stored stays in the buffer after a failure.
class TrackDecoder {
  public:
    /// Both must outlive the decoder. `crc` goes on from its value.
    TrackDecoder(TrackBuffer& track, std::int32_t& crc) : track_(track), crc_(crc) {}

    [[nodiscard]] TrackState state() const { return state_; }

    /// How long to wait for the next byte, in milliseconds.
    [[nodiscard]] int Patience() const;

    /// Takes the next byte, 0 to 255, or -1 if it did not come in time. Does nothing once the state
    /// is no longer Reading.
    void Take(int byte);

    /// The length that the packet announced, once it is known and accepted: up to 2815, and below 0
    /// if its second byte did not come in time.
    [[nodiscard]] std::optional<int> length() const { return length_; }

    /// Bytes of track so far, up to 2561.
    [[nodiscard]] int produced() const { return static_cast<int>(produced_); }

  private:
    enum class Next { LengthLow, LengthHigh, Item, Escape, Count, Value };

    void TakeLength(int high);
    void TakeItem(std::uint8_t byte);
    void TakeEscape(std::uint8_t byte);
    void Store(std::uint8_t value, std::size_t count);
    void EndItem();

    TrackBuffer& track_;
    std::int32_t& crc_;
    TrackState state_ = TrackState::Reading;
    Next next_ = Next::LengthLow;
    std::optional<int> length_;
    int low_ = 0;       ///< first length byte
    int remaining_ = 0; ///< of the announced length
    std::size_t count_ = 0;
    std::size_t produced_ = 0;
};

} // namespace quoravel
