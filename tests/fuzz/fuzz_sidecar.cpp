#include "disc/catalogue.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/host_names.h"
#include "exchange/sidecar.h"
#include "fuzz/file_input.h"
#include "platform/text.h"

#include <string>

// Any text is the line of a sidecar, the name of a host file, and an entry of a catalogue that goes
// out with a sidecar of its own.

namespace quoravel {

namespace {

void CheckLine(std::string_view text) {
    const auto sidecar = ParseSidecar(text);
    if (!sidecar)
        return;
    Require(sidecar->name.size() <= 9 && sidecar->load.size() == 6 && sidecar->exec.size() == 6,
            "fields have their widths");
    Require(sidecar->size.size() == 6 || (sidecar->size.size() == 5 && text.size() == 30),
            "only a line of 30 characters has a shorter length");
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

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const quoravel::Bytes input(data, size);
    quoravel::CheckLine(quoravel::AsText(input));
    quoravel::CheckNames(quoravel::AsText(input));
    quoravel::CheckWrittenLine(input);
    return 0;
}
