#include "beeb_test.h"

#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/star_command.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "link/transfer_steps.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <utility>

namespace quoravel {

namespace {

using namespace std::chrono_literals;

constexpr auto kOversleep = 60us; // a desktop's millisecond takes as much longer
constexpr auto kAdapterHolds = 5ms;
constexpr int kMostTimes = 60; // that the same is said in a test

/// What the bytes are that arrive in place of `bytes`.
std::string Spoiled(const Fault& fault, OnCable& where, std::string_view bytes) {
    std::string arriving;
    for (const char byte : bytes) {
        arriving += fault(where, byte);
        ++where.at;
    }
    return arriving;
}

/// Kept for all tests, as typing the program in takes longer than most of them.
std::string FloppyWithTavrilo(const std::string& model) {
    static const TempFolder folder;
    return folder.path() / (model + ".ssd");
}

} // namespace

Bytes Noise(std::size_t count) {
    std::minstd_rand random(1); // NOLINT(cert-msc51-cpp): the same bytes each time
    Bytes bytes(count);
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random() >> 8U); });
    return bytes;
}

Bytes Image(Bytes bytes, std::size_t tracks) {
    bytes[0x105] = 0;
    bytes[0x106] = static_cast<std::uint8_t>(tracks * 10 / 256);
    bytes[0x107] = static_cast<std::uint8_t>(tracks * 10);
    return bytes;
}

Bytes MixedImage(std::size_t tracks) {
    Bytes image = Noise(tracks * kTrack);
    for (std::size_t i = 0; i < image.size(); ++i)
        if (i / kTrack % 3 != 1 || i % kTrack < 1900)
            image[i] = static_cast<std::uint8_t>(i % kTrack == 5 ? i / kTrack : 0);
    return Image(std::move(image), std::min<std::size_t>(tracks, 80));
}

Bytes Tracks(const Bytes& image, std::size_t first, std::size_t count) {
    return {image.begin() + static_cast<std::ptrdiff_t>(first * kTrack),
            image.begin() + static_cast<std::ptrdiff_t>((first + count) * kTrack)};
}

BeebTest::BeebTest(std::vector<std::string> options) : beeb(std::move(options)) {
    port.on_write = [this](std::string_view bytes) { Write(bytes); };
    desktop.on_pump = [this, pump = desktop.on_pump] {
        Pump();
        pump();
    };
}

void BeebTest::Write(std::string_view bytes) {
    if (const int rate = port.settings.back(); rate != std::exchange(rate_, rate))
        beeb.Ask("rate " + std::to_string(rate));
    if (bytes.size() > 1) {
        const auto number = bytes.substr(std::min(bytes.find('\r') + 1, bytes.size()));
        out_ = {bytes[0], std::strtoul(std::string(number).c_str(), nullptr, 10),
                ++said[std::string(bytes)], 0};
        in_ = out_;
        if (out_.time > kMostTimes)
            throw std::runtime_error("the host asks for ever: " + std::string(bytes));
        held_ += bytes;
    } else {
        held_ += Spoiled(to_micro, out_, bytes);
    }
    last_write_ = desktop.now;
}

void BeebTest::Pump() {
    if (held_.size() >= at_once || desktop.now > last_write_ + kAdapterHolds)
        beeb.Send(std::exchange(held_, {}));
    desktop.now += kOversleep;
    port.received += Spoiled(to_host, in_, beeb.RunTo(desktop.now));
}

Bytes BeebTest::Dump(int drive, const std::string& name, std::size_t tracks) {
    const auto file = folder.path() / name;
    EXPECT_EQ(beeb.Ask("dump " + std::to_string(drive) + ' ' + file.string() + ' ' +
                       std::to_string(tracks)),
              "[]");
    return BytesOf(file);
}

Bytes BeebTest::ReceiveSide(int drive) {
    std::filesystem::path file;
    desktop.files.emplace_back(folder.path() / "received.ssd");
    EXPECT_TRUE(RX_SSD(drive, desk, file));
    return BytesOf(file);
}

void BeebTest::SendSide(int drive, const Bytes& image) {
    desktop.files.emplace_back(folder.File("sent.ssd", image));
    TX_DISC(drive, true, desk);
}

std::string BeebTest::Star(const std::string& command) {
    std::string output;
    const bool good = SendStarCommand(command, [&](std::string_view text) {
        output += text;
        return true;
    });
    return good ? output : desktop.TakeBoxTexts().back();
}

void BeebTest::ExpectClean() {
    EXPECT_THAT(beeb.Ask("counters"), HasSubstr("\"overruns\":0,\"unheard\":0,\"garbled\":0"));
    EXPECT_TRUE(desktop.boxes.empty());
}

std::optional<Bytes> BeebTest::Get(int drive, int track) {
    TrackBuffer buffer{};
    std::int32_t crc = 0;
    Send_Cmd(TrackMessage('G', drive, track));
    if (Get_Track(buffer, crc) && AwaitCrc(crc) == CrcLine::Agrees)
        return Bytes(buffer.begin(), buffer.begin() + kTrack);
    Swallow_Rubbish();
    return {};
}

void BeebTest::ExpectWorks(const Bytes& image) {
    Module1::TXAbort = false;
    EXPECT_TRUE(SelectDrive(0));
    for (const int track : {0, 1})
        EXPECT_EQ(Get(0, track), Tracks(image, static_cast<std::size_t>(track), 1));
    SendSide(1, Tracks(image, 0, 2));
    EXPECT_EQ(Dump(1, "two.ssd", 2), Tracks(image, 0, 2));
}

Running::Running()
    : BeebTest({"--model", GetParam(), "--tavrilo", "--kept", FloppyWithTavrilo(GetParam())}) {
}

} // namespace quoravel
