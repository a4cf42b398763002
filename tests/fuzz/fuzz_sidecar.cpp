#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/export.h"
#include "exchange/host_names.h"
#include "exchange/import.h"
#include "exchange/sidecar.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>

// Any bytes are a sidecar, and the name of a host file. The input is, from its start: how many
// bytes are the name, how many the file itself, how many of the rest damage the catalogue; then
// those, and what is left is the sidecar.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr int kCatalogueBytes = 1024;

/// Ends the run at the input that breaks a promise.
void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

/// Takes bytes off the front of the input.
class Input {
  public:
    explicit Input(std::string_view bytes) : rest_(bytes) {}

    std::size_t Number() { return Take(1).empty() ? 0 : static_cast<unsigned char>(last_.front()); }

    std::string_view Take(std::size_t count) {
        last_ = rest_.substr(0, count);
        rest_.remove_prefix(last_.size());
        return last_;
    }

    [[nodiscard]] std::string_view rest() const { return rest_; }

  private:
    std::string_view rest_;
    std::string_view last_;
};

/// A name that a host file can have, whatever else stands in it.
std::string HostName(std::string_view bytes) {
    std::string name(bytes.substr(0, 40));
    std::ranges::replace(name, '/', '!');
    std::ranges::replace(name, '\0', '!');
    return name.empty() || name == "." || name == ".." ? "x" : name;
}

/// Lays the bytes over both catalogues of a blank drive, as many times as they take. The Watford
/// marker and the sector count stay, so that there is room to import to.
void DamageDisc(std::string_view bytes, bool watford) {
    NewDisc(0, kDriveTracks, watford);
    NewDisc(1, kDriveTracks, false);
    for (int i = 0; !bytes.empty() && i < kCatalogueBytes; ++i) {
        const bool marker = i >= 512 && i < 520;
        if (!marker && i != kFlagsByte && i != kSectorCountByte)
            Module1::DiscImg.SetByte(
                i, static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(i) % bytes.size()]));
    }
    GetFreeSpaceMap(0);
}

std::vector<std::uint8_t> Block() {
    const auto bytes = Module1::DiscImg.bytes();
    return {bytes.begin(), bytes.end()};
}

void CheckLine(std::string_view text) {
    const auto sidecar = ParseSidecar(text);
    if (!sidecar)
        return;
    Require(sidecar->name.size() <= 9 && sidecar->load.size() == 6 && sidecar->exec.size() == 6,
            "fields have their widths");
    Require(sidecar->size.size() == 6 || (sidecar->size.size() == 5 && text.size() == 30),
            "only a line of 30 characters has a shorter length");
}

void CheckShaping(std::string_view name) {
    const std::string shaped = ShapeName(name);
    Require(!shaped.empty() && shaped.size() <= 9, "a shaped name fits the catalogue");
    Require(shaped.find(' ') == std::string::npos, "a shaped name has no space");
    const std::string host = HostFileName(shaped);
    Require(host.find_first_of(std::string_view("/\0", 2)) == std::string::npos && host != "..",
            "an exported name is a name");
}

/// Imports and exports all of the drive again.
void Exchange(const TempFolder& folder, const fs::path& file) {
    const auto before = Block();
    const bool refused = ImportFile(0, file);
    Require(!refused || Block() == before, "a refusal leaves the disc unchanged");
    const auto after = Block();
    Require(std::equal(before.begin() + kDriveBytes, before.end(), after.begin() + kDriveBytes),
            "the other drive stays");
    const auto rows = ListFiles(0);
    if (!rows.empty())
        Require(ExportRow(rows.front(), 0, folder.path()).has_value(), "a listed file goes out");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    const ScriptedHost host;
    static const TempFolder source;
    static const TempFolder target;
    Input input({reinterpret_cast<const char*>(data), size});
    const std::size_t name_bytes = input.Number();
    const std::size_t file_bytes = input.Number();
    const std::size_t disc_bytes = input.Number();
    const std::string name = HostName(input.Take(name_bytes));
    const fs::path file = source.File(name, input.Take(file_bytes));
    DamageDisc(input.Take(disc_bytes), disc_bytes % 2 == 0);
    const fs::path sidecar = source.File(name + ".INF", input.rest());
    CheckLine(input.rest());
    CheckShaping(name);
    Exchange(target, file);
    for (const fs::path& written : {file, sidecar})
        fs::remove(written);
    for (const std::string& exported : target.Names())
        fs::remove(target.path() / exported);
    return 0;
}
