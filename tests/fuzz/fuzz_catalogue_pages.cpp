#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/catalogue_pages.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// Any bytes are two catalogues: the first half of the input is the start of drive 0, the second
// that of drive 1.

namespace quoravel {

namespace {

/// Only the catalogues matter, and clearing more takes longer than most inputs.
void Load(Bytes bytes) {
    constexpr std::size_t kHalf = 2048;
    const Bytes first = bytes.first(bytes.size() / 2);
    const Bytes second = bytes.subspan(bytes.size() / 2);
    for (const auto& [start, half] : {std::pair(0, first), std::pair(kDriveBytes, second)}) {
        Module1::DiscImg.Fill(start, kHalf, 0);
        Module1::DiscImg.Write(start, half.first(std::min(half.size(), kHalf)));
    }
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
}

class Pieces : public ViewSink {
  public:
    std::vector<std::string> pieces;

    void ShowData(std::string_view text) override { pieces.emplace_back(text); }
};

std::vector<std::string> Page(void (*list)(ViewSink&)) {
    Pieces sink;
    list(sink);
    return sink.pieces;
}

/// Fields of a *CAT page, whose other pieces are the header and line ends.
std::ptrdiff_t CatFields() {
    const auto page = Page(ListCat);
    Require(page.size() >= 3, "there is a header");
    return std::count_if(page.begin() + 3, page.end(), [](const std::string& piece) {
        Require(piece == "\r" || piece.size() == 20, "every field has 20 characters");
        return piece.size() == 20;
    });
}

/// Lines of an *EX page that are not empty.
std::ptrdiff_t CheckEX(const std::vector<std::string>& page) {
    for (const std::string& line : page)
        Require(line == "\r" || line.size() == 42, "a line has a file or nothing");
    const auto key = [](std::string_view line) {
        return UpperCase(line.substr(0, line.size() - 1));
    };
    Require(std::ranges::is_sorted(page, {}, key), "the lines are sorted");
    return std::ranges::count(page, 42U, &std::string::size);
}

void CheckPages(int drive) {
    Module1::cur_drive = drive;
    const int files = GetNumberOfDirEntries(drive);
    Require(CatFields() == files, "*CAT has a field for each file");
    const auto ex = Page([](ViewSink& sink) { ListEX(sink); });
    Require(std::ssize(ex) == files, "*EX has a line for each file");
    Require(CheckEX(ex) == std::ssize(ListFiles(drive)), "no file gets lost");
    const auto map = Page(ListMap);
    Require(std::ssize(map) == Module1::FreeSpaceNum[static_cast<std::size_t>(drive)] + 1,
            "the map has a line for each region");
    Require(std::ranges::count(map, 17U, &std::string::size) == std::ssize(map),
            "all lines of the map are equally long");
}

/// A desktop whose user clicks on the other drive at every step.
class RestlessHost : public ScriptedHost {
  public:
    RestlessHost() {
        on_pump = [] { Module1::cur_drive = 1 - Module1::cur_drive; };
    }

    std::chrono::nanoseconds Now() override { return now += std::chrono::seconds(1); }
};

void ListRestlessly() {
    const RestlessHost host;
    Module1::cur_drive = 0;
    CatFields();
    CheckEX(Page([](ViewSink& sink) { ListEX(sink); }));
    Page(ListMap);
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    {
        const quoravel::ScriptedHost host;
        quoravel::Load({data, size});
        quoravel::CheckPages(0);
        quoravel::CheckPages(1);
    }
    quoravel::ListRestlessly();
    return 0;
}
