#include "disc/module1.h"
#include "link/bootstrap.h"
#include "link/link_use.h"
#include "link/ring.h"
#include "link/star_command.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <tuple>

namespace quoravel {

namespace {

using Boxes = std::vector<ScriptedHost::Box>;
using Strings = std::vector<std::string>;

class BootstrapTest : public LinkTest, protected BootstrapWindow {
  protected:
    // The micro types what it gets; its companion does not run yet.
    BootstrapTest() {
        port.on_write = [](std::string_view) {};
    }

    void SetProgress(int percent) override { progress.push_back(percent); }

    void DimCancel() override { dimmed_at = port.Sent().size(); }

    /// Sends a program and gives what the micro got before the closing comments.
    std::string SendProgram(std::string_view text) {
        folder.File("tavrilo.bas", text);
        EXPECT_TRUE(SendBasicProgram(*this));
        return port.Sent().substr(0, dimmed_at);
    }

    std::vector<int> progress;
    std::size_t dimmed_at = 0;
};

const std::string kStars = "REM ******************************\r";

TEST_F(BootstrapTest, AProgramIsTypedByteByByteAndThePortLeftAt19200) {
    Send_Char("x"); // opens it
    port.log.clear();
    port.writes.clear();
    EXPECT_EQ(SendProgram("10CLS\n20\xE9\n"), "10CLS\r20\xE9\r");
    const std::string closing = "\r" + kStars +
                                "REM File Transfer Complete\r"
                                "REM Type SAVE \"TAVRILO\" to save file\r"
                                "REM Then RUN to start program\r" +
                                kStars + "*FX 2,0\r";
    EXPECT_EQ(port.Sent().substr(dimmed_at), closing);
    EXPECT_EQ(port.writes.size(), port.Sent().size());
    EXPECT_EQ(Milliseconds(), static_cast<int>(10 * port.writes.size()));
    EXPECT_EQ(progress, (std::vector<int>{0, 60, 100}));
    EXPECT_EQ(port.log.substr(0, 21), "close open 1200 1200 ");
    EXPECT_EQ(port.log.substr(port.log.size() - 16), "1200 close open ");
    EXPECT_EQ(port.settings, (std::vector<int>{19200, 1200, 19200}));
    EXPECT_TRUE(Module1::gSerialPortOpen);
    port.writes.clear();
    EXPECT_EQ(SendProgram("\na\nb\r\nc\rd"), "\ra\rb\rc\rd\r") << "every line end becomes a CR";
}

TEST_F(BootstrapTest, CancelBreaksTheLineOffAndFreesTheKeyboard) {
    Later(35, Cancel);
    EXPECT_EQ(SendProgram("10PRINT\n20PRINT\n"), "10PR");
    EXPECT_EQ(port.Sent().substr(dimmed_at),
              "\r" + kStars + "REM File Transfer Aborted\r" + kStars + "*FX 2,0\r");
    EXPECT_EQ(progress, std::vector<int>{0});
    EXPECT_FALSE(Module1::TXAbort);
}

TEST_F(BootstrapTest, WhatIsMissingIsTold) {
    EXPECT_TRUE(SendBasicProgram(*this));
    EXPECT_EQ(port.log, "open close open ");
    EXPECT_EQ(port.settings.back(), 19200);
    port.opens = false;
    EXPECT_FALSE(SendBasicProgram(*this));
    EXPECT_EQ(port.settings.back(), 1200); // Meant: it stays so until the next try.
    EXPECT_FALSE(Module1::gSerialPortOpen);
    EXPECT_EQ(desktop.TakeBoxTexts(),
              (Strings{"tavrilo.bas not found at " + (folder.path() / "tavrilo.bas").string(),
                       "Error Opening Serial Port"}));
}

class StarCommandTest : public LinkTest {
  protected:
    bool Command(std::string_view text) {
        shown.clear();
        return SendStarCommand(text, [this](std::string_view output) {
            shown += output;
            return true;
        });
    }

    std::string shown;
};

TEST_F(StarCommandTest, TheOutputIsShownWithoutTheSuccessLine) {
    micro.outputs["*CAT"] = "\rDrive 0\rOption 2\r";
    EXPECT_TRUE(Command("CAT"));
    EXPECT_EQ(shown, "\r\nDrive 0\r\nOption 2\r\n");
    EXPECT_TRUE(Command(""));
    EXPECT_EQ(shown, "");
    EXPECT_EQ(port.writes, (Strings{"*", "*CAT\r", "*", "*\r"}));
    EXPECT_EQ(micro.heard, (Strings{"*CAT", "*"}));
}

TEST_F(StarCommandTest, OutputComesInPieces) {
    using Pieces = std::vector<std::pair<int, std::string>>; // milliseconds after the command
    using Row = std::tuple<const char*, Pieces, std::string, int>;
    const std::string done = "-----BBC-----PC-----\r";
    const std::string more_than_a_kilobyte = std::string(1024, 'k') + "def";
    for (const auto& [what, pieces, expected, ends] :
         {Row{"1024 bytes", {{5, more_than_a_kilobyte + done}}, more_than_a_kilobyte, 205},
          Row{"a short first piece", {{5, "a"}, {900, "def" + done}}, "adef", 1100},
          Row{"a short later piece", {{5, "abc"}, {900, "d"}, {2000, done}}, "abc", 1100},
          Row{"no success line", {{5, "abc"}}, "abc", 10206},
          // Meant: it is looked for in each piece alone, and by exact letters.
          Row{"a split success line",
              {{5, "-----BBC---"}, {900, "--PC-----\r"}},
              "-----BBC-----PC-----\r\n",
              11101},
          Row{"small letters",
              {{5, "-----bbc-----pc-----\r"}},
              "-----bbc-----pc-----\r\n",
              10206}}) {
        SCOPED_TRACE(what);
        port.on_write = [this, arrive = pieces](std::string_view bytes) {
            if (bytes.ends_with('\r'))
                for (const auto& [milliseconds, text] : arrive)
                    Arrive(milliseconds, text);
        };
        const std::int64_t start = Milliseconds();
        EXPECT_TRUE(Command("X"));
        EXPECT_EQ(shown, expected);
        EXPECT_NEAR(static_cast<double>(Milliseconds() - start), ends, 2);
        Swallow_Rubbish();
    }
}

TEST_F(StarCommandTest, AFailureIsToldAndKeepsTheText) {
    using Row = std::tuple<const char*, const char*, const char*>;
    micro.errors["*X"] = "Bad \xE9 command\n";
    for (const auto& [to, answer, box] :
         {Row{"", "", "Bad \xC3\xA9 command"}, Row{"error?", "x\r", "Problem sending * Command"},
          Row{"*X", "", "Problem sending * Command"}}) {
        SCOPED_TRACE(testing::Message() << to << ": " << answer);
        Spoil(to, [bytes = answer](auto& reply) { reply.bytes = bytes; });
        EXPECT_FALSE(Command("X"));
        EXPECT_EQ(desktop.boxes, (Boxes{{box, "* Command Error"}}));
        EXPECT_EQ(shown, "");
        desktop.boxes.clear();
    }
}

TEST_F(BootstrapTest, TheEndOfTheProgramUnwindsEveryWaitAndFreesTheCable) {
    const auto image = folder.File("a.ssd", std::string(204800, 'x'));
    folder.File("tavrilo.bas", "10REM\n");
    std::filesystem::path file;
    using Row = std::tuple<const char*, std::function<void()>, int>; // quits after milliseconds
    for (const auto& [what, wait, quits] :
         {Row{"receive", [&] { static_cast<void>(RX_SSD(0, desk, file)); }, 15},
          Row{"send", [&] { TX_DISC(0, true, desk); }, 15},
          Row{"bootstrap", [&] { static_cast<void>(SendBasicProgram(*this)); }, 50},
          Row{"ten seconds",
              [] { static_cast<void>(SendStarCommand("X", [](auto) { return true; })); }, 9999},
          Row{"drain", [] { Swallow_Rubbish(); }, 1999}}) {
        SCOPED_TRACE(what);
        desktop.files = {image};
        Later(quits, [] { throw AppQuitting(); });
        const std::int64_t start = Milliseconds();
        const auto run = [&wait = wait] {
            const LinkUse use;
            EXPECT_FALSE(LinkUse()) << "one use at a time";
            wait();
        };
        EXPECT_THROW(run(), AppQuitting);
        EXPECT_EQ(Milliseconds() - start, quits);
        EXPECT_FALSE(timer.Enabled());
        EXPECT_TRUE(LinkUse());
    }
    EXPECT_EQ(desktop.TakeBoxTexts(), Strings(5, "A transfer is in progress"));
}

} // namespace

} // namespace quoravel
