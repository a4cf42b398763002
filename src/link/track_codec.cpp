#include "link/track_codec.h"

#include <algorithm>
#include <cstring>

namespace quoravel {

namespace {

constexpr std::uint8_t kEscape = 27;
constexpr std::uint8_t kEscapedEscape = 1;
constexpr std::uint8_t kRun = 0;
constexpr std::size_t kShortestRun = 4; // from here on a run takes no more bytes than its copies
constexpr std::size_t kLongestRun = 255;
constexpr int kHighestLengthByte = 10; // a length of 2815 is the largest that is taken

constexpr int kFirstPatience = 5000; // the micro reads the track first
constexpr int kLengthPatience = 1000;
constexpr int kPatience = 2000;

// Programs on the micro compute the same, so no better known polynomial will do.
constexpr std::uint32_t kPolynomial = 0xAF;

/// What the upper byte of the CRC becomes when it has been shifted out.
constexpr auto kShiftedOut = [] {
    std::array<std::uint16_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t x = byte << 8U;
        for (int bit = 0; bit < 8; ++bit)
            x = (x & 0x8000U) != 0 ? (x << 1U) ^ kPolynomial : x << 1U;
        table[byte] = static_cast<std::uint16_t>(x);
    }
    return table;
}();

/// True if the eight bytes from `i` on are all `value`: an empty track is one long run.
bool AreEight(TrackBytes track, std::size_t i, std::uint8_t value) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, &track[i], sizeof eight);
    return eight == value * 0x0101010101010101U;
}

/// How many bytes from `start` on are the same, up to the longest run.
std::size_t RunAt(TrackBytes track, std::size_t start) {
    const std::uint8_t value = track[start];
    const std::size_t end = std::min(start + kLongestRun, track.size());
    std::size_t i = start + 1;
    while (i + 8 <= end && AreEight(track, i, value))
        i += 8;
    while (i < end && track[i] == value)
        ++i;
    return i - start;
}

} // namespace

void CalcCrc(std::int32_t& crc, std::int32_t byte) {
    const auto c = static_cast<std::uint32_t>(crc);
    const auto index = ((c >> 8U) ^ static_cast<std::uint32_t>(byte)) & 0xFFU;
    crc = static_cast<std::int32_t>(((c << 8U) ^ kShiftedOut[index]) & 0xFFFFU);
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): clearing takes as long as an empty track
TrackPacket::TrackPacket(TrackBytes track) {
    for (std::size_t i = 0; i < track.size();) {
        const std::size_t run = RunAt(track, i);
        PutRun(track[i], run);
        i += run;
    }
    bytes_[0] = static_cast<std::uint8_t>(payload() & 0xFF);
    bytes_[1] = static_cast<std::uint8_t>(payload() / 256);
}

void TrackPacket::PutRun(std::uint8_t value, std::size_t count) {
    if (count >= kShortestRun) {
        Put(kEscape);
        Put(kRun);
        Put(static_cast<std::uint8_t>(count));
        Put(value);
        return;
    }
    for (; count > 0; --count) {
        Put(value);
        if (value == kEscape)
            Put(kEscapedEscape);
    }
}

int TrackDecoder::Patience() const {
    if (next_ == Next::LengthLow)
        return kFirstPatience;
    return next_ == Next::LengthHigh ? kLengthPatience : kPatience;
}

void TrackDecoder::Take(int byte) {
    if (state_ != TrackState::Reading)
        return;
    CalcCrc(crc_, byte);
    if (next_ == Next::LengthHigh)
        return TakeLength(byte);
    if (byte < 0) {
        state_ = TrackState::TimedOut;
        return;
    }
    if (next_ == Next::LengthLow) {
        low_ = byte;
        next_ = Next::LengthHigh;
        return;
    }
    TakeItem(static_cast<std::uint8_t>(byte));
}

// Meant: a second byte that does not come makes the length negative, so that the packet ends as one
// that expands to nothing, not as one that timed out.
void TrackDecoder::TakeLength(int high) {
    if (high > kHighestLengthByte) {
        state_ = TrackState::BadLength;
        return;
    }
    length_ = high * 256 + low_;
    remaining_ = *length_;
    EndItem();
}

void TrackDecoder::TakeItem(std::uint8_t byte) {
    --remaining_;
    switch (next_) {
    case Next::Escape:
        return TakeEscape(byte);
    case Next::Count:
        count_ = byte;
        next_ = Next::Value;
        return;
    case Next::Value:
        Store(byte, count_);
        return EndItem();
    default:
        break;
    }
    if (byte == kEscape) {
        next_ = Next::Escape;
        return;
    }
    Store(byte, 1);
    EndItem();
}

void TrackDecoder::TakeEscape(std::uint8_t byte) {
    if (byte == kRun) {
        next_ = Next::Count;
    } else if (byte == kEscapedEscape) {
        Store(kEscape, 1);
        EndItem();
    } else {
        state_ = TrackState::UnknownEscape;
    }
}

void TrackDecoder::Store(std::uint8_t value, std::size_t count) {
    const std::size_t stored = std::min(count, track_.size() - produced_);
    std::fill_n(track_.begin() + static_cast<std::ptrdiff_t>(produced_), stored, value);
    produced_ += stored;
    if (stored < count)
        state_ = TrackState::WrongSize;
}

// An item that runs past the announced length is read to its end.
void TrackDecoder::EndItem() {
    next_ = Next::Item;
    if (state_ == TrackState::Reading && remaining_ < 1)
        state_ = produced_ == kTrackLength ? TrackState::Good : TrackState::WrongSize;
}

} // namespace quoravel
