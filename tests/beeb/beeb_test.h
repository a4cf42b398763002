#pragma once

#include "emulated_micro.h"
#include "support/link_test.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kTrack = 2560;

/// Bytes that no run shortens, the same each time.
[[nodiscard]] Bytes Noise(std::size_t count);

/// `bytes` with an empty catalogue of so many tracks in front.
[[nodiscard]] Bytes Image(Bytes bytes, std::size_t tracks);

/// Tracks that pack well and badly, each with a byte that no other track has.
[[nodiscard]] Bytes MixedImage(std::size_t tracks);

[[nodiscard]] Bytes Tracks(const Bytes& image, std::size_t first, std::size_t count);

/// A byte on the cable, by the message of the host that went before it.
struct OnCable {
    char command = 0; ///< of the message: 'G' for a track to the host, 'g' for one to the micro
    std::size_t track = 0; ///< that it names
    int time = 0;          ///< how often the host has said it
    int at = 0;            ///< how many bytes have gone the same way behind it
};

/// What arrives in place of a byte.
using Fault = std::function<std::string(const OnCable&, char)>;

[[nodiscard]] inline std::string NoFault(const OnCable& /*where*/, char byte) {
    return {byte};
}

/// The program's own link with an emulated micro at the other end of its cable, on one clock.
class BeebTest : public LinkTest {
  protected:
    explicit BeebTest(std::vector<std::string> options);

    /// Puts in what machine.mjs calls a floppy, or a file.
    void Insert(int drive, const std::string& what) {
        beeb.Ask("insert " + std::to_string(drive) + ' ' + what);
    }

    /// What a drive would read of its floppy; every sector must be good.
    Bytes Dump(int drive, const std::string& name, std::size_t tracks);

    [[nodiscard]] std::string Screen() { return beeb.Ask("screen"); }

    /// Types at its keyboard, a JSON string, while the test's clock stands still.
    void Type(const std::string& text) { beeb.Ask("type \"" + text + '"'); }

    /// Sends bytes that no host would, and gives what comes back meanwhile.
    std::string Say(std::string_view bytes, int milliseconds) {
        beeb.Send(bytes);
        return beeb.RunTo(desktop.now += std::chrono::milliseconds(milliseconds));
    }

    /// Receives one side into a file of the host, and gives it.
    Bytes ReceiveSide(int drive);

    /// Sends an image to one side.
    void SendSide(int drive, const Bytes& image);

    /// A star command's output, or the text of the box.
    std::string Star(const std::string& command);

    /// Nothing was lost on the line, and nobody complained.
    void ExpectClean();

    /// Asks for a track once, as a transfer does; nothing if that fails.
    std::optional<Bytes> Get(int drive, int track);

    /// Two tracks come from drive 0, where the image with them is, and go to drive 1.
    void ExpectWorks(const Bytes& image);

    EmulatedMicro beeb;
    Fault to_micro = NoFault; ///< of the bytes of packets; messages arrive unharmed
    Fault to_host = NoFault;
    std::size_t at_once = 1;         ///< bytes that an adapter brings in one burst
    std::map<std::string, int> said; ///< how often the host said each message

  private:
    void Write(std::string_view bytes);
    void Pump();

    int rate_ = 0;
    OnCable out_;
    OnCable in_;
    std::string held_; ///< by the adapter
    std::chrono::nanoseconds last_write_{0};
};

/// A micro of the model that the test is for, with Tavrilo running.
class Running : public BeebTest, public testing::WithParamInterface<const char*> {
  protected:
    Running();
};

} // namespace quoravel
