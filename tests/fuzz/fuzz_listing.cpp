#include "disc/module1.h"
#include "fuzz/fuzz.h"
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

void CheckLog(const std::string& text) {
    Require(IsUtf8(text), "a listing is UTF-8");
    Require(text.ends_with("\r\n"), "a listing ends with a line");
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1))
        Require(at > 0, "no line end stands alone at the start");
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
    CheckLog(TextOf(log));
    Require(logs.Names().size() == 1, "nothing half-written stays");
    std::filesystem::remove(image);
    return 0;
}
