#pragma once

#include "disc/disc_block.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace quoravel {

/// Who shows the status line of each drive: the main window.
class StatusLine {
  public:
    StatusLine() = default;
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;
    virtual ~StatusLine() = default;

    /// Sets the status line under the list of `drive` (0 or 1).
    virtual void SetMsgText(int drive, std::string_view text) = 0;
};

/// The shared state of the program: plain variables that any routine reads and writes, spelled with
/// their owner wherever they are used. All of it lives on the one thread.
namespace Module1 {

/// Each drive has at most one free region more than it has files, so even a damaged catalogue,
/// which can count 63 files, uses 64 at most.
inline constexpr int kFreeRegions = 83;
using RegionTable = std::array<std::array<int, kFreeRegions>, kDrives>;

// The disc.
inline DiscBlock DiscImg;            ///< the one image in memory
inline int cur_drive = 0;            ///< drive (0 or 1) that the commands act on
inline int mSelectedItem = -1;       ///< row of the selected file in the list of cur_drive, or -1
inline bool gDirty = false;          ///< the block differs from the file
inline std::string gsRoot;           ///< the image's file name in UTF-8: title, save proposal
inline std::filesystem::path gsFile; ///< image file last opened or saved; empty until there is one
inline RegionTable FreeSpaceMap{};   ///< [drive][region] first sector
inline RegionTable FreeSpaceLen{};   ///< [drive][region] length in sectors
inline std::array<int, kDrives> FreeSpaceNum{}; ///< regions in use on each drive

// The small dialogs and the in-place rename.
inline std::string a_load; ///< load address into and out of the address dialog, hex text; that of
                           ///< a document to be formatted
inline std::string a_exec; ///< exec address, likewise
inline bool a_change = false;  ///< the address dialog was left with OK
inline std::string gOldString; ///< name of the file under in-place rename
inline bool gDone = false;     ///< the in-place rename has ended

// The listing of a folder of images.
inline bool gCancel = false; ///< the user's Cancel

// The document under formatting.
inline int gOffset = 0; ///< where it starts in DiscImg
inline int gSize = 0;   ///< its length in bytes

// Looking for a text, in every window that shows one.
inline std::string gStr;     ///< what the last confirmed search looked for
inline bool gDoFind = false; ///< the find dialog was left with OK

// The link.
inline constexpr int kRingSize = 32768;
inline std::array<std::uint8_t, kRingSize> RXBuff{}; ///< ring of received bytes
inline int RXHead = 0;                               ///< index in RXBuff of the next byte to read
inline int RXTail = 0;                               ///< index in RXBuff of the next byte to write
inline int RXLen = 0;                ///< unread bytes; more than kRingSize if some were overwritten
inline bool RXTimeout = false;       ///< the timeout of a read has passed
inline bool TXAbort = false;         ///< the user's Cancel; while set nothing is sent
inline bool gSerialPortOpen = false; ///< the port is believed open
inline int gSerialPort = 0; ///< index of the port that the port dialog starts with; always 0

// The trace of the link.
inline bool gTraceWindow = false;   ///< the trace window is open
inline bool gTraceFileOpen = false; ///< the trace is being written to a file

/// Clears DiscImg, the ring and the trace state, and empties gsFile.
void Init();

/// Sets the status line of `drive`.
void MsgBar(int drive, std::string_view text);

/// Makes `line` the place that MsgBar writes to; nullptr: nowhere. The caller keeps ownership.
void InstallStatusLine(StatusLine* line);

} // namespace Module1

/// The byte of DiscImg at `offset`, as a number to reckon with; 0 outside the block.
[[nodiscard]] inline unsigned ByteAt(std::int64_t offset) {
    return Module1::DiscImg.Byte(offset);
}

} // namespace quoravel
