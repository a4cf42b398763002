#include "disc/listing.h"
#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "platform/files.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <algorithm>
#include <filesystem>
#include <string>

// A folder with an image of any bytes and any name, as the listing of a collection goes through it.
// The first byte of the input is the kind of the image, then comes its name with the length before
// it; the rest is the image.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

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

/// The image is still on the drives.
void CheckLog(const std::string& text, const fs::path& image, int drives) {
    Require(IsUtf8(text), "a listing is UTF-8");
    Require(text.starts_with("\r\n" + Utf8Of(image) + "\r\n\r\n"), "the image is named");
    Require(text.ends_with("\r\n"), "a listing ends with a line");
    for (int drive = 0; drive < drives; ++drive)
        for (const ListRow& row : ListFiles(drive))
            Require(text.find(LineOf(row)) != std::string::npos, "every file is listed");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    static const TempFolder images;
    static const TempFolder logs;
    ScriptedHost desktop;
    Module1::gCancel = false;
    Input input({data, size});
    const bool interleaved = input.Number(2) == 0;
    const std::string name = HostName(input.Text(40)) + (interleaved ? ".dSd" : ".IMG");
    const auto image = images.File(name, input.rest());
    const auto log = logs.path() / "log.txt";
    Unwatched progress;
    ListImagesBelow(images.path(), log, progress);
    Require(desktop.boxes.empty(), "a listing can always be written");
    CheckLog(TextOf(log), image, interleaved ? kDrives : 1);
    Require(logs.Names().size() == 1, "nothing half-written stays");
    std::filesystem::remove(image);
    return 0;
}
