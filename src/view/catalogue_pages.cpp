#include "view/catalogue_pages.h"

#include "disc/catalogue.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quoravel {

namespace {

constexpr std::array<std::string_view, 4> kOptionNames{"Off ", "Load", "Run ", "Exec"};
constexpr std::size_t kHeaderColumn = 19;
constexpr std::size_t kNameWidth = 9;
constexpr std::size_t kEXLine = 45; // with its end
constexpr std::string_view kBreak = "\r";
constexpr std::string_view kGap = "  ";

using Step = void (*)();

/// A row of a page. One that the listing ended before stays as it is made here.
struct PageRow {
    std::string_view text;   ///< of *CAT the name, of *EX the whole line
    std::string_view key;    ///< sorted by: the text in capitals
    std::uint64_t start = 0; ///< the first bytes of the key, as a number that sorts like them
    char attr = ' ';

    [[nodiscard]] bool SortsBefore(const PageRow& other) const {
        return start != other.start ? start < other.start : key < other.key;
    }
};

/// The rows of a page, one for each file that the disc counts, and the bytes that they look at.
struct Page {
    std::string texts;
    std::vector<PageRow> rows;
};

/// The first eight bytes of `key`; a shorter one is as if zeros followed.
std::uint64_t StartOf(std::string_view key) {
    std::uint64_t start = 0;
    for (std::size_t i = 0; i < sizeof start; ++i)
        start = start << 8U | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
    return start;
}

std::string Padded(std::string_view text, std::size_t width) {
    std::string padded(text.substr(0, width));
    padded.resize(width, ' ');
    return padded;
}

/// Blanks in place of "$." bring the files of $ to the front.
void AddCatText(const ListRow& file, std::string& texts) {
    if (file.FileName.front() == '$')
        texts.append(kGap).append(file.FileName, 2);
    else
        texts += file.FileName;
}

void AddEXText(const ListRow& file, std::string& texts) {
    const std::size_t end_of_name = texts.size() + kNameWidth;
    texts.append(file.FileName, 0, kNameWidth).resize(end_of_name, ' ');
    for (const std::string* cell : {&file.Attr, &file.Load, &file.Exec, &file.Size, &file.Sector})
        texts.append(kGap).append(*cell);
}

/// The rows of a page in catalogue order; `add_text` adds that of a file, up to kEXLine bytes.
/// Those after the end of the listing stay empty.
Page ReadRows(void (*add_text)(const ListRow&, std::string&), Step step) {
    Page page;
    page.rows.resize(static_cast<std::size_t>(GetNumberOfDirEntries(Module1::cur_drive)));
    page.texts.reserve(2 * kEXLine * (page.rows.size() + 1)); // a text and its key each
    for (int i = 0; i < std::ssize(page.rows); ++i) {
        const auto file = ListFile(GetDirOffset(Module1::cur_drive, i));
        if (!file)
            break;
        PageRow& row = page.rows[static_cast<std::size_t>(i)];
        const std::size_t text = page.texts.size();
        add_text(*file, page.texts); // there is room, so none of the texts moves
        row.text = std::string_view(page.texts).substr(text);
        const std::size_t key = page.texts.size();
        page.texts += UpperCase(row.text);
        row.key = std::string_view(page.texts).substr(key);
        row.start = StartOf(row.key);
        row.attr = file->Attr.front();
        step();
    }
    return page;
}

/// Sorts by the keys. Meant: an exchange can carry one of two equal keys past the other, where a
/// stable sort would keep their order.
void ExchangeSort(std::vector<PageRow>& rows, Step step) {
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        for (std::size_t j = i + 1; j < rows.size(); ++j) {
            if (rows[j].SortsBefore(rows[i]))
                std::swap(rows[i], rows[j]);
            step();
        }
        step();
    }
}

bool HaveSameKey(const PageRow& one, const PageRow& other) {
    return one.key == other.key;
}

/// What ExchangeSort gives, and at once where no two keys are equal, as those have one order only.
void Sort(std::vector<PageRow>& rows, Step step) {
    std::vector<PageRow> sorted = rows;
    std::ranges::sort(sorted, [](const auto& a, const auto& b) { return a.SortsBefore(b); });
    if (std::ranges::adjacent_find(sorted, HaveSameKey) == sorted.end())
        rows = std::move(sorted);
    else
        ExchangeSort(rows, step);
}

/// The first character of a row, or nothing.
std::string_view FirstOf(const PageRow& row) {
    return row.text.substr(0, 1);
}

std::string CatField(const PageRow& row) {
    return "  " + Padded(row.text, kNameWidth) + "  " + row.attr + "      ";
}

/// The files of *CAT in two columns.
void PrintFields(const std::vector<PageRow>& rows, ViewSink& sink) {
    std::string_view previous;
    bool left_column = true;
    bool closed = false; // the line of the last field has had its end
    for (const PageRow& row : rows) {
        if (FirstOf(row) != previous && previous == " ") {
            if (!closed)
                sink.ShowData(kBreak);
            sink.ShowData(kBreak);
            left_column = true;
        }
        previous = FirstOf(row);
        sink.ShowData(CatField(row));
        closed = !left_column;
        if (closed)
            sink.ShowData(kBreak);
        left_column = !left_column;
        Yield();
    }
    if (!closed)
        sink.ShowData(kBreak);
    sink.ShowData(kBreak);
}

} // namespace

void ListHeader(int start, ViewSink& sink) {
    const std::string drive = std::to_string(Module1::cur_drive);
    const unsigned option = ByteAt(start + kFlagsByte) / 16 & 3U;
    sink.ShowData(GetTitle(Module1::cur_drive) + " (" + std::to_string(CycleNumber(start)) +
                  ") FM\r");
    sink.ShowData("Drive " + drive + "             Option " + std::to_string(option) + " (" +
                  std::string(kOptionNames[option]) + ")\r");
    sink.ShowData(Padded("Dir. :" + drive + ".$", kHeaderColumn) + " Lib. :" + drive + ".$\r\r");
}

void ListCat(ViewSink& sink) {
    ListHeader(GetStartSectorOfDrive(Module1::cur_drive), sink);
    Page page = ReadRows(AddCatText, Yield);
    Sort(page.rows, Yield);
    PrintFields(page.rows, sink);
}

void ListEX(ViewSink& sink, void (*step)()) {
    Page page = ReadRows(AddEXText, step);
    Sort(page.rows, step);
    std::string line;
    for (const PageRow& row : page.rows) {
        line.assign(row.text).append(kBreak);
        sink.ShowData(line);
        step();
    }
}

void ListMap(ViewSink& sink) {
    sink.ShowData("Address : Length\r");
    const auto drive = [] { return static_cast<std::size_t>(Module1::cur_drive); };
    const auto digits = [](int number) { return Hex(static_cast<std::uint32_t>(number), 6); };
    for (int i = 0; i < Module1::FreeSpaceNum[drive()]; ++i) {
        const auto region = static_cast<std::size_t>(i);
        sink.ShowData(digits(Module1::FreeSpaceMap[drive()][region]) + "  : " +
                      digits(Module1::FreeSpaceLen[drive()][region]) + "\r");
        Yield();
    }
}

} // namespace quoravel
