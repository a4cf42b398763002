// Whole discs, star commands and the typing of the program, on every micro that Tavrilo is for.

#include "beeb_test.h"
#include "disc/catalogue.h"
#include "disc/image_files.h"
#include "disc/module1.h"
#include "link/bootstrap.h"
#include "link/replies.h"
#include "link/transfer.h"
#include "platform/text.h"
#include "support/disc_builder.h"

#include <algorithm>

namespace quoravel {

namespace {

using testing::MatchesRegex;
using testing::Values;

class TypedIn : public BeebTest,
                public testing::WithParamInterface<const char*>,
                protected BootstrapWindow {
  protected:
    TypedIn() : BeebTest({"--model", GetParam()}) {}

    void SetProgress(int percent) override { progress.push_back(percent); }

    void DimCancel() override {}

    std::vector<int> progress;
};

INSTANTIATE_TEST_SUITE_P(Micros, TypedIn, Values("B-DFS1.2", "B-DFS0.9", "B1770", "Master"));

TEST_P(TypedIn, TheProgramIsSavedRunAndAnswers) {
    Insert(0, "formatted40");
    beeb.Ask("break");
    Type(R"(*BASIC\r*FX 7,4\r*FX 8,4\r*FX 2,1\r)");
    static_cast<void>(Say("", 100));
    desktop.program_folder = COMPANION;
    ASSERT_TRUE(SendBasicProgram(*this));
    EXPECT_EQ(progress.back(), 100);
    EXPECT_LT(Milliseconds(), 100000);

    Type(R"(SAVE \"TAVRILO\"\r)");
    static_cast<void>(Say("", 4000));
    Type(R"(RUN\r)");
    static_cast<void>(Say("", 8000));
    EXPECT_THAT(Screen(), HasSubstr("19200 baud"));
    EXPECT_THAT(Star("CAT"), HasSubstr("TAVRILO"));
    ExpectClean();

    Type(R"(\u001b)");
    static_cast<void>(Say("", 500));
    EXPECT_THAT(Screen(), HasSubstr(R"("Ended",">")"));
}

class Transfers : public Running {};

INSTANTIATE_TEST_SUITE_P(Micros, Transfers, Values("B-DFS1.2", "B1770", "Master"));

TEST_P(Transfers, BothSidesGoInAndOutAndOntoABlankFloppy) {
    const Bytes image = MixedImage(160);
    Insert(1, folder.File("source.dsd", image));
    Insert(0, "unformatted");
    std::filesystem::path file;
    desktop.files = {folder.path() / "got.dsd", folder.path() / "got.dsd"};
    ASSERT_TRUE(RX_DSD(1, desk, file));
    EXPECT_EQ(BytesOf(file), image);

    TX_DISC(0, false, desk);
    EXPECT_EQ(Dump(0, "written.dsd", 80), image);
    EXPECT_THAT(Screen(), HasSubstr("Formatting from track 0"));
    ExpectClean();
}

TEST_P(Transfers, TheSecondSideAloneIsDrive2) {
    const Bytes image = MixedImage(40);
    Insert(0, "formatted40");
    SendSide(2, image);
    EXPECT_EQ(ReceiveSide(2), image);
    const Bytes both = Dump(0, "both.dsd", 40);
    EXPECT_EQ(Tracks(both, 11, 1), Tracks(image, 5, 1));
    EXPECT_EQ(Tracks(both, 10, 1), Bytes(kTrack));
    ExpectClean();
}

TEST_P(Transfers, NoByteIsLostWhenTheLineBringsThemInBursts) {
    const Bytes image = Image(Noise(3 * kTrack), 40);
    for (const std::size_t burst : {2U, 16U, 4480U}) {
        Insert(1, "formatted40");
        at_once = burst;
        said.clear();
        SendSide(1, image);
        EXPECT_EQ(Dump(1, "written.ssd", 3), image) << burst;
        EXPECT_EQ(said["g1\r2\r"], 1) << burst;
        ExpectClean();
    }
}

class StarCommands : public Running {
  protected:
    /// A floppy with texts of these lengths, and with two programs that fail.
    void InsertFiles(const std::vector<std::size_t>& lengths);
};

INSTANTIATE_TEST_SUITE_P(Micros, StarCommands, Values("B-DFS1.2"));

std::string Text(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += i % 38 == 37 ? '\r' : "abcdefghijklmnop"[i % 16];
    return text;
}

/// Machine code for &6C00 that writes `count` times "A" and then fails with "Oops".
std::string FailingProgram(unsigned count) {
    using namespace std::string_literals;
    return "\xA2"s + static_cast<char>(count) + "\xA0"s + static_cast<char>(count / 256 + 1) +
           "\xE0\0\xD0\3\x88\xF0\x09"s          // CPX #0: BNE +3: DEY: BEQ done
           "\xCA\xA9\x41\x20\xEE\xFF\x4C\4\x6C" // DEX: write "A": again
           "\0\x4DOops\0"s;                     // BRK
}

void StarCommands::InsertFiles(const std::vector<std::size_t>& lengths) {
    DiscBuilder disc;
    std::vector<std::pair<std::string, std::string>> files;
    for (const std::size_t length : lengths)
        files.emplace_back("T" + std::to_string(length), Text(length));
    files.emplace_back("FAIL10", FailingProgram(10));
    files.emplace_back("FAIL5K", FailingProgram(5000));
    int sector = 200;
    for (const auto& [name, bytes] : files) {
        const auto length = static_cast<std::uint32_t>(bytes.size());
        sector -= SectorsOf(length);
        disc.File(
                {.name = name, .load = 0x6C00, .exec = 0x6C00, .length = length, .sector = sector})
            .Data(sector, bytes);
    }
    const auto file = folder.path() / "files.ssd";
    EXPECT_FALSE(SaveDisc_SSD(file));
    Insert(0, file);
    Star("CAT"); // makes the DFS see that the floppy is another
}

TEST_P(StarCommands, OutputArrivesWholeAroundTheEndsOfPiecesAndBuffers) {
    const std::vector<std::size_t> lengths{1, 2, 1002, 1003, 1004, 1024, 2047, 4095, 4096, 5100};
    InsertFiles(lengths);
    for (const std::size_t length : lengths) {
        const std::string output = Star("TYPE T" + std::to_string(length));
        EXPECT_EQ(output.substr(0, output.find_last_not_of("\r\n") + 1),
                  AddLineFeeds(Text(length)));
    }
    EXPECT_THAT(Star("INFO FAIL10"),
                MatchesRegex("\\$\\.FAIL10 +006C00 006C00 00001B [0-9A-F]{3} *\r\n"));
    EXPECT_EQ(Star("FX 15"), "");
}

TEST_P(StarCommands, AnErrorIsToldAndWhatCannotBeHeldBackGoesBeforeIt) {
    InsertFiles({});
    EXPECT_EQ(Star("NOSUCH"), "Bad command");
    EXPECT_EQ(Star("ROMS " + std::string(300, 'X')), "Line too long");
    EXPECT_EQ(Star("FAIL10"), "Oops");
    EXPECT_EQ(Star("FAIL5K"), std::string(5000, 'A') + "\r\nOops");
    EXPECT_EQ(Star("FX 15"), "");
}

TEST_P(StarCommands, TheErrorIsGivenForTheWholeAcknowledgeAloneAndOnlyAfterAnError) {
    EXPECT_EQ(Say("**NOSUCH\r", 3000), std::string(kErrorAcknowledge) + '\r');
    EXPECT_EQ(Say("-----BBCerror9-----PC-----", 3000), "");
    EXPECT_EQ(Say(kErrorAcknowledge, 3000), "Bad command\n\r");
    EXPECT_EQ(Say("**FX 15\r", 3000), std::string(kSuccessText) + '\r');
    EXPECT_EQ(Say(kErrorAcknowledge, 3000), "");
}

} // namespace

} // namespace quoravel
