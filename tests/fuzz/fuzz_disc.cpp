#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/export.h"
#include "exchange/import.h"
#include "exchange/sidecar.h"
#include "fuzz/disc_promises.h"
#include "fuzz/fuzz.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "view/catalogue_pages.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

// Any bytes are a disc, and whatever is done with it, in whatever order, its other side and the
// files that it is not done to stay as they are. The last byte of the input says how the disc gets
// into the block, the one before it how many bytes before those two are the commands; the rest is
// what an image file would hold, or hold many times.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kTail = 2;
constexpr int kMostSteps = 16;
constexpr int kMostSaves = 1; ///< of a whole image, which takes longer than all else

constexpr unsigned kLong = 250; ///< from this form on the image is longer than a disc

void LoadHalves(Bytes bytes) {
    NewDisc(0, kDriveTracks, false);
    NewDisc(1, kDriveTracks, false);
    Module1::DiscImg.Write(0, bytes.first(bytes.size() / 2));
    Module1::DiscImg.Write(kDriveBytes, bytes.subspan(bytes.size() / 2));
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
}

void LoadThroughFile(const TempFolder& folder, Bytes bytes, bool interleaved) {
    const auto file = folder.File("loaded", bytes);
    const auto error = interleaved ? LoadDisc_DSD(file) : LoadDisc_SSD(file);
    Require(!error, "any bytes load");
    const auto first_sector = bytes.first(std::min<std::size_t>(bytes.size(), kSectorBytes));
    if (!interleaved || first_sector.size() == kSectorBytes)
        Require(
            std::ranges::equal(first_sector, Module1::DiscImg.Part(0, std::ssize(first_sector))),
            "the file starts with sector 0 of drive 0");
}

class Forgetful : public ViewSink {
  public:
    void ShowData(std::string_view /*text*/) override {}
};

/// A user with a disc.
class Session {
  public:
    Session(ScriptedHost& desktop, const TempFolder& folder, Bytes commands, BlockWatch& watch)
        : desktop_(desktop), folder_(folder), commands_(commands), watch_(watch) {}

    void Run() {
        Module1::cur_drive = 0;
        watch_.Restart();
        CheckDrives({{0, kDiscBytes}});
        for (int i = 0; i < kMostSteps && !commands_.IsAtEnd(); ++i)
            Step();
    }

  private:
    using Changes = std::vector<Range>; ///< where a command may have written, ascending
    using Command = Changes (Session::*)();

    void Step();
    static void CheckDrives(const Changes& changes);

    Changes SwapDrives();
    Changes SetTheTitle();
    Changes SetBoot();
    Changes Lock();
    Changes Unlock();
    Changes SetAddresses();
    Changes Rename();
    Changes Delete();
    Changes CompactDrive();
    Changes Import();
    Changes CopyAcross();
    Changes New();
    Changes Export();
    Changes Pages();
    Changes SaveInterleaved();
    Changes SaveLinear();

    /// The name of a file of the drive, or one that nothing has.
    std::string AnyName();

    /// What a command has changed that tells a refusal in a box.
    [[nodiscard]] Changes CatalogueUnless(bool refused) const;

    /// Imports a file that holds `data`; no changes after a refusal.
    [[nodiscard]] Changes ImportOnto(int drive, const fs::path& file, std::string_view data) const;

    ScriptedHost& desktop_;
    const TempFolder& folder_;
    Input commands_;
    BlockWatch& watch_;
    bool was_dirty_ = false;
    int saves_ = 0;
};

void Session::Step() {
    static constexpr std::array<Command, 16> kCommands{
        &Session::SwapDrives, &Session::SetTheTitle, &Session::SetBoot,
        &Session::Lock,       &Session::Unlock,      &Session::SetAddresses,
        &Session::Rename,     &Session::Delete,      &Session::CompactDrive,
        &Session::Import,     &Session::New,         &Session::Export,
        &Session::Pages,      &Session::SaveLinear,  &Session::SaveInterleaved,
        &Session::CopyAcross};
    was_dirty_ = Module1::gDirty;
    const Changes changes = (this->*kCommands[commands_.Number(kCommands.size())])();
    watch_.Check(changes);
    if (changes.empty())
        Require(!Module1::gDirty || was_dirty_, "what changes nothing leaves nothing to be saved");
    CheckDrives(changes);
    desktop_.boxes.clear();
}

/// Looks at each drive whose catalogue may have changed.
void Session::CheckDrives(const Changes& changes) {
    for (const int drive : {0, 1}) {
        const Range catalogue = CatalogueOf(drive);
        if (std::ranges::none_of(changes, [&](const Range& range) {
                return range.begin < catalogue.end && range.end > catalogue.begin;
            }))
            continue;
        CheckCatalogue(drive);
        CheckFreeSpace(drive);
    }
}

std::string Session::AnyName() {
    const unsigned which = commands_.Number();
    const int files = GetNumberOfDirEntries(Module1::cur_drive);
    if (files == 0 || which == 255)
        return "N.OBODY";
    return GetName(Module1::cur_drive, static_cast<int>(which) % files);
}

Session::Changes Session::CatalogueUnless(bool refused) const {
    Require(refused == !desktop_.boxes.empty(), "every refusal is told, and nothing else");
    return refused ? Changes{} : Changes{CatalogueOf(Module1::cur_drive)};
}

Session::Changes Session::SwapDrives() {
    Module1::cur_drive = 1 - Module1::cur_drive;
    return {};
}

Session::Changes Session::SetTheTitle() {
    const std::string title(commands_.Text(16));
    SetTitle(Module1::cur_drive, title);
    const bool refused = !desktop_.boxes.empty();
    Require(refused || Module1::gDirty, "a new title is a change");
    return CatalogueUnless(refused);
}

Session::Changes Session::SetBoot() {
    const int option = static_cast<int>(commands_.Number(4));
    SetBootOption(Module1::cur_drive, option);
    Require(BootOption(Module1::cur_drive) == option, "the boot option is kept");
    Require(Module1::gDirty == was_dirty_, "a boot option counts as no change");
    return {CatalogueOf(Module1::cur_drive)};
}

Session::Changes Session::Lock() {
    const std::string name = AnyName();
    LockFile(name);
    const int pos = GetPos(Module1::cur_drive, name);
    Require(pos < 0 || GetFileAttr(GetDirOffset(Module1::cur_drive, pos)) == "L",
            "a locked file is locked");
    return CatalogueUnless(false);
}

Session::Changes Session::Unlock() {
    const std::string name = AnyName();
    UnlockFile(name);
    const int pos = GetPos(Module1::cur_drive, name);
    Require(pos < 0 || GetFileAttr(GetDirOffset(Module1::cur_drive, pos)) == " ",
            "an unlocked file is not locked");
    return CatalogueUnless(false);
}

Session::Changes Session::SetAddresses() {
    const std::string name = AnyName();
    std::string load(commands_.Text(8));
    std::string exec(commands_.Text(8));
    if (CheckAddresses(load, exec))
        return {};
    Require(load.size() == 6 && exec.size() == 6, "addresses become six digits");
    SetFileAttr(name, load, exec);
    return CatalogueUnless(false);
}

Session::Changes Session::Rename() {
    const std::string old_name = AnyName();
    const std::string new_name(commands_.Text(12));
    const bool override_lock = commands_.Number(2) == 0;
    const bool known = GetPos(Module1::cur_drive, old_name) >= 0;
    const bool refused = RenameFile(new_name, old_name, override_lock);
    if (!known) {
        Require(refused && desktop_.boxes.empty(), "what is not there is passed over in silence");
        return {};
    }
    return CatalogueUnless(refused);
}

Session::Changes Session::Delete() {
    const std::string name = AnyName();
    const int pos = GetPos(Module1::cur_drive, name);
    const int files = GetNumberOfDirEntries(Module1::cur_drive);
    const bool refused = DeleteFile(name, commands_.Number(2) == 0);
    if (pos < 0 || refused)
        Require(GetNumberOfDirEntries(Module1::cur_drive) == files, "no file goes without reason");
    return pos < 0 ? Changes{} : CatalogueUnless(refused);
}

/// Where files that no drive can hold run over the other one, its list is as good as a new disc's.
Session::Changes Session::CompactDrive() {
    const int drive = Module1::cur_drive;
    const Range written = WhereCompactWrites(drive);
    const auto contents = ContentsOfSoundDrive(drive);
    Compact(drive);
    if (contents) {
        Require(ContentsOfSoundDrive(drive) == contents,
                "compacting keeps every file of a sound disc");
        Require(Module1::FreeSpaceNum[static_cast<std::size_t>(drive)] <= 1, "and leaves no gap");
    }
    Require(Module1::gDirty, "compacting is a change");
    if (drive == 0 && written.end > kDriveBytes)
        GetFreeSpaceMap(1);
    return {written};
}

/// The lowest free region that takes the file, as the map tells it.
Range RegionFor(int drive, std::size_t bytes) {
    const auto row = static_cast<std::size_t>(drive);
    for (std::size_t i = 0; i < static_cast<std::size_t>(Module1::FreeSpaceNum[row]); ++i) {
        const std::int64_t start = GetStartSectorOfDrive(drive) +
                                   std::int64_t{Module1::FreeSpaceMap[row][i]} * kSectorBytes;
        if (static_cast<std::int64_t>(bytes) <=
            std::int64_t{Module1::FreeSpaceLen[row][i]} * kSectorBytes)
            return {start, start + SectorsOf(static_cast<std::uint32_t>(bytes)) * kSectorBytes};
    }
    return {};
}

Session::Changes Session::ImportOnto(int drive, const fs::path& file, std::string_view data) const {
    const Range region = RegionFor(drive, data.size());
    const bool refused = ImportFile(drive, file);
    Require(refused == !desktop_.boxes.empty(), "every refusal is told, and nothing else");
    if (refused)
        return {};
    Require(AsText(Module1::DiscImg.Part(region.begin, std::ssize(data))) == data,
            "an imported file is on the disc");
    return {CatalogueOf(drive), region};
}

Session::Changes Session::Import() {
    const bool with_sidecar = commands_.Number(2) == 0;
    const std::string data = MyString(static_cast<int>(commands_.Number()) + 1, commands_.Text(64));
    const fs::path file = folder_.File("T.FILE", data);
    const fs::path sidecar = folder_.path() / "T.FILE.INF";
    if (with_sidecar)
        folder_.File("T.FILE.INF", commands_.Text(80));
    auto changes = ImportOnto(Module1::cur_drive, file, data);
    fs::remove(sidecar);
    return changes;
}

/// A file is dragged to the list of the other drive.
Session::Changes Session::CopyAcross() {
    const auto rows = ListFiles(Module1::cur_drive);
    if (rows.empty())
        return {};
    const ListRow& row = rows[commands_.Number() % rows.size()];
    const auto files = ExportRow(row, Module1::cur_drive, folder_.path());
    Require(files.has_value(), "a listed file goes out");
    const int other = 1 - Module1::cur_drive;
    const bool arrives_whole = ArrivesWhole(row, other);
    Changes changes;
    if (!IsSidecarName(files->data))
        changes = ImportOnto(other, files->data, TextOf(files->data));
    if (!changes.empty() && arrives_whole)
        CheckCopy(row, other);
    fs::remove(files->data);
    fs::remove(files->sidecar);
    return changes;
}

Session::Changes Session::New() {
    const int tracks = commands_.Number(2) == 0 ? 80 : 40;
    NewDisc(Module1::cur_drive, tracks, commands_.Number(2) == 0);
    Require(!Module1::gDirty, "a new disc has no changes");
    Require(ListFiles(Module1::cur_drive).empty(), "a new disc has no files");
    const std::int64_t start = GetStartSectorOfDrive(Module1::cur_drive);
    return {{start, start + tracks * kTrackBytes}};
}

Session::Changes Session::Export() {
    const auto rows = ListFiles(Module1::cur_drive);
    if (rows.empty())
        return {};
    const ListRow& row = rows[commands_.Number() % rows.size()];
    const auto files = ExportRow(row, Module1::cur_drive, folder_.path());
    Require(files.has_value(), "a listed file goes out");
    const auto data = Module1::DiscImg.Part(GetStartSectorOfDrive(Module1::cur_drive) +
                                                std::int64_t{HexValue(row.Sector)} * kSectorBytes,
                                            HexValue(row.Size));
    Require(TextOf(files->data) == AsText(data), "it goes out as it is");
    fs::remove(files->data);
    fs::remove(files->sidecar);
    return {};
}

Session::Changes Session::Pages() {
    Forgetful sink;
    ListCat(sink);
    ListEX(sink);
    ListMap(sink);
    return {};
}

Session::Changes Session::SaveInterleaved() {
    if (++saves_ > kMostSaves)
        return {};
    const fs::path file = folder_.path() / "saved.dsd";
    Require(!SaveDisc_DSD(file) && !Module1::gDirty, "a saved disc has no changes");
    watch_.Check({});
    Module1::DiscImg.Fill(0, kDiscBytes, 255);
    Require(!LoadDisc_DSD(file), "what was saved loads");
    return {};
}

/// The linear form holds drive 0 up to the last sector that is in use on the current drive; what is
/// behind that comes back as two blank discs are.
Session::Changes Session::SaveLinear() {
    const fs::path file = folder_.path() / "saved.ssd";
    Require(!SaveDisc_SSD(file) && !Module1::gDirty, "a saved disc has no changes");
    const auto held = static_cast<std::int64_t>(fs::file_size(file));
    Require(held == (GetSectorsUsed(Module1::cur_drive) + std::int64_t{1}) * kSectorBytes,
            "a linear image ends with the last file");
    watch_.Check({});
    Require(!LoadDisc_SSD(file), "what was saved loads");
    watch_.Check({{held, kDiscBytes}});
    for (const int flags : {kFlagsByte, kDriveBytes + kFlagsByte})
        if (flags >= held)
            Require(GetNumberOfSectors(flags < kDriveBytes ? 0 : 1) == kDriveSectors,
                    "what is not in the file is blank");
    return {{held, kDiscBytes}};
}

void Load(const TempFolder& folder, Bytes bytes, unsigned form) {
    std::vector<std::uint8_t> image(bytes.begin(), bytes.end());
    while (form >= kLong && !image.empty() && image.size() < kDiscBytes + kTrackBytes)
        image.insert(image.end(), bytes.begin(), bytes.end());
    if (form % 3 == 0)
        LoadHalves(bytes);
    else
        LoadThroughFile(folder, image, form % 3 == 2);
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    if (size < kTail)
        return 0;
    static const TempFolder folder;
    static BlockWatch watch; // making 400 KB anew each time takes long
    ScriptedHost desktop;
    const Bytes input = Bytes(data, size).first(size - kTail);
    const Bytes commands = input.last(std::min<std::size_t>(input.size(), data[size - kTail]));
    Load(folder, input.first(input.size() - commands.size()), data[size - 1]);
    Session(desktop, folder, commands, watch).Run();
    return 0;
}
