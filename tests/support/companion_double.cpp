#include "support/companion_double.h"

#include <algorithm>
#include <cstdlib>

namespace quoravel {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kTrack = 2560;
constexpr std::size_t kLongestPayload = 4480;
constexpr char kEscape = 27;
constexpr auto kPatience = 1200ms; // with a command or a packet that stops
constexpr std::string_view kSuccess = "-----BBC-----PC-----";
constexpr std::string_view kError = "-----BBCerror1-----PC-----";

std::size_t At(std::string_view bytes, std::size_t i) {
    return static_cast<unsigned char>(bytes.at(i));
}

/// A line that is never shorter than the host takes.
std::string NumberLine(std::size_t number, const std::string& line_end) {
    const std::string digits = std::to_string(number);
    return std::string(digits.size() < 5 ? 5 - digits.size() : 0, ' ') + digits + line_end;
}

} // namespace

int PlainCrc(std::string_view bytes) {
    unsigned crc = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        crc ^= static_cast<unsigned>(At(bytes, i)) << 8U;
        for (int bit = 0; bit < 8; ++bit)
            crc = ((crc << 1U) ^ ((crc & 0x8000U) != 0 ? 0xAFU : 0U)) & 0xFFFFU;
    }
    return static_cast<int>(crc);
}

std::string PlainPacket(std::string_view track) {
    std::string payload;
    while (!track.empty()) {
        const char value = track.front();
        const std::size_t run =
            std::min({track.find_first_not_of(value), track.size(), std::size_t{255}});
        const bool compressed = run >= (value == kEscape ? 3U : 4U);
        if (compressed)
            payload += {kEscape, 0, static_cast<char>(run), value};
        for (std::size_t i = 0; !compressed && i < run; ++i)
            payload += value == kEscape ? std::string{kEscape, 1} : std::string{value};
        track.remove_prefix(run);
    }
    return std::string{static_cast<char>(payload.size() % 256),
                       static_cast<char>(payload.size() / 256)} +
           payload;
}

void CompanionDouble::Take(std::string_view bytes, Time now) {
    now_ = now;
    if (now_ - last_byte_ > kPatience) {
        if (state_ == State::Packet && packet_ == std::string{kEscape, 2}) // no length of 539
            heard.emplace_back("abort");
        state_ = State::Command;
    }
    last_byte_ = now_;
    std::string arrived(bytes);
    garble(arrived);
    for (const char byte : arrived)
        TakeByte(byte);
}

std::string CompanionDouble::Give(Time now) {
    std::string bytes;
    for (; !line_out_.empty() && line_out_.front().first <= now; line_out_.pop_front())
        bytes += line_out_.front().second;
    return bytes;
}

void CompanionDouble::TakeByte(char byte) {
    if (state_ == State::Command)
        return StartCommand(byte);
    if (state_ == State::Packet) {
        packet_ += byte;
        return TakePacketByte();
    }
    if (state_ == State::Escape) {
        heard.emplace_back("abort");
        state_ = State::Command;
    } else if (byte != '\r') {
        line_ += byte;
        if (command_ == '-' && line_ == kError.substr(1))
            EndStarLine();
    } else if (state_ == State::Line) {
        EndStarLine();
    } else {
        EndNumber();
    }
}

void CompanionDouble::StartCommand(char byte) {
    command_ = byte;
    line_.clear();
    if (byte == 'Q') {
        heard.emplace_back("Q");
    } else if (byte == kEscape) {
        state_ = State::Escape;
    } else if (byte == '*' || byte == '-' || byte == 'N') {
        state_ = State::Line;
    } else if (byte == 'G' || byte == 'g') {
        state_ = State::Drive;
    }
}

void CompanionDouble::EndNumber() {
    const int number = std::atoi(line_.c_str());
    line_.clear();
    if (state_ == State::Drive) {
        drive_ = number % 4;
        state_ = State::Track;
        return;
    }
    track_ = number;
    heard.push_back(std::string{command_, ' '} + std::to_string(drive_) + ' ' +
                    std::to_string(track_));
    if (command_ == 'G')
        return SendTrack();
    packet_.clear();
    item_ = 2;
    state_ = State::Packet;
    Answer(std::string(kSuccess) + line_end);
}

void CompanionDouble::EndStarLine() {
    const std::string done = std::string(kSuccess) + line_end;
    state_ = State::Command;
    heard.push_back(command_ == '*' ? line_ : command_ == 'N' ? "N" : "error?");
    if (command_ == 'N')
        return Answer(NumberLine(discs.at(static_cast<std::size_t>(selected_)).size(), line_end));
    if (command_ == '-')
        return Answer(last_error_ + line_end);
    if (line_.starts_with("DRIVE "))
        selected_ = std::atoi(line_.c_str() + 6) % 4;
    if (const auto error = errors.find(line_); error != errors.end()) {
        last_error_ = error->second;
        return Answer(std::string(kError) + line_end);
    }
    Answer(outputs[line_] + done);
}

void CompanionDouble::TakePacketByte() {
    if (packet_.size() < 2)
        return;
    const std::size_t length = At(packet_, 0) + 256 * At(packet_, 1);
    const std::string_view rest = std::string_view(packet_).substr(item_);
    if (rest.size() == 2 && rest[0] == kEscape && rest[1] == 2) {
        heard.emplace_back("abort");
        state_ = State::Command;
        return;
    }
    const std::size_t whole = rest.empty() || rest[0] != kEscape ? 1
                              : rest.size() > 1 && rest[1] == 0  ? 4
                                                                 : 2;
    if (rest.size() >= whole)
        item_ = packet_.size();
    if (length > kLongestPayload || packet_.size() >= length + 2)
        EndPacket();
}

void CompanionDouble::EndPacket() {
    heard.emplace_back("track");
    state_ = State::Command;
    const auto track = Expanded();
    if (!track)
        return Answer("65536" + line_end); // is never the CRC of anything
    auto& disc = discs.at(static_cast<std::size_t>(drive_));
    const std::size_t start = static_cast<std::size_t>(track_) * kTrack;
    disc.resize(std::max(disc.size(), start + kTrack));
    std::ranges::copy(*track, disc.begin() + static_cast<std::ptrdiff_t>(start));
    Answer(NumberLine(static_cast<std::size_t>(PlainCrc(packet_)), line_end));
}

std::optional<std::vector<std::uint8_t>> CompanionDouble::Expanded() const {
    std::vector<std::uint8_t> track;
    for (std::size_t i = 2; i < packet_.size();) {
        const bool escaped = packet_[i] == kEscape && i + 1 < packet_.size();
        if (escaped && packet_[i + 1] == 0 && i + 3 < packet_.size()) {
            track.insert(track.end(), At(packet_, i + 2),
                         static_cast<std::uint8_t>(packet_[i + 3]));
            i += 4;
        } else {
            track.push_back(static_cast<std::uint8_t>(packet_[i]));
            i += escaped ? 2 : 1;
        }
    }
    return track.size() == kTrack ? std::optional(track) : std::nullopt;
}

void CompanionDouble::SendTrack() {
    state_ = State::Command;
    const auto& disc = discs.at(static_cast<std::size_t>(drive_));
    const std::size_t start = std::min(static_cast<std::size_t>(track_) * kTrack, disc.size());
    std::string track(disc.begin() + static_cast<std::ptrdiff_t>(start), disc.end());
    track.resize(kTrack);
    const std::string packet = PlainPacket(track);
    Answer(packet + NumberLine(static_cast<std::size_t>(PlainCrc(packet)), line_end));
}

void CompanionDouble::Answer(std::string bytes) {
    Reply reply{heard.back(), ++replies_, std::move(bytes)};
    spoil(reply);
    Time due = now_ + reply.delay;
    if (!line_out_.empty())
        due = std::max(due, line_out_.back().first);
    for (const char byte : reply.bytes)
        line_out_.emplace_back(due += byte_time, byte);
}

} // namespace quoravel
