#include "support/link_window_test.h"

#include "disc/module1.h"
#include "link/serial.h"
#include "platform/qt/edit_field.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

/// An image of some tracks of which each is another.
Bytes ImageOf(std::size_t tracks) {
    Bytes image(tracks * kTrackBytes);
    for (std::size_t i = 0; i < image.size(); i += 100)
        image[i] = static_cast<std::uint8_t>(i / 100 + i / kTrackBytes);
    return image;
}

void Press(QWidget& window, const char* button) {
    auto* found = window.findChild<QPushButton*>(QLatin1StringView(button));
    ASSERT_NE(found, nullptr);
    ASSERT_TRUE(found->isEnabled());
    QTest::mouseClick(found, Qt::LeftButton);
}

std::string LabelOf(const QWidget& window, const char* name) {
    return window.findChild<QLabel*>(QLatin1StringView(name))->text().toStdString();
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
    const QString second = cable.path();
    ListPortsWith([second] {
        return std::vector<PortInfo>{{QStringLiteral("ttyUSB0 - Adapter"), QStringLiteral("/nope")},
                                     {QStringLiteral("ttyUSB1"), second}};
    });
    for (int opened = 0; opened < 2; ++opened) // Meant: it opens with the first port each time
        When([this] { return Find("frmSerial") != nullptr; },
             [this] {
                 auto* dialog = Find("frmSerial");
                 auto* popSP = dialog->findChild<QComboBox*>(QStringLiteral("popSP"));
                 EXPECT_EQ(popSP->currentText(), QStringLiteral("ttyUSB0 - Adapter"));
                 EXPECT_EQ(popSP->count(), 2);
                 popSP->setCurrentIndex(1);
                 Press(*dialog, "cmdOK");
             });
    Choose("TavriloSerialPort");
    Choose("TavriloSerialPort");
    micro.discs[0] = ImageOf(80);
    desktop.files = {folder.File("small.ssd", std::string(2560, 'x'))};
    Choose("SendSSDDrive0");
    EXPECT_THAT(micro.heard, Contains("*DISC"));
}

TEST_F(LinkWindowTest, ADiscGoesOutAndItsWindowShowsHowFar) {
    const Bytes image = ImageOf(3);
    std::vector<std::string> shown;
    When([this] { return std::ranges::count(micro.heard, "track") == 2; },
         [&] {
             auto* rx = Find("frmRX");
             shown = {rx->windowTitle().toStdString(), LabelOf(*rx, "lblTtl"),
                      LabelOf(*rx, "lblRX"),
                      rx->findChild<QProgressBar*>(QStringLiteral("pb"))->text().toStdString()};
         });
    desktop.files = {folder.File("out.dsd", image)};
    folder.File("xfer.wav", "");
    Choose("SendDSDDrive1");
    EXPECT_THAT(shown, ElementsAre("Send Disc Image", "Send In Progress",
                                   "Sending Track 0 of Drive 3", "33%"));
    EXPECT_TRUE(std::ranges::equal(std::span(micro.discs[3]).first(kTrackBytes),
                                   std::span(image).subspan(kTrackBytes, kTrackBytes)));
    EXPECT_TRUE(std::ranges::equal(std::span(micro.discs[1]).subspan(kTrackBytes, kTrackBytes),
                                   std::span(image).subspan(2 * kTrackBytes)));
    EXPECT_EQ(Find("frmRX"), nullptr);
    EXPECT_THAT(desktop.sounds, ElementsAre(folder.path() / "xfer.wav"));
}

TEST_F(LinkWindowTest, AReceivedDiscIsOpenedIfTheOptionSaysSo) {
    micro.discs[0] = Bytes(102400);
    micro.discs[0][0] = 'T';
    micro.discs[0][0x107] = 0x90; // 400 sectors
    micro.discs[0][0x106] = 1;
    const fs::path file = folder.path() / "in.ssd";
    desktop.files = {file};
    Choose("ReceiveSSDDrive0");
    EXPECT_EQ(BytesOf(file), micro.discs[0]);
    EXPECT_EQ(Title(), "Quoravel - in.ssd");
}

TEST_F(LinkWindowTest, CancelEndsAReceiveAndWhatCameStays) {
    micro.discs[2] = ImageOf(80);
    const fs::path file = folder.path() / "part.ssd";
    desktop.files = {file};
    When([this] { return std::ranges::count(micro.heard, "G 2 1") == 1; },
         [this] { Press(*Find("frmRX"), "cmdCancel"); });
    Choose("ReceiveSSDDrive2");
    EXPECT_EQ(fs::file_size(file) % kTrackBytes, 0U);
    EXPECT_EQ(Find("frmRX"), nullptr);
    EXPECT_TRUE(Module1::TXAbort);
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
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

TEST_F(LinkWindowTest, OneTransferAtATime) {
    desktop.files = {folder.File("out.ssd", ImageOf(1))};
    When([this] { return Find("frmRX") != nullptr; },
         [this] {
             for (const char* item :
                  {"ReceiveSSDDrive0", "SendDSDDrive1", "TavriloCli", "TavriloSendBasicProgram"})
                 Choose(item);
         });
    Choose("SendSSDDrive0");
    EXPECT_THAT(desktop.TakeBoxTexts(),
                testing::AllOf(testing::SizeIs(4), testing::Each("A transfer is in progress")));
}

TEST_F(LinkWindowTest, TheConsoleShowsWhatACommandPrints) {
    micro.outputs["*CAT"] = "DEMO (04)\rDrive 0\r";
    micro.errors["*NONE"] = "Bad command\r";
    When([this] { return Find("frmCLI") != nullptr; },
         [this] {
             auto* console = Find("frmCLI");
             auto* txtCmd = console->findChild<QLineEdit*>(QStringLiteral("txtCmd"));
             auto* rtbCLI = console->findChild<EditField*>(QStringLiteral("rtbCLI"));
             EXPECT_EQ(console->focusWidget(), txtCmd);
             QTest::keyClicks(txtCmd, QStringLiteral("CAT"));
             QTest::keyClick(txtCmd, Qt::Key_Return);
             EXPECT_EQ(rtbCLI->Text(), "DEMO (04)\r\nDrive 0\r\n");
             EXPECT_EQ(txtCmd->text(), QString());
             QTest::keyClicks(txtCmd, QStringLiteral("NONE"));
             QTest::keyClick(txtCmd, Qt::Key_Return);
             EXPECT_EQ(txtCmd->text(), QStringLiteral("NONE"));
             EXPECT_TRUE(desktop.boxes ==
                         std::vector<ScriptedHost::Box>({{"Bad command", "* Command Error"}}));
             desktop.files = {folder.path() / "session.txt"};
             console->findChild<QAction*>(QStringLiteral("FileSaveFile"))->trigger();
             console->close();
         });
    Choose("TavriloCli");
    EXPECT_EQ(Find("frmCLI"), nullptr);
    EXPECT_EQ(desktop.proposals.back(), "");
    EXPECT_EQ(TextOf(folder.path() / "session.txt"), "DEMO (04)\r\nDrive 0\r\n\n");
}

TEST_F(LinkWindowTest, ClosingTheConsoleDuringACommandEndsItAtOnce) {
    micro.spoil = [](CompanionDouble::Reply& reply) { reply.bytes.clear(); };
    When([this] { return Find("frmCLI") != nullptr; },
         [this] {
             auto* txtCmd = Find("frmCLI")->findChild<QLineEdit*>(QStringLiteral("txtCmd"));
             QTest::keyClick(txtCmd, Qt::Key_Return);
         });
    When([this] { return !micro.heard.empty(); }, [this] { Find("frmCLI")->close(); });
    const auto start = std::chrono::steady_clock::now();
    Choose("TavriloCli");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_THAT(desktop.TakeBoxTexts(), IsEmpty());
}

TEST_F(LinkWindowTest, TheTraceShowsTheConversationAndIgnoresTyping) {
    Choose("TraceWindow");
    EXPECT_FALSE(IsEnabled("TraceWindow"));
    const fs::path log = folder.path() / "trace.log";
    desktop.files = {log, folder.File("out.ssd", ImageOf(1))};
    Choose("TraceToFile");
    EXPECT_FALSE(IsEnabled("TraceToFile"));
    Choose("SendSSDDrive0");
    auto* trace = Find("frmTrace");
    auto* text = trace->findChild<EditField*>(QStringLiteral("rtbTrace"));
    EXPECT_THAT(text->Text(), HasSubstr("TX: 0000 : 2A 44 49 53 43 0D "));
    EXPECT_THAT(text->Text(), HasSubstr("Sending Track 0 of Drive 0\r\n"));
    const std::string before = text->Text();
    QTest::keyClicks(text, QStringLiteral("x"));
    EXPECT_EQ(text->Text(), before);
    trace->close();
    EXPECT_TRUE(IsEnabled("TraceWindow"));
    EXPECT_TRUE(IsEnabled("TraceToFile"));
    EXPECT_GT(fs::file_size(log), before.size());
}

TEST_F(LinkWindowTest, TheBootstrapTypesTheProgramAndCancelStopsIt) {
    folder.File("tavrilo.bas", "10 REM hello\n20 PRINT\n");
    When([this] { return Find("frmFirst") != nullptr; },
         [this] {
             EXPECT_EQ(LabelOf(*Find("frmFirst"), "StaticText3"), "<BREAK>");
             Press(*Find("frmFirst"), "cmdOK");
         });
    Choose("TavriloSendBasicProgram");
    EXPECT_THAT(cable.received, testing::StartsWith("10 REM hello\r20 PRINT\r\rREM ***"));
    EXPECT_THAT(cable.received, testing::EndsWith("***\r*FX 2,0\r"));
    EXPECT_TRUE(Module1::gSerialPortOpen);

    cable.received.clear();
    When([this] { return Find("frmFirst") != nullptr; },
         [this] { Press(*Find("frmFirst"), "cmdOK"); });
    When([this] { return cable.received.size() == 4; },
         [this] { Press(*Find("frmFirst"), "cmdCancel"); });
    Choose("TavriloSendBasicProgram");
    EXPECT_THAT(cable.received, HasSubstr("\rREM File Transfer Aborted\r"));
    EXPECT_THAT(cable.received, testing::Not(HasSubstr("20 PRINT")));
}

TEST_F(LinkWindowTest, TheTraceTellsWhyAPortDoesNotOpen) {
    ListPortsWith([] {
        return std::vector<PortInfo>{{QStringLiteral("ttyUSB0"), QStringLiteral("/nope/ttyUSB0")}};
    });
    Choose("TraceWindow");
    auto* text = Find("frmTrace")->findChild<EditField*>(QStringLiteral("rtbTrace"));
    When([this] { return Find("frmCLI") != nullptr; },
         [this] {
             auto* txtCmd = Find("frmCLI")->findChild<QLineEdit*>(QStringLiteral("txtCmd"));
             QTest::keyClick(txtCmd, Qt::Key_Return);
         });
    When([text] { return text->Text().find("No such file") != std::string::npos; },
         [this] { Find("frmCLI")->close(); });
    Choose("TavriloCli");
    EXPECT_THAT(text->Text(), HasSubstr("ttyUSB0: No such file or directory\r\n"));
}

} // namespace
} // namespace quoravel
