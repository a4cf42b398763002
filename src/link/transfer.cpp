#include "link/transfer.h"

#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/trace.h"
#include "link/transfer_steps.h"
#include "platform/files.h"
#include "platform/host.h"

#include <string>

namespace quoravel {

namespace {

bool AnswersSuccess() {
    std::string reply;
    static_cast<void>(Get_Response(reply, kLongestReply));
    return IsSuccessLine(reply);
}

/// Gives false, for the caller to give on.
bool TellAndDrain(std::string_view text) {
    TellTransferError(text);
    Swallow_Rubbish();
    return false;
}

} // namespace

TrackPlace PlaceOf(std::int64_t counter, int drive, bool both_sides) {
    if (!both_sides)
        return {drive, counter};
    return {drive + 2 * static_cast<int>(counter % 2), counter / 2};
}

bool SelectDrive(int drive) {
    Send_Cmd("*");
    Send_Cmd("*DISC\r");
    if (!AnswersSuccess())
        return TellAndDrain("Problems changing to DFS");
    Send_Cmd("*DRIVE " + std::to_string(drive) + '\r');
    if (!AnswersSuccess())
        return TellAndDrain("Problems setting drive " + std::to_string(drive));
    return true;
}

CrcLine AwaitCrc(std::int32_t crc) {
    TraceLine("Waiting for Track CRC");
    std::string reply;
    if (!Get_Response(reply, kLongestReply))
        return CrcLine::Missing;
    TraceLine("Received Track CRC of ", NumberOf(reply));
    TraceLine("My CRC = ", crc);
    if (NumberOf(reply) == crc)
        return CrcLine::Agrees;
    TraceLine("Mismatch in CRC");
    return CrcLine::Differs;
}

// Meant: a send has the title of a receive, too.
void TellTransferError(std::string_view text) {
    host().MsgBox(text, "GetDisc Error");
}

void TellFileError(std::string_view what, const std::filesystem::path& file,
                   std::string_view reason) {
    std::string text(what);
    text += ' ' + FileName(file) + ": ";
    text += reason;
    TellTransferError(text);
}

void ShowTrack(TransferWindow& window, std::string_view doing, const TrackPlace& place) {
    std::string text(doing);
    text += " Track " + std::to_string(place.track) + " of Drive " + std::to_string(place.drive);
    window.SetRX(text);
}

void ShowProgress(TransferWindow& window, std::int64_t counter, std::int64_t rounds) {
    if (!Module1::TXAbort)
        window.SetProgress(
            static_cast<int>(static_cast<double>(counter) / static_cast<double>(rounds) * 100));
}

void EndTransfer(TransferWindow& window, const TransferDesk& desk) {
    window.Close();
    if (desk.PlaysWave())
        PlayWAV("xfer.wav");
}

void PlayWAV(std::string_view name) {
    if (const auto file = ShippedFile(name))
        host().PlaySound(*file);
}

} // namespace quoravel
