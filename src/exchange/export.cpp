#include "exchange/export.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "exchange/host_names.h"
#include "exchange/sidecar.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/saving.h"
#include "platform/text.h"

#include <span>

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using Bytes = std::span<const std::uint8_t>;

/// The part of the file that lies inside the block.
Bytes DataOf(const ListRow& row, int drive) {
    const std::int64_t sector = HexValue(row.Sector);
    return Module1::DiscImg.Part(GetStartSectorOfDrive(drive) + sector * kSectorBytes,
                                 HexValue(row.Size));
}

bool Write(const fs::path& file, Bytes bytes) {
    // The disc image still holds what is written here: there is nothing to lose.
    const auto error = ReplaceFile(file, bytes, Flush::No);
    if (error)
        host().MsgBox("Cannot write " + FileName(file) + ": " + error->reason);
    return !error;
}

} // namespace

std::optional<ExportedFiles> ExportRow(const ListRow& row, int drive, const fs::path& folder) {
    const std::string name = HostFileName(row.FileName);
    ExportedFiles files{folder / name, folder / (name + ".INF")};
    if (!Write(files.data, DataOf(row, drive)) || !Write(files.sidecar, AsBytes(SidecarText(row))))
        return {};
    return files;
}

} // namespace quoravel
