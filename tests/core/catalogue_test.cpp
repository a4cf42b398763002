#include "disc/catalogue.h"
#include "disc/listing.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

class Catalogue : public DiscTest {};

constexpr int kDrive1 = 204800;
constexpr int kInfo = 264; ///< information block of file 0

std::vector<std::string> ListedNames(const std::vector<ListRow>& rows) {
    std::vector<std::string> names;
    for (const ListRow& row : rows)
        names.push_back(row.FileName);
    return names;
}

TEST_F(Catalogue, FileNumbersRunOverBothCatalogues) {
    using Row = std::tuple<const char*, bool, int, int, int, int>;
    for (const auto& [what, watford, files, second, number, offset] :
         {Row{"last of a full plain disc", false, 31, 0, 30, 248},
          Row{"last of a full Watford disc", true, 31, 31, 61, 512 + 8 + 240},
          Row{"first of the second, the first not full", true, 2, 1, 2, 520}}) {
        SCOPED_TRACE(what);
        DiscBuilder(1, watford).Fill(files, second);
        EXPECT_EQ(GetNumberOfDirEntries(1), files + second);
        EXPECT_EQ(GetDirOffset(1, number), kDrive1 + offset);
    }
}

TEST_F(Catalogue, MeantEighthsOfAFileAddUpOverBothCatalogues) {
    DiscBuilder(0, DiscBuilder::kWatford).Byte(261, 12).Byte(773, 12);
    EXPECT_EQ(GetNumberOfDirEntries(0), 3);
    EXPECT_EQ(GetDirOffset(0, 1), 520) << "everywhere else 12 eighths are one file";
    DiscBuilder(0).Byte(261, 12).Byte(773, 12);
    EXPECT_EQ(GetNumberOfDirEntries(0), 1) << "a plain disc has no second catalogue";
}

TEST_F(Catalogue, OnlyEightWholeMarkerBytesMakeAWatfordDisc) {
    DiscBuilder disc(1, DiscBuilder::kWatford);
    EXPECT_EQ(GetRootSector(1), 4);
    EXPECT_EQ(GetRootSector(0), 2);
    disc.Byte(519, 0xAB);
    EXPECT_EQ(GetRootSector(1), 2);
}

TEST_F(Catalogue, ASectorCountAboveWhatTheStoreHoldsIsCutTo800) {
    using Row = std::tuple<int, int, int>;
    for (const auto& [flags, low, sectors] :
         {Row{0x03, 0x21, 800}, Row{0xFF, 0xFF, 800}, Row{0x03, 0x1F, 799}, Row{0xFC, 0x00, 0}}) {
        DiscBuilder(1).Byte(262, flags).Byte(263, low);
        EXPECT_EQ(GetNumberOfSectors(1), sectors) << flags << " " << low;
        EXPECT_EQ(BootOption(1), flags >> 4 & 3);
    }
}

TEST_F(Catalogue, TheCycleNumberCountsInDecimalAndMarksTheDiscAsChanged) {
    using Row = std::tuple<int, int>;
    for (const auto& [was, is] :
         {Row{0x00, 0x01}, Row{0x09, 0x10}, Row{0x99, 0x00}, Row{0xFF, 0x66}, Row{0x0F, 0x16}}) {
        DiscBuilder(1).Byte(260, was);
        Module1::gDirty = false;
        UpdateSequenceNumber(1);
        EXPECT_EQ(Module1::DiscImg.Byte(kDrive1 + 260), is) << was;
        EXPECT_TRUE(Module1::gDirty);
    }
}

// Each field has other high bits than its neighbours, so that no mask can slip.
TEST_F(Catalogue, AddressesReadAsHexWithFFForTwoSetHighBits) {
    using Row = std::tuple<Entry, const char*>;
    // Meant: a length from 196608 up reads as some 16 million.
    for (const auto& [entry, texts] :
         {Row{{"A", '$', false, 0x21900, 0x18023, 0x0FFFF, 0x31F}, "021900 018023 00FFFF 31F"},
          Row{{"A", '$', false, 0x31900, 0x20001, 0x12345, 0x0FF}, "FF1900 020001 012345 0FF"},
          Row{{"A", '$', false, 0x00000, 0x3802B, 0x2ABCD, 0x100}, "000000 FF802B 02ABCD 100"},
          Row{{.name = "A", .length = 0x30000}, "000000 000000 FF0000 000"}}) {
        DiscBuilder(0).File(entry);
        EXPECT_EQ(GetLoad(kInfo) + " " + GetExec(kInfo) + " " + GetSize(kInfo) + " " +
                      GetSector(kInfo),
                  texts);
    }
}

TEST_F(Catalogue, ATitleEndsAtItsFirstNulAndLosesBlanksAndTopBits) {
    using Row = std::tuple<std::string, const char*>;
    for (const auto& [bytes, title] :
         {Row{"TWELVE CHARS"s, "TWELVE CHARS"}, Row{"  MY DISC"s, "MY DISC"},
          Row{"\xC1\xE2\x80Z"s, "Ab"}, Row{"\0ABC"s, ""}, Row{"A \0   B"s, "A"}}) {
        DiscBuilder(1).Title(bytes);
        EXPECT_EQ(GetTitle(1), title) << bytes;
    }
}

TEST_F(Catalogue, ANewTitleIsTrimmedCutAndPaddedWithNuls) {
    using Row = std::tuple<std::string_view, std::string, std::string>;
    for (const auto& [typed, first, rest] :
         {Row{"  Games 1 ", "Games 1\0"s, "\0\0\0\0"s}, Row{"THIRTEEN CHAR", "THIRTEEN", " CHA"},
          Row{"~\x7F", "~\x7F\0\0\0\0\0\0"s, "\0\0\0\0"s}}) {
        SCOPED_TRACE(typed);
        DiscBuilder(1).Title("OLD TITLE OF").Byte(260, 0x41).Byte(261, 8);
        Module1::gDirty = false;
        SetTitle(1, typed);
        EXPECT_EQ(BlockText(kDrive1, 8), first);
        EXPECT_EQ(BlockText(kDrive1 + 256, 6), rest + "\x42\x08");
        EXPECT_TRUE(Module1::gDirty);
    }
    EXPECT_THAT(desktop.boxes, IsEmpty());
}

TEST_F(Catalogue, ARefusedTitleChangesNothing) {
    std::vector<std::pair<std::string, std::string>> rows{{" tab\there ", "tab\there"},
                                                          {"Caf\xE9", "Caf\xC3\xA9"}};
    for (const char c : "-.:*#$&@^\x1F\r"s)
        rows.emplace_back("A"s + c, "A"s + c);
    const auto before = BlockBytes();
    for (const auto& [typed, shown] : rows) {
        SetTitle(0, typed);
        EXPECT_THAT(desktop.TakeBoxTexts(),
                    ElementsAre("Title " + shown + " Contains Illegal Characters"));
    }
    EXPECT_EQ(BlockBytes(), before);
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(Catalogue, NamesAreFoundWhateverTheirCaseUpToANulDirectory) {
    DiscBuilder(1, DiscBuilder::kWatford)
        .File({.name = "HELLO"})
        .File({.name = "a b", .dir = 'x', .locked = true})
        .File({.name = "hello"})
        .SecondFile({.name = "\xC8IGH\xA0", .dir = 'B'})
        .SecondFile({.name = "B", .dir = '\0'})
        .SecondFile({.name = "C"});
    EXPECT_EQ(GetName(1, 1), "x.a b");
    EXPECT_EQ(GetName(1, 3), "B.HIGH") << "the top bit of each byte does not count";
    EXPECT_EQ(GetPos(1, "$.heLLo"), 0) << "the first match wins";
    EXPECT_EQ(GetPos(1, "X.A B"), 1);
    EXPECT_EQ(GetPos(1, "b.high"), 3);
    for (const std::string& none : {"HELLO"s, "\0.B"s, "$.C"s})
        EXPECT_EQ(GetPos(1, none), -1) << none;
    EXPECT_EQ(GetPos(0, "$.HELLO"), -1) << "nor on the other drive";
}

TEST_F(Catalogue, AListIsSortedByNamesWithoutRegardToCase) {
    DiscBuilder(1).File({.name = "Zed"}).File({.name = "abc", .dir = 'B'}).File({.name = "ZED"});
    EXPECT_THAT(ListedNames(ListFiles(1)), ElementsAre("$.Zed", "B.abc", "$.ZED"));
    EXPECT_THAT(ListedNames(SortedListFiles(1)), ElementsAre("$.Zed", "$.ZED", "B.abc"));
}

TEST_F(Catalogue, AnEntryThatStartsWithNulOrAReturnEndsTheList) {
    for (const auto& end : {"\0BC"s, "\rBC"s, "\x80XY"s}) {
        DiscBuilder(0).File({.name = ""}).File({.name = end}).File({.name = "C"});
        EXPECT_THAT(ListedNames(ListFiles(0)), ElementsAre("$.")) << "seven spaces are a name";
    }
}

TEST_F(Catalogue, MeantARowCutAtAReturnIsNotFoundByItsName) {
    DiscBuilder(0).File({.name = " AB\rCD"});
    EXPECT_THAT(ListedNames(ListFiles(0)), ElementsAre("$.AB"));
    EXPECT_EQ(GetPos(0, "$.AB"), -1);
}

} // namespace
} // namespace quoravel
