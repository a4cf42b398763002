// The program's own link code against Tavrilo on an emulated micro, on one clock.

#include "disc/module1.h"
#include "emulated_micro.h"
#include "link/bootstrap.h"
#include "link/star_command.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <gmock/gmock.h>

namespace quoravel {

namespace {

using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

/// Tracks that pack well and badly, each with a byte that no other track has.
Bytes Image(std::size_t tracks) {
    Bytes image(tracks * 2560);
    unsigned state = 1;
    for (std::size_t i = 0; i < image.size(); ++i) {
        state = state * 1103515245 + 12345;
        const bool noise = i / 2560 % 3 == 1 && i % 2560 > 1900;
        image[i] = static_cast<std::uint8_t>(noise ? state >> 16 : i % 2560 == 5 ? i / 2560 : 0);
    }
    const std::size_t sectors = tracks > 80 ? 800 : tracks * 10;
    image[0x106] = static_cast<std::uint8_t>(sectors >> 8);
    image[0x107] = static_cast<std::uint8_t>(sectors);
    return image;
}

class BeebTest : public LinkTest {
  protected:
    explicit BeebTest(std::vector<std::string> options) : beeb(std::move(options)) {
        port.on_write = [this](std::string_view bytes) {
            if (const int rate = port.settings.back(); rate != std::exchange(rate_, rate))
                beeb.Ask("rate " + std::to_string(rate));
            beeb.Send(bytes);
        };
        desktop.on_pump = [this, pump = desktop.on_pump] {
            port.received += beeb.RunTo(desktop.now);
            pump();
        };
    }

    void Insert(int drive, const std::filesystem::path& what) {
        beeb.Ask("insert " + std::to_string(drive) + ' ' + what.string());
    }

    /// What a drive would read of its floppy; every sector must be good.
    Bytes Dump(int drive, const std::string& name, int tracks) {
        const auto file = folder.path() / name;
        EXPECT_EQ(beeb.Ask("dump " + std::to_string(drive) + ' ' + file.string() + ' ' +
                           std::to_string(tracks)),
                  "[]");
        return BytesOf(file);
    }

    /// Nothing was lost on the line, and nobody complained.
    void ExpectClean() {
        EXPECT_THAT(beeb.Ask("counters"), HasSubstr("\"overruns\":0,\"unheard\":0,\"garbled\":0"));
        EXPECT_TRUE(desktop.boxes.empty());
    }

    EmulatedMicro beeb;

  private:
    int rate_ = 0;
};

class TypedIn : public BeebTest, protected BootstrapWindow {
  protected:
    TypedIn() : BeebTest({}) {}

    void SetProgress(int percent) override { progress.push_back(percent); }

    void DimCancel() override {}

    std::vector<int> progress;
};

TEST_F(TypedIn, TheProgramIsSavedRunAndAnswers) {
    Insert(0, "formatted40");
    beeb.Ask("break");
    beeb.Type("*BASIC\r*FX 7, 4\r*FX 8, 4\r*FX 2, 1\r");
    desktop.program_folder = COMPANION;
    ASSERT_TRUE(SendBasicProgram(*this));
    EXPECT_EQ(progress.back(), 100);
    EXPECT_LT(Milliseconds(), 100000);

    beeb.Type("SAVE \"TAVRILO\"\r");
    beeb.Ask("run 3000");
    beeb.Type("RUN\r");
    beeb.Ask("run 5000");
    EXPECT_THAT(beeb.Screen(), HasSubstr("19200 baud"));

    std::string output;
    EXPECT_TRUE(SendStarCommand("CAT", [&](std::string_view text) {
        output += text;
        return true;
    }));
    EXPECT_THAT(output, HasSubstr("TAVRILO"));
    ExpectClean();
}

class Running : public BeebTest, public testing::WithParamInterface<const char*> {
  protected:
    Running() : BeebTest({"--tavrilo", "--model", GetParam()}) {}
};

INSTANTIATE_TEST_SUITE_P(Micros, Running, testing::Values("B-DFS1.2", "B1770"),
                         [](const auto& micro) {
                             return micro.param == std::string("B1770") ? "Chip1770" : "Chip8271";
                         });

TEST_P(Running, OneSideGoesInAndOut) {
    const Bytes image = Image(40);
    Insert(0, folder.File("source.ssd", image));
    Insert(1, "unformatted");
    std::filesystem::path file;
    desktop.files = {folder.path() / "got.ssd", folder.path() / "got.ssd"};
    ASSERT_TRUE(RX_SSD(0, desk, file));
    EXPECT_EQ(BytesOf(file), image);

    TX_DISC(1, true, desk);
    EXPECT_EQ(Dump(1, "written.ssd", 40), image);
    ExpectClean();
}

TEST_P(Running, BothSidesGoInAndOut) {
    const Bytes image = Image(160);
    Insert(1, folder.File("source.dsd", image));
    Insert(0, "formatted80");
    std::filesystem::path file;
    desktop.files = {folder.path() / "got.dsd", folder.path() / "got.dsd"};
    ASSERT_TRUE(RX_DSD(1, desk, file));
    EXPECT_EQ(BytesOf(file), image);

    TX_DISC(0, false, desk);
    EXPECT_EQ(Dump(0, "written.dsd", 80), image);
    ExpectClean();
}

TEST_P(Running, ACancelledTransferIsFollowedByAnother) {
    const Bytes image = Image(40);
    const auto source = folder.File("source.ssd", image);
    Insert(0, source);
    Insert(1, "formatted40");
    std::filesystem::path file;
    desktop.files = {folder.path() / "part.ssd", source, folder.path() / "whole.ssd"};
    Later(6000, [] { Cancel(); });
    EXPECT_FALSE(RX_SSD(0, desk, file));
    Later(7500, [] { Cancel(); });
    TX_DISC(1, true, desk);
    EXPECT_THAT(beeb.Screen(), HasSubstr("Given up by the host"));

    ASSERT_TRUE(RX_SSD(0, desk, file));
    EXPECT_EQ(BytesOf(file), image);
    ExpectClean();
}

TEST_P(Running, StarCommandsGiveOutputOrAnError) {
    Insert(0, "formatted40");
    std::string output;
    const auto show = [&](std::string_view text) {
        output += text;
        return true;
    };
    EXPECT_TRUE(SendStarCommand("HELP", show));
    EXPECT_THAT(output, HasSubstr("\r\n"));
    EXPECT_TRUE(SendStarCommand("FX 15", show));
    EXPECT_TRUE(desktop.boxes.empty());
    EXPECT_FALSE(SendStarCommand("NOSUCH", show));
    EXPECT_EQ(desktop.boxes.back(), (ScriptedHost::Box{"Bad command", "* Command Error"}));
}

} // namespace

} // namespace quoravel
