#include "disc/catalogue.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/host_names.h"
#include "exchange/sidecar.h"
#include "fuzz/fuzz.h"
#include "platform/files.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <algorithm>
#include <filesystem>
#include <string>

// Files of the host with any names and bytes: sidecars, and a collection of images.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

void CheckLine(std::string_view text) {
    const auto sidecar = ParseSidecar(text);
    Require(!sidecar || (sidecar->name.size() <= 9 && sidecar->load.size() == 6 &&
                         sidecar->exec.size() == 6 && sidecar->size.size() <= 6),
            "fields have their widths");
}

void CheckNames(std::string_view name) {
    const std::string shaped = ShapeName(name);
    Require(!shaped.empty() && shaped.size() <= 9, "a shaped name fits the catalogue");
    Require(shaped.find(' ') == std::string::npos, "a shaped name has no space");
    for (const std::string& exported : {HostFileName(shaped), HostFileName(name)})
        Require(exported.find_first_of(std::string_view("/\0", 2)) == std::string::npos &&
                    exported != "..",
                "an exported name is a name");
    const std::string utf8 = Latin1ToUtf8(name);
    Require(IsUtf8(utf8) && LowBytesOfUtf8(utf8) == name, "a host name keeps its characters");
    Require(LowBytesOfUtf8(name).size() <= name.size(), "a character becomes a byte");
}

/// What a sidecar tells of a file is what the list showed.
void CheckWrittenLine(Bytes input) {
    constexpr int kEntry = kEntryBytes;
    constexpr std::size_t kInfo = 8;
    if (input.size() < 2 * kInfo)
        return;
    Module1::DiscImg.Write(kEntry, input.first(kInfo));
    Module1::DiscImg.Write(kEntry + kInfoDistance, input.subspan(kInfo, kInfo));
    const auto row = ListFile(kEntry);
    if (!row)
        return;
    std::string line = SidecarText(*row);
    Require(line.size() == 35 && line.back() == '\n', "a sidecar has 34 characters and LF");
    line.pop_back();
    const auto sidecar = ParseSidecar(line);
    Require(sidecar.has_value(), "a written sidecar can be read");
    Require(sidecar->name == Trim(row->FileName) && sidecar->load == row->Load &&
                sidecar->exec == row->Exec && sidecar->size == row->Size &&
                sidecar->locked == (row->Attr == "L"),
            "and says the same");
}

class Unwatched : public ListingProgress {
  public:
    void SetImages(std::string_view /*text*/) override {}

    void SetProgress(int percent) override { Require(percent == 100, "one of one is all"); }
};

/// A name that a host file can have, whatever else stands in it.
std::string HostName(std::string_view bytes) {
    std::string name(bytes);
    std::ranges::replace(name, '/', '!');
    std::ranges::replace(name, '\0', '!');
    return name;
}

/// The line of a file on a page of *EX, with a directory that is a CR or not.
std::string LineOf(const ListRow& row) {
    std::string line = row.FileName;
    line.resize(9, ' ');
    for (const std::string* cell : {&row.Attr, &row.Load, &row.Exec, &row.Size, &row.Sector})
        line.append("  ").append(*cell);
    return Latin1ToUtf8(AddLineFeeds(line + '\r'));
}

} // namespace

/// The input is the line of a sidecar, the name of a host file, and an entry of a catalogue that
/// goes out with a sidecar of its own.
void fuzzers::sidecar(Bytes input) {
    CheckLine(AsText(input));
    CheckNames(AsText(input));
    CheckWrittenLine(input);
}

/// The first byte of the input is the kind of an image, then comes its name with the length before
/// it; the rest is the image.
void fuzzers::listing(Bytes bytes) {
    static const TempFolder images;
    static const TempFolder logs;
    ScriptedHost desktop;
    Module1::gCancel = false;
    Input input(bytes);
    const bool interleaved = input.Number(2) == 0;
    const std::string name = HostName(input.Text(40)) + (interleaved ? ".dSd" : ".IMG");
    const auto image = images.File(name, input.rest());
    Unwatched progress;
    ListImagesBelow(images.path(), logs.path() / "log.txt", progress);
    Require(desktop.boxes.empty() && logs.Names().size() == 1, "a listing can always be written");
    const std::string text = TextOf(logs.path() / "log.txt");
    Require(IsUtf8(text) && text.ends_with("\r\n"), "a listing is lines of UTF-8");
    Require(text.starts_with("\r\n" + Utf8Of(image) + "\r\n\r\n"), "the image is named");
    for (int drive = 0; drive < (interleaved ? kDrives : 1); ++drive)
        for (const ListRow& row : ListFiles(drive)) // the image is still on the drives
            Require(text.find(LineOf(row)) != std::string::npos, "every file is listed");
    fs::remove(image);
}

} // namespace quoravel
