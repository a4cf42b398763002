#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/basic.h"
#include "view/catalogue_pages.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/text_view.h"
#include "view/viewed_file.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

// Any file of a disc, wherever it lies, through each renderer of a view, and any two catalogues
// through those of the pages.

namespace quoravel {

namespace {

using std::string_view;

struct FileInput {
    int sector = 0;
    int base = 0;
    std::uint32_t length = 0;
    std::uint32_t load = 0;
    int size = 0; ///< that a view shows
    unsigned flags = 0;
};

/// Puts `bytes` at `offset` of a disc of zeros. Clears only what the last call put there, as
/// clearing everything takes longer than most inputs.
void PutOnBlankDisc(std::int64_t offset, Bytes bytes) {
    static std::int64_t last_offset = 0;
    static std::int64_t last_length = kDiscBytes;
    Module1::DiscImg.Fill(last_offset, last_length, 0);
    Module1::DiscImg.Write(offset, bytes);
    last_offset = offset;
    last_length = std::ssize(bytes);
}

/// Puts the file of an input on a disc of zeros and selects its drive. The last six bytes are: load
/// address; length, held near that of the file, so that a run is short; sector; flags. Bit 0 of the
/// flags is the drive, with bit 2 the sector is one of the last 8 or lies behind them, and with bit
/// 3 the length reads as 0xFFxxxx, near the end of the block.
FileInput LoadFile(Bytes input) {
    constexpr std::size_t kTail = 6;
    static constexpr std::array<std::uint8_t, kTail> kNoFile{};
    if (input.size() < kTail)
        input = kNoFile;
    const auto tail = input.last(kTail);
    const auto bytes = input.first(input.size() - kTail);
    const auto word = [&](std::size_t i) { return tail[i] + 256U * tail[i + 1]; };
    FileInput file;
    file.flags = tail[5];
    const bool reads_ff = (file.flags & 8U) != 0;
    const bool near_end = reads_ff || (file.flags & 4U) != 0;
    const auto longest = static_cast<std::uint32_t>(bytes.size()) + (near_end ? 600U : 64U);
    file.load = word(0);
    file.length = reads_ff ? word(2) | 0xFF0000U : word(2) % longest;
    file.sector = tail[4] + (near_end ? kDriveSectors - 8 : 0);
    Module1::cur_drive = reads_ff || (file.flags & 1U) != 0 ? 1 : 0;
    file.base = GetStartSectorOfDrive(Module1::cur_drive) + file.sector * kSectorBytes;
    file.size = ViewedLength(file.base, file.length);
    PutOnBlankDisc(file.base, bytes);
    return file;
}

std::uint8_t ByteAt(int offset) {
    return Module1::DiscImg.Byte(offset);
}

/// All that a view shows.
struct Pieces : ViewSink {
    std::vector<std::string> all;

    void ShowData(string_view text) override { all.emplace_back(text); }
};

/// A desktop whose user clicks on the other drive at every step.
class RestlessHost : public ScriptedHost {
  public:
    explicit RestlessHost(bool restless) : step_(restless ? 1 : 0) {
        on_pump = [] { Module1::cur_drive = 1 - Module1::cur_drive; };
    }

    std::chrono::nanoseconds Now() override { return now += step_; }

  private:
    std::chrono::seconds step_;
};

std::vector<std::string> Page(void (*list)(ViewSink&)) {
    Pieces page;
    list(page);
    return page.all;
}

void LoadCatalogues(Bytes bytes) {
    constexpr std::size_t kHalf = 2048; // clearing more takes longer than most inputs
    const Bytes first = bytes.first(bytes.size() / 2);
    const Bytes second = bytes.subspan(bytes.size() / 2);
    for (const auto& [start, half] : {std::pair(0, first), std::pair(kDriveBytes, second)}) {
        Module1::DiscImg.Fill(start, kHalf, 0);
        Module1::DiscImg.Write(start, half.first(std::min(half.size(), kHalf)));
    }
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
}

void CheckPages(int drive) {
    Module1::cur_drive = drive;
    const int files = GetNumberOfDirEntries(drive);
    const auto cat = Page(ListCat);
    Require(std::count_if(cat.begin() + 3, cat.end(),
                          [](auto& piece) { return piece.size() == 20; }) == files,
            "*CAT has a field for each file behind its header");
    const auto ex = Page([](ViewSink& sink) { ListEX(sink); });
    Require(std::ssize(ex) == files, "*EX has a line for each file");
    Require(std::ranges::count(ex, 42U, &std::string::size) == std::ssize(ListFiles(drive)),
            "no file gets lost");
    const auto key = [](string_view line) { return UpperCase(line.substr(0, line.size() - 1)); };
    Require(std::ranges::is_sorted(ex, {}, key), "the lines are sorted");
    const int regions = Module1::FreeSpaceNum[static_cast<std::size_t>(drive)];
    Require(std::ssize(Page(ListMap)) == regions + 1, "the map has a line for each region");
}

/// A view that is closed after this many characters, as no reader has the patience for more.
class ImpatientSink : public ViewSink {
  public:
    class Closed {};

    void ShowData(string_view text) override {
        // None asks whether the view is still there.
        Require(text.size() <= 1, "one character a call");
        Require(WordWise::state.OutputPointer >= 0 &&
                    WordWise::state.OutputPointer <= WordWise::kLastPosition,
                "the line ends within its block");
        if (--left_ == 0)
            throw Closed();
    }

  private:
    int left_ = 30000;
};

/// Takes the offer of silence at once, or never.
class Reader : public ScriptedHost {
  public:
    explicit Reader(bool patient) : patient_(patient) {}

    void MsgBox(string_view text, string_view /*title*/) override {
        Require(text.starts_with("Unrecognised Command "), "no other message");
        Require(IsUtf8(text), "boxes are UTF-8");
    }

    bool AskYesNo(string_view text, string_view title) override {
        MsgBox(text, title);
        return !patient_;
    }

  private:
    bool patient_;
};

} // namespace

/// Once more with drives that change, only for its ending.
void fuzzers::catalogue_pages(Bytes input) {
    LoadCatalogues(input);
    {
        const ScriptedHost host;
        CheckPages(0);
        CheckPages(1);
    }
    const RestlessHost host(true);
    for (const auto list : {ListCat, static_cast<void (*)(ViewSink&)>(ListMap)})
        Page(list);
    Page([](ViewSink& sink) { ListEX(sink); });
}

void fuzzers::text_hex(Bytes input) {
    const ScriptedHost host;
    const FileInput file = LoadFile(input);
    std::string wanted(AsText(Module1::DiscImg.Part(file.base, file.size)));
    wanted.resize(static_cast<std::size_t>(file.size)); // with what lies behind the block
    std::erase(wanted, '\n');
    Pieces text;
    ListText(file.base, file.length, text);
    std::string shown;
    for (const std::string& piece : text.all)
        shown += piece;
    Require(shown == wanted, "all but the line feeds is there as it was");

    constexpr std::size_t kAround = 6 + 3 + 48 + 1 + 1;
    Pieces hex;
    ListHex(file.base, file.length, hex);
    int offset = 0;
    for (const string_view row : hex.all) {
        Require(row.size() > kAround && HexValue(row) == static_cast<std::uint32_t>(offset),
                "each row has its offset");
        for (std::size_t i = 0; i < row.size() - kAround; ++i)
            Require(HexValue(row.substr(9 + 3 * i, 2)) == ByteAt(file.base + offset++),
                    "each byte is there");
    }
    Require(offset == file.size, "the dump is complete");
}

void fuzzers::basic(Bytes input) {
    const ScriptedHost host;
    const FileInput file = LoadFile(input);
    Pieces lines;
    ListBasic(file.base, file.length, lines);
    if (ByteAt(file.base) != 13)
        return Require(lines.all.size() == 1, "what does not start with CR is refused");
    int written = 0;
    for (const string_view line : lines.all) {
        written += static_cast<int>(line.size());
        Require(line.size() > 6 &&
                    line.substr(0, 5).find_first_not_of(" 0123456789") == string_view::npos,
                "a line has its number");
        Require(
            std::ranges::find_if(line, [](char c) { return static_cast<std::uint8_t>(c) < ' '; }) ==
                    line.end() - 1 &&
                line.back() == '\r',
            "its only control code is its end");
    }
    // A byte is eight characters at most. A line that the end cuts off reads a few more.
    Require(written <= (file.size + 8) * 8, "the listing is no longer than it can be");
}

/// With bit 1 of the flags the current drive changes again and again while the code is shown.
void fuzzers::disassembler(Bytes input) {
    const FileInput file = LoadFile(input);
    const bool restless = (file.flags & 2U) != 0;
    const RestlessHost desktop(restless);
    Pieces code;
    Disassemble(file.sector, file.length, static_cast<std::uint16_t>(file.load), code);
    if (code.all.front().starts_with("This appears"))
        return Require(ByteAt(file.base) == 13, "only what starts with CR is refused");
    int next = file.base;
    for (const string_view line : code.all) {
        constexpr std::size_t kColumns = 35;
        const std::size_t bytes = (line.substr(0, 18).find_last_not_of(' ') - 4) / 3;
        const bool ends = ByteAt(next) == 0x60 || ByteAt(next) == 0x40;
        Require(line.size() == kColumns + bytes + (ends ? 2 : 1), "a line has its width");
        Require(HexValue(line.substr(0, 4)) ==
                    ((file.load + static_cast<unsigned>(next - file.base)) & 0xFFFFU),
                "addresses follow the bytes");
        for (std::size_t i = 0; i < bytes; ++i)
            Require(HexValue(line.substr(6 + 3 * i, 2)) == ByteAt(next++), "each byte is there");
    }
    const int end = file.base + file.size;
    Require(restless ? next <= end + kDriveBytes + 3 : next > end && next <= end + 3,
            "the byte behind the file is the last");
}

/// A document ends, unless its view is closed, says nothing but its one message, and keeps its
/// pointers within the line. Bit 4 of the flags is the reader's patience.
void fuzzers::wordwise(Bytes input) {
    const FileInput file = LoadFile(input);
    const Reader desktop((file.flags & 16U) != 0);
    Module1::gOffset = file.base;
    Module1::gSize = file.size;
    ImpatientSink view;
    try {
        WordWise::FormatDocument(view);
    } catch (const ImpatientSink::Closed&) {
        return;
    }
    Require(WordWise::state.view == nullptr, "the run is over");
}

} // namespace quoravel
