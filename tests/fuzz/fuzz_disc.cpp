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
#include <optional>
#include <string>
#include <vector>

// Any bytes are a disc, and whatever is done with it, in whatever order, its other side and the
// files that it is not done to stay as they are. The last byte of the input says how the disc gets
// into the block, the one before it how many bytes before those two are the commands; the rest is
// what an image file would hold, or hold many times.

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using Module1::cur_drive;
using Changes = std::vector<Range>; ///< where a command may have written, ascending

constexpr int kMostSteps = 16;
constexpr int kMostSaves = 1; ///< of a whole image, which takes longer than all else

/// A user with a disc.
struct Session {
    ScriptedHost& desktop;
    const TempFolder& folder;
    Input commands;
    BlockWatch& watch;
    bool was_dirty = false;
    int saves = 0;
};

/// The name of a file of the drive, or one that nothing has.
std::string AnyName(Session& user) {
    const unsigned which = user.commands.Number();
    const int files = GetNumberOfDirEntries(cur_drive);
    if (files == 0 || which == 255)
        return "N.OBODY";
    return GetName(cur_drive, static_cast<int>(which) % files);
}

/// What a command has changed that tells a refusal in a box.
Changes CatalogueUnless(const Session& user, bool refused) {
    Require(refused == !user.desktop.boxes.empty(), "every refusal is told, and nothing else");
    return refused ? Changes{} : Changes{CatalogueOf(cur_drive)};
}

Changes SwapDrives(Session& /*user*/) {
    cur_drive = 1 - cur_drive;
    return {};
}

Changes ChangeTitle(Session& user) {
    SetTitle(cur_drive, std::string(user.commands.Text(16)));
    const bool refused = !user.desktop.boxes.empty();
    Require(refused || Module1::gDirty, "a new title is a change");
    return CatalogueUnless(user, refused);
}

Changes ChangeBoot(Session& user) {
    const int option = static_cast<int>(user.commands.Number(4));
    SetBootOption(cur_drive, option);
    Require(BootOption(cur_drive) == option, "the boot option is kept");
    Require(Module1::gDirty == user.was_dirty, "a boot option counts as no change");
    return {CatalogueOf(cur_drive)};
}

template<bool locked>
Changes ChangeLock(Session& user) {
    const std::string name = AnyName(user);
    locked ? LockFile(name) : UnlockFile(name);
    const int pos = GetPos(cur_drive, name);
    Require(pos < 0 || GetFileAttr(GetDirOffset(cur_drive, pos)) == (locked ? "L" : " "),
            "a file is locked or not, as asked for");
    return CatalogueUnless(user, false);
}

Changes ChangeAddresses(Session& user) {
    const std::string name = AnyName(user);
    std::string load(user.commands.Text(8));
    std::string exec(user.commands.Text(8));
    if (CheckAddresses(load, exec))
        return {};
    Require(load.size() == 6 && exec.size() == 6, "addresses become six digits");
    SetFileAttr(name, load, exec);
    return CatalogueUnless(user, false);
}

Changes Rename(Session& user) {
    const std::string old_name = AnyName(user);
    const std::string new_name(user.commands.Text(12));
    const bool known = GetPos(cur_drive, old_name) >= 0;
    const bool refused = RenameFile(new_name, old_name, user.commands.Number(2) == 0);
    Require(known || (refused && user.desktop.boxes.empty()),
            "what is not there is passed over in silence");
    return known ? CatalogueUnless(user, refused) : Changes{};
}

Changes Delete(Session& user) {
    const std::string name = AnyName(user);
    const bool known = GetPos(cur_drive, name) >= 0;
    const int files = GetNumberOfDirEntries(cur_drive);
    const bool refused = DeleteFile(name, user.commands.Number(2) == 0);
    Require((known && !refused) || GetNumberOfDirEntries(cur_drive) == files,
            "no file goes without reason");
    return known ? CatalogueUnless(user, refused) : Changes{};
}

/// Where files that no drive can hold run over the other one, its list is as good as a new disc's.
Changes CompactDrive(Session& /*user*/) {
    const int drive = cur_drive;
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

/// Imports a file that holds `data`; no changes after a refusal.
Changes ImportOnto(const Session& user, int drive, const fs::path& file, std::string_view data) {
    const Range region = RegionFor(drive, data.size());
    const bool refused = ImportFile(drive, file);
    Require(refused == !user.desktop.boxes.empty(), "every refusal is told, and nothing else");
    if (refused)
        return {};
    Require(AsText(Module1::DiscImg.Part(region.begin, std::ssize(data))) == data,
            "an imported file is on the disc");
    return {CatalogueOf(drive), region};
}

Changes Import(Session& user) {
    const bool with_sidecar = user.commands.Number(2) == 0;
    const std::string data =
        MyString(static_cast<int>(user.commands.Number()) + 1, user.commands.Text(64));
    const fs::path file = user.folder.File("T.FILE", data);
    if (with_sidecar)
        user.folder.File("T.FILE.INF", user.commands.Text(80));
    auto changes = ImportOnto(user, cur_drive, file, data);
    fs::remove(user.folder.path() / "T.FILE.INF");
    return changes;
}

struct Exported {
    ListRow row;
    fs::path data;
};

/// Some file of the drive, on the host as it is on the disc.
std::optional<Exported> ExportAny(Session& user) {
    const auto rows = ListFiles(cur_drive);
    if (rows.empty())
        return {};
    const ListRow& row = rows[user.commands.Number() % rows.size()];
    const auto files = ExportRow(row, cur_drive, user.folder.path());
    Require(files.has_value(), "a listed file goes out");
    const auto data = Module1::DiscImg.Part(GetStartSectorOfDrive(cur_drive) +
                                                std::int64_t{HexValue(row.Sector)} * kSectorBytes,
                                            HexValue(row.Size));
    Require(TextOf(files->data) == AsText(data), "it goes out as it is");
    return Exported{row, files->data};
}

void EmptyFolder(const Session& user) {
    for (const std::string& name : user.folder.Names())
        fs::remove(user.folder.path() / name);
}

Changes Export(Session& user) {
    static_cast<void>(ExportAny(user));
    EmptyFolder(user);
    return {};
}

/// A file is dragged to the list of the other drive.
Changes CopyAcross(Session& user) {
    const auto file = ExportAny(user);
    if (!file)
        return {};
    const int other = 1 - cur_drive;
    const bool arrives_whole = ArrivesWhole(file->row, other);
    Changes changes;
    if (!IsSidecarName(file->data))
        changes = ImportOnto(user, other, file->data, TextOf(file->data));
    if (!changes.empty() && arrives_whole)
        CheckCopy(file->row, other);
    EmptyFolder(user);
    return changes;
}

Changes New(Session& user) {
    const int tracks = user.commands.Number(2) == 0 ? 80 : 40;
    NewDisc(cur_drive, tracks, user.commands.Number(2) == 0);
    Require(!Module1::gDirty && ListFiles(cur_drive).empty(), "a new disc has nothing to keep");
    const std::int64_t start = GetStartSectorOfDrive(cur_drive);
    return {{start, start + std::int64_t{tracks} * kTrackBytes}};
}

Changes Pages(Session& /*user*/) {
    struct : ViewSink {
        void ShowData(std::string_view /*text*/) override {}
    } sink;

    ListCat(sink);
    ListEX(sink);
    ListMap(sink);
    return {};
}

Changes SaveInterleaved(Session& user) {
    if (++user.saves > kMostSaves)
        return {};
    const fs::path file = user.folder.path() / "saved.dsd";
    Require(!SaveDisc_DSD(file) && !Module1::gDirty, "a saved disc has no changes");
    user.watch.Check({});
    Module1::DiscImg.Fill(0, kDiscBytes, 255);
    Require(!LoadDisc_DSD(file), "what was saved loads");
    return {};
}

/// The linear form holds drive 0 up to the last sector that is in use on the current drive; what is
/// behind that comes back as two blank discs are.
Changes SaveLinear(Session& user) {
    const fs::path file = user.folder.path() / "saved.ssd";
    Require(!SaveDisc_SSD(file) && !Module1::gDirty, "a saved disc has no changes");
    const auto held = static_cast<std::int64_t>(fs::file_size(file));
    Require(held == (GetSectorsUsed(cur_drive) + std::int64_t{1}) * kSectorBytes,
            "a linear image ends with the last file");
    user.watch.Check({});
    Require(!LoadDisc_SSD(file), "what was saved loads");
    user.watch.Check({{held, kDiscBytes}});
    for (const int drive : {0, 1})
        if (drive * kDriveBytes + kFlagsByte >= held)
            Require(GetNumberOfSectors(drive) == kDriveSectors, "what is not in the file is blank");
    return {{held, kDiscBytes}};
}

void CheckDrives() {
    for (const int drive : {0, 1}) {
        CheckCatalogue(drive);
        CheckFreeSpace(drive);
    }
}

void Step(Session& user) {
    static constexpr auto kCommands = std::to_array<Changes (*)(Session&)>(
        {SwapDrives, ChangeTitle, ChangeBoot, ChangeLock<true>, ChangeLock<false>, ChangeAddresses,
         Rename, Delete, CompactDrive, Import, New, Export, Pages, SaveLinear, SaveInterleaved,
         CopyAcross});
    user.was_dirty = Module1::gDirty;
    const Changes changes = kCommands[user.commands.Number(kCommands.size())](user);
    user.watch.Check(changes);
    Require(!changes.empty() || !Module1::gDirty || user.was_dirty,
            "what changes nothing leaves nothing to be saved");
    if (!changes.empty())
        CheckDrives();
    user.desktop.boxes.clear();
}

void LoadHalves(Bytes bytes) {
    NewDisc(0, kDriveTracks, false);
    NewDisc(1, kDriveTracks, false);
    Module1::DiscImg.Write(0, bytes.first(bytes.size() / 2));
    Module1::DiscImg.Write(kDriveBytes, bytes.subspan(bytes.size() / 2));
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
}

void Load(const TempFolder& folder, Bytes bytes, unsigned form) {
    constexpr unsigned kLong = 250; // from this form on the image is longer than a disc
    if (form % 3 == 0)
        return LoadHalves(bytes);
    std::vector<std::uint8_t> image(bytes.begin(), bytes.end());
    while (form >= kLong && !image.empty() && image.size() < kDiscBytes + kTrackBytes)
        image.insert(image.end(), bytes.begin(), bytes.end());
    const auto file = folder.File("loaded", image);
    Require(!(form % 3 == 2 ? LoadDisc_DSD(file) : LoadDisc_SSD(file)), "any bytes load");
}

} // namespace

void fuzzers::disc(Bytes input) {
    constexpr std::size_t kTail = 2;
    if (input.size() < kTail)
        return;
    static const TempFolder folder;
    static BlockWatch watch; // making 400 KB anew each time takes long
    ScriptedHost desktop;
    const Bytes all = input.first(input.size() - kTail);
    const Bytes commands = all.last(std::min<std::size_t>(all.size(), input[input.size() - kTail]));
    Load(folder, all.first(all.size() - commands.size()), input.back());
    cur_drive = 0;
    watch.Restart();
    CheckDrives();
    Session user{desktop, folder, Input(commands), watch};
    for (int i = 0; i < kMostSteps && !user.commands.rest().empty(); ++i)
        Step(user);
}

} // namespace quoravel
