#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/trace.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "link/transfer_steps.h"
#include "platform/backup.h"
#include "platform/files.h"
#include "platform/growing_file.h"
#include "platform/host.h"

#include <optional>
#include <span>
#include <string>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr FileType kDoubleSided{"Disc Images", ".dsd;.DSD", "special/any", "????"};
constexpr int kTracksOfBothSides = kDrives * kDriveTracks;

/// One disc on its way to the host.
struct Reception {
    int drive;
    bool both_sides;
    int rounds;
    GrowingFile image;
};

enum class Ending { Complete, Cancelled, WriteFailed };

std::optional<fs::path> AskTarget(bool both_sides) {
    return both_sides ? host().AskSaveFile(kDoubleSided, Module1::gsRoot)
                      : host().AskSaveFile(kSingleSided, "NewDisc.ssd");
}

/// How many tracks the disc in the selected drive has; 0 if the micro does not say, which is told.
int AskTracks() {
    Send_Cmd("N\r");
    std::string reply;
    static_cast<void>(Get_Response(reply, kLongestReply)); // a short reply is a reply, too
    if (reply.empty()) {
        TellTransferError("Problems reading size of disc");
        Swallow_Rubbish();
        return 0;
    }
    switch (NumberOf(reply)) {
    case kDriveBytes:
        return kDriveTracks;
    case kDriveBytes / 2:
        return kDriveTracks / 2;
    default:
        TellTransferError("Unknown Disc Size");
        return 0;
    }
}

/// Asks for a track once. True if `track` holds it.
bool ReceiveTrack(const TrackPlace& place, TrackBuffer& track) {
    std::int32_t crc = 0;
    TraceLine("Reading Track ", place.track, " of Drive ", place.drive);
    Send_Cmd(TrackMessage('G', place.drive, place.track));
    if (!Get_Track(track, crc)) {
        Swallow_Rubbish();
        return false;
    }
    const CrcLine line = AwaitCrc(crc);
    if (line == CrcLine::Missing)
        Swallow_Rubbish();
    return line == CrcLine::Agrees;
}

/// A track that fails is asked for again for as long as it takes. `error` says what failed on the
/// host.
Ending ReceiveTracks(Reception& disc, TransferWindow& window, std::optional<FileError>& error) {
    TrackBuffer track{};
    for (int counter = 0; counter < disc.rounds;) {
        if (Module1::TXAbort) {
            Swallow_Rubbish();
            return Ending::Cancelled; // Meant: TXAbort stays set.
        }
        const TrackPlace place = PlaceOf(counter, disc.drive, disc.both_sides);
        ShowTrack(window, "Receiving", place);
        if (ReceiveTrack(place, track)) {
            const auto offset = static_cast<std::uint64_t>(counter) * kTrackLength;
            error = disc.image.WriteAt(offset, std::span(track).first(kTrackLength));
            if (error)
                return Ending::WriteFailed;
            ++counter;
        }
        ShowProgress(window, counter, disc.rounds);
        Yield();
    }
    error = disc.image.Finish();
    return error ? Ending::WriteFailed : Ending::Complete;
}

/// The file is the disc's from its first track on, so what it held is kept while it is there: a
/// transfer can end after half a disc.
void KeepOldImage(const fs::path& file) {
    std::uint64_t length = 0;
    if (!LengthOfFile(file, length) && length > 0)
        static_cast<void>(KeepCopy(file)); // the user has agreed to lose it
}

bool Receive(Reception& disc, TransferDesk& desk, const fs::path& file) {
    KeepOldImage(file);
    auto error = disc.image.Create(file);
    if (error) {
        TellFileError("Cannot write", file, error->reason);
        return false;
    }
    const auto window = desk.NewTransferWindow();
    const Ending ending = ReceiveTracks(disc, *window, error);
    if (ending == Ending::WriteFailed) {
        window->Close();
        TellFileError("Cannot write", file, error->reason);
    } else if (ending == Ending::Complete) {
        EndTransfer(*window, desk);
    }
    return ending == Ending::Complete;
}

bool ReceiveDisc(int drive, bool both_sides, TransferDesk& desk, fs::path& file) {
    Module1::TXAbort = false;
    const auto target = AskTarget(both_sides);
    if (!target || !SelectDrive(drive))
        return false;
    file = *target;
    const int rounds = both_sides ? kTracksOfBothSides : AskTracks();
    Reception disc{drive, both_sides, rounds, {}};
    return rounds > 0 && Receive(disc, desk, file);
}

} // namespace

bool RX_SSD(int drive, TransferDesk& desk, fs::path& file) {
    return ReceiveDisc(drive, false, desk, file);
}

bool RX_DSD(int drive, TransferDesk& desk, fs::path& file) {
    return ReceiveDisc(drive, true, desk, file);
}

} // namespace quoravel
