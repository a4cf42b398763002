#pragma once

#include "link/windows.h"
#include "platform/file_type.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

// What receiving and sending a disc share.

namespace quoravel {

/// The images of one side, to be received and to be sent.
inline constexpr FileType kSingleSided{"Disc Images", ".ssd;.SSD", "special/any", "????"};

/// Where a track of an image lies on the micro.
struct TrackPlace {
    int drive;
    std::int64_t track;
};

/// The place of the track with number `counter` in an image: in that of both sides they alternate.
[[nodiscard]] TrackPlace PlaceOf(std::int64_t counter, int drive, bool both_sides);

/// Selects the disc filing system and `drive` on the micro. False if it does not agree, which is
/// told.
[[nodiscard]] bool SelectDrive(int drive);

/// What the micro says about the CRC of a track.
enum class CrcLine { Missing, Differs, Agrees };

/// Waits for the CRC that the micro has computed and compares it with `crc`.
[[nodiscard]] CrcLine AwaitCrc(std::int32_t crc);

/// Why a transfer ended, as a box with the title that all of them have.
void TellTransferError(std::string_view text);

/// The same for a host file: "Cannot write NAME: reason".
void TellFileError(std::string_view what, const std::filesystem::path& file,
                   std::string_view reason);

/// Says which track is on its way: "Sending Track 3 of Drive 0".
void ShowTrack(TransferWindow& window, std::string_view doing, const TrackPlace& place);

/// Sets the progress bar, unless the user has cancelled.
void ShowProgress(TransferWindow& window, std::int64_t counter, std::int64_t rounds);

/// Closes the window of a transfer that is done and plays the sound if the user wants it.
void EndTransfer(TransferWindow& window, const TransferDesk& desk);

} // namespace quoravel
