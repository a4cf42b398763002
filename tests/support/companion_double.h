#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quoravel {

/// The micro at the other end of the cable, as the host expects it: it takes bytes with the time at
/// which they come and gives bytes when they are due. It knows nothing of the code under test, so
/// its codec is its own. What it does wrong is up to `spoil`.
class CompanionDouble {
  public:
    using Time = std::chrono::nanoseconds;

    /// An answer about to go out.
    struct Reply {
        std::string to;    ///< what was heard: see `heard`
        int number;        ///< counts all replies from 1
        std::string bytes; ///< a track packet with its CRC line behind it is one reply
        Time delay{0};     ///< until its first byte
    };

    std::array<std::vector<std::uint8_t>, 4> discs;     ///< of each drive, track by track
    std::map<std::string, std::string> outputs, errors; ///< of star commands; others just succeed
    std::string line_end = "\r";                        ///< or LF CR
    std::function<void(Reply&)> spoil = [](Reply&) {};  ///< a fault; no bytes: no answer
    std::function<void(std::string&)> garble = [](std::string&) {}; ///< a fault on the way here
    Time byte_time{520833};                                         ///< of 19200 baud

    /// What was understood: "*DISC", "DRIVE 0", "N", "G 0 5", "g 0 5", "track", "error?", "abort",
    /// "Q".
    std::vector<std::string> heard;

    /// Bytes that have come down the line.
    void Take(std::string_view bytes, Time now);

    /// The bytes that have gone out by now and were not given before.
    [[nodiscard]] std::string Give(Time now);

  private:
    enum class State { Command, Escape, Line, Drive, Track, Packet };

    void TakeByte(char byte);
    void StartCommand(char byte);
    void EndNumber();
    void EndStarLine();
    void TakePacketByte();
    void EndPacket();
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> Expanded() const;
    void SendTrack();
    void Answer(std::string bytes);

    State state_ = State::Command;
    char command_ = 0;
    std::string line_;   ///< of what is being read
    std::string packet_; ///< with its length bytes
    std::size_t item_ = 0;
    std::string last_error_;
    int drive_ = 0;
    int track_ = 0;
    int selected_ = 0;
    int replies_ = 0;
    Time now_{0};
    Time last_byte_{0};

    std::deque<std::pair<Time, char>> line_out_; ///< when each byte is due
};

/// The CRC of a packet, bit by bit.
[[nodiscard]] int PlainCrc(std::string_view bytes);

/// A packet of a track that the host takes: of an escape, runs from 3 on are compressed.
[[nodiscard]] std::string PlainPacket(std::string_view track);

} // namespace quoravel
