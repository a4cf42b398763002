#include "support/link_window_test.h"

#include "disc/module1.h"
#include "link/serial.h"
#include "platform/qt/edit_field.h"

#include <QComboBox>
#include <QProgressBar>
#include <QPushButton>

#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

/// An image of some tracks of which each is another.
Bytes ImageOf(std::size_t tracks) {
    Bytes image(tracks * kTrackBytes);
    for (std::size_t i = 0; i < image.size(); i += 100)
        image[i] = static_cast<std::uint8_t>(i / 100 + i / kTrackBytes);
    return image;
}

std::string LabelOf(const QWidget& window, const char* name) {
    return Part<QLabel>(window, name).text().toStdString();
}

TEST_F(LinkWindowTest, WithoutAPortEveryCommandOfTheCableSaysSo) {
    ListPortsWith([] { return std::vector<PortInfo>(); });
    for (const char* item :
         {"TavriloSerialPort", "TavriloSendBasicProgram", "TavriloCli", "ReceiveSSDDrive3",
          "ReceiveDSDDrive1", "SendSSDDrive0", "SendDSDDrive0"}) {
        Choose(item);
        EXPECT_THAT(desktop.TakeBoxTexts(), ElementsAre("No Serial Ports Found On System")) << item;
    }
}

TEST_F(LinkWindowTest, TheChosenPortIsTheOneThatOpens) {
    ListPortsWith([second = cable.path()] {
        return std::vector<PortInfo>{{QStringLiteral("ttyUSB0 - Adapter"), QStringLiteral("/nope")},
                                     {QStringLiteral("ttyUSB1"), second}};
    });
    for (int opened = 0; opened < 2; ++opened) // Meant: it opens with the first port each time
        InDialog("TavriloSerialPort", [](QWidget& dialog) {
            auto& popSP = Part<QComboBox>(dialog, "popSP");
            EXPECT_EQ(popSP.currentText(), QStringLiteral("ttyUSB0 - Adapter"));
            EXPECT_EQ(popSP.count(), 2);
            popSP.setCurrentIndex(1);
            Press(dialog, "cmdOK");
        });
    desktop.files = {folder.File("small.ssd", std::string(2560, 'x'))};
    Choose("SendSSDDrive0");
    EXPECT_THAT(micro.heard, Contains("*DISC"));
}

TEST_F(LinkWindowTest, ADiscGoesOutAndItsWindowShowsHowFar) {
    const Bytes image = ImageOf(3);
    std::vector<std::string> shown;
    When([this] { return std::ranges::count(micro.heard, "track") == 2; },
         [&] {
             const QWidget& rx = *Find("frmRX");
             shown = {rx.windowTitle().toStdString(), LabelOf(rx, "lblTtl"), LabelOf(rx, "lblRX"),
                      Part<QProgressBar>(rx, "pb").text().toStdString()};
             for (const char* item :
                  {"ReceiveSSDDrive0", "SendDSDDrive1", "TavriloCli", "TavriloSendBasicProgram"})
                 Choose(item);
         });
    desktop.files = {folder.File("out.dsd", image)};
    folder.File("xfer.wav", "");
    Choose("SendDSDDrive1");
    EXPECT_THAT(shown, ElementsAre("Send Disc Image", "Send In Progress",
                                   "Sending Track 0 of Drive 3", "33%"));
    EXPECT_THAT(desktop.TakeBoxTexts(),
                testing::AllOf(testing::SizeIs(4), testing::Each("A transfer is in progress")));
    EXPECT_TRUE(std::ranges::equal(std::span(micro.discs[3]).first(kTrackBytes),
                                   std::span(image).subspan(kTrackBytes, kTrackBytes)));
    EXPECT_TRUE(std::ranges::equal(std::span(micro.discs[1]).subspan(kTrackBytes, kTrackBytes),
                                   std::span(image).subspan(2 * kTrackBytes)));
    EXPECT_EQ(Find("frmRX"), nullptr);
    EXPECT_THAT(desktop.sounds, ElementsAre(folder.path() / "xfer.wav"));
}

TEST_F(LinkWindowTest, AReceivedDiscIsOpenedUnlessItWasCancelled) {
    micro.discs[0] = Bytes(102400);
    micro.discs[0][0x107] = 0x90; // 400 sectors
    micro.discs[0][0x106] = 1;
    micro.discs[2] = ImageOf(80);
    const fs::path file = folder.path() / "in.ssd";
    const fs::path part = folder.path() / "part.ssd";
    desktop.files = {file, part};
    Choose("ReceiveSSDDrive0");
    EXPECT_EQ(BytesOf(file), micro.discs[0]);
    EXPECT_EQ(Title(), "Quoravel - in.ssd");

    When([this] { return std::ranges::count(micro.heard, "G 2 1") == 1; },
         [] { Press(*Find("frmRX"), "cmdCancel"); });
    Choose("ReceiveSSDDrive2");
    EXPECT_EQ(fs::file_size(part) % kTrackBytes, 0U);
    EXPECT_EQ(Find("frmRX"), nullptr);
    EXPECT_TRUE(Module1::TXAbort);
    EXPECT_EQ(Title(), "Quoravel - in.ssd");
}

TEST_F(LinkWindowTest, ClosingTheProgramInATransferTellsTheMicroAndUnwinds) {
    desktop.files = {folder.File("out.ssd", ImageOf(80))};
    When([this] { return std::ranges::count(micro.heard, "g 0 1") == 1; },
         [this] { window->close(); });
    Choose("SendSSDDrive0");
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_FALSE(Module1::gSerialPortOpen);
    EXPECT_EQ(Find("frmRX"), nullptr);
    desktop.quitting = false;
    QTest::qWait(20);
    EXPECT_EQ(cable.received.back(), 'Q');
}

TEST_F(LinkWindowTest, TheConsoleShowsWhatACommandPrintsAndEndsAtOnce) {
    micro.outputs["*CAT"] = "DEMO (04)\rDrive 0\r";
    micro.errors["*NONE"] = "Bad command\r";
    When([] { return Find("frmCLI") != nullptr; },
         [this] {
             auto& console = *Find("frmCLI");
             auto& txtCmd = Part<QLineEdit>(console, "txtCmd");
             const auto& rtbCLI = Part<EditField>(console, "rtbCLI");
             EXPECT_EQ(console.focusWidget(), &txtCmd);
             QTest::keyClicks(&txtCmd, QStringLiteral("CAT\r"));
             EXPECT_EQ(rtbCLI.Text(), "DEMO (04)\r\nDrive 0\r\n");
             EXPECT_EQ(txtCmd.text(), QString());
             QTest::keyClicks(&txtCmd, QStringLiteral("NONE\r"));
             EXPECT_EQ(txtCmd.text(), QStringLiteral("NONE"));
             EXPECT_TRUE(std::exchange(desktop.boxes, {}) ==
                         std::vector<ScriptedHost::Box>({{"Bad command", "* Command Error"}}));
             desktop.files = {folder.path() / "session.txt"};
             Choose(console, "FileSaveFile");
             micro.spoil = [](CompanionDouble::Reply& reply) { reply.bytes.clear(); };
             When([this] { return micro.heard.back() == "*LATE"; },
                  [&console] { console.close(); });
             Type(console, "txtCmd", QStringLiteral("LATE\r"));
         });
    const auto start = std::chrono::steady_clock::now();
    Choose("TavriloCli");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(Find("frmCLI"), nullptr);
    EXPECT_THAT(desktop.TakeBoxTexts(), testing::IsEmpty());
    EXPECT_EQ(desktop.proposals.back(), "");
    EXPECT_EQ(TextOf(folder.path() / "session.txt"), "DEMO (04)\r\nDrive 0\r\n\n");
}

TEST_F(LinkWindowTest, TheTraceShowsTheConversationAndIgnoresTyping) {
    const auto is_enabled = [this](const char* item) {
        Deeds deeds;
        AddDeeds(*window, deeds);
        return deeds.contains(item);
    };
    Choose("TraceWindow");
    EXPECT_FALSE(is_enabled("frmMain/TraceWindow"));
    const fs::path log = folder.path() / "trace.log";
    desktop.files = {log, folder.File("out.ssd", ImageOf(1))};
    Choose("TraceToFile");
    EXPECT_FALSE(is_enabled("frmMain/TraceToFile"));
    Choose("SendSSDDrive0");
    auto& text = Part<EditField>(*Find("frmTrace"), "rtbTrace");
    EXPECT_THAT(text.Text(), HasSubstr("TX: 0000 : 2A 44 49 53 43 0D "));
    EXPECT_THAT(text.Text(), HasSubstr("Sending Track 0 of Drive 0\r\n"));
    const std::string before = text.Text();
    QTest::keyClicks(&text, QStringLiteral("x"));
    EXPECT_EQ(text.Text(), before);
    text.window()->close();
    EXPECT_TRUE(is_enabled("frmMain/TraceWindow"));
    EXPECT_TRUE(is_enabled("frmMain/TraceToFile"));
    EXPECT_GT(fs::file_size(log), before.size());
}

TEST_F(LinkWindowTest, TheTraceTellsWhyAPortDoesNotOpen) {
    PlugInCable(QStringLiteral("/nope/ttyUSB0"));
    Choose("TraceWindow");
    const auto& text = Part<EditField>(*Find("frmTrace"), "rtbTrace");
    When([] { return Find("frmCLI") != nullptr; },
         [] { QTest::keyClick(&Part<QLineEdit>(*Find("frmCLI"), "txtCmd"), Qt::Key_Return); });
    When([&text] { return text.Text().find("No such file") != std::string::npos; },
         [] { Find("frmCLI")->close(); });
    Choose("TavriloCli");
    EXPECT_THAT(text.Text(), HasSubstr("ttyUSB0: No such file or directory\r\n"));
}

TEST_F(LinkWindowTest, TheBootstrapTypesTheProgramAndCancelStopsIt) {
    folder.File("tavrilo.bas", "10 REM hello\n20 PRINT\n");
    const auto go = [](QWidget& dialog) {
        EXPECT_EQ(LabelOf(dialog, "StaticText3"), "<BREAK>");
        Press(dialog, "cmdOK");
    };
    InDialog("TavriloSendBasicProgram", go);
    EXPECT_THAT(cable.received, testing::StartsWith("10 REM hello\r20 PRINT\r\rREM ***"));
    EXPECT_THAT(cable.received, testing::EndsWith("***\r*FX 2,0\r"));
    EXPECT_TRUE(Module1::gSerialPortOpen);

    cable.received.clear();
    When([this] { return cable.received.size() == 4; },
         [] { Press(*Find("frmFirst"), "cmdCancel"); });
    InDialog("TavriloSendBasicProgram", go);
    EXPECT_THAT(cable.received, HasSubstr("\rREM File Transfer Aborted\r"));
    EXPECT_THAT(cable.received, testing::Not(HasSubstr("20 PRINT")));
}

} // namespace
} // namespace quoravel
