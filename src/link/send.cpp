#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/trace.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "link/transfer_steps.h"
#include "platform/files.h"
#include "platform/host.h"

#include <array>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr FileType kDoubleSided{"Disc Images", ".img;.dsd;.IMG;.DSD", "special/any", "????"};

/// The image that is being sent. Any length goes; read errors are not looked at.
class ImageFile {
  public:
    /// Nothing on success.
    std::optional<FileError> Open(const fs::path& file) {
        std::uint64_t length = 0;
        std::vector<std::uint8_t> first;
        if (auto error = LengthOfFile(file, length))
            return error;
        if (auto error = ReadFile(file, 1, first)) // it can be read, or why not
            return error;
        length_ = static_cast<std::int64_t>(length);
        in_.rdbuf()->pubsetbuf(nullptr, 0); // each try of a track reads the file anew
        in_.open(file, std::ios::binary);
        return {};
    }

    /// A track that the file cuts off counts.
    [[nodiscard]] std::int64_t tracks() const {
        const auto track = static_cast<std::int64_t>(kTrackLength);
        return length_ / track + (length_ % track != 0 ? 1 : 0);
    }

    /// Puts the whole sectors of a track into `track`; what the file does not have is 0. Pumps
    /// events.
    void ReadTrack(std::int64_t number, std::array<std::uint8_t, kTrackLength>& track) {
        track.fill(0);
        for (std::int64_t s = 0; s < kTrackSectors; ++s) {
            const std::int64_t sector = number * kTrackSectors + s;
            if (sector < length_ / kSectorBytes) {
                in_.clear();
                in_.seekg(sector * kSectorBytes);
                in_.read(
                    reinterpret_cast<char*>(&track[static_cast<std::size_t>(s) * kSectorBytes]),
                    kSectorBytes);
            }
            Yield();
        }
    }

  private:
    std::ifstream in_;
    std::int64_t length_ = 0;
};

/// Gives up the track that the micro may be waiting for.
void GiveUpTrack() {
    Send_Cmd(kAbortMessage);
    Swallow_Rubbish();
}

/// Announces a track until the micro is ready for it. False after a Cancel.
bool AskForTurn(const TrackPlace& place) {
    const std::string message = TrackMessage('g', place.drive, place.track);
    while (!Module1::TXAbort) {
        Send_Cmd(message);
        std::string reply;
        static_cast<void>(Get_Response(reply, kLongestReply));
        if (IsSuccessLine(reply))
            return true;
        TraceLine("Received no reply for disc ", place.drive, " track ", place.track, " from BBC");
        GiveUpTrack();
    }
    return false;
}

/// One disc on its way to the micro.
struct Sending {
    int drive;
    bool both_sides;
    ImageFile image;
};

/// Sends a track once. Nothing after a Cancel, else what the micro says about it.
std::optional<CrcLine> SendTrack(Sending& disc, std::int64_t counter, const TrackPlace& place) {
    TraceLine("Sending Track ", place.track, " of Drive ", place.drive);
    if (!AskForTurn(place))
        return {};
    std::array<std::uint8_t, kTrackLength> track{};
    disc.image.ReadTrack(counter, track);
    std::int32_t crc = 0;
    Send_Track(track, crc);
    if (Module1::TXAbort)
        return {};
    const CrcLine line = AwaitCrc(crc);
    if (line == CrcLine::Missing)
        GiveUpTrack(); // after a mismatch the micro is through with the track
    return line;
}

/// False after a Cancel. A track that fails is sent again for as long as it takes.
bool SendTracks(Sending& disc, TransferWindow& window) {
    const std::int64_t rounds = disc.image.tracks();
    for (std::int64_t counter = 0; counter < rounds;) {
        if (Module1::TXAbort)
            return false;
        const TrackPlace place = PlaceOf(counter, disc.drive, disc.both_sides);
        ShowTrack(window, "Sending", place);
        const auto line = SendTrack(disc, counter, place);
        if (!line)
            return false;
        if (*line == CrcLine::Agrees)
            ++counter;
        ShowProgress(window, counter, rounds);
        Yield();
    }
    return true;
}

} // namespace

void TX_DISC(int drive, bool single_sided, TransferDesk& desk) {
    Module1::TXAbort = false;
    const auto file = host().AskOpenFile(single_sided ? kSingleSided : kDoubleSided);
    if (!file || !SelectDrive(drive))
        return;
    Sending disc{drive, !single_sided, {}};
    if (const auto error = disc.image.Open(*file)) {
        TellFileError("Cannot open", *file, error->reason);
        return;
    }
    const auto window = desk.NewTransferWindow();
    window->SetTitle("Send Disc Image");
    window->SetTtl("Send In Progress");
    if (SendTracks(disc, *window)) {
        EndTransfer(*window, desk);
        return;
    }
    Module1::TXAbort = false; // or nothing would go out
    GiveUpTrack();
}

} // namespace quoravel
