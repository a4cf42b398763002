#include "disc/disc_block.h"
#include "support/main_window_test.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A tree of blank images, and a clock with which every Yield pumps.
class ListingWindowTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        for (const char* name : {"a.ssd", "b.ssd", "c.ssd"}) {
            fs::create_directories(tree);
            std::ofstream(tree / name) << "x";
        }
        desktop.folders = {tree};
        desktop.files = {log};
        desktop.clock_step = std::chrono::milliseconds(20);
    }

    [[nodiscard]] static QWidget* Progress() {
        const auto tops = QApplication::topLevelWidgets();
        const auto found = std::ranges::find_if(tops, [](const QWidget* top) {
            return top->objectName() == QStringLiteral("frmProgress") && top->isVisible();
        });
        return found == tops.end() ? nullptr : *found;
    }

    [[nodiscard]] static std::string Found() {
        return Progress()->findChild<QLabel*>(QStringLiteral("txtImages"))->text().toStdString();
    }

    [[nodiscard]] static int Percent() {
        return Progress()->findChild<QProgressBar*>(QStringLiteral("pb"))->value();
    }

    static void PressCancel() {
        QTest::mouseClick(Progress()->findChild<QPushButton*>(QStringLiteral("Cancel")),
                          Qt::LeftButton);
    }

    [[nodiscard]] long ImagesListed() const {
        const std::string text = TextOf(log);
        long images = 0;
        for (auto at = text.find(".ssd"); at != std::string::npos; at = text.find(".ssd", at + 1))
            ++images;
        return images;
    }

    fs::path tree = folder.path() / "tree";
    fs::path log = folder.path() / "exall.txt";
};

TEST_F(ListingWindowTest, TheWindowCountsAndTheDiscComesBackFromItsFile) {
    window->OpenDisc(CopyOfDisc("demo-gaps.ssd"));
    std::string found;
    std::vector<int> percents;
    desktop.on_pump = [&] {
        if (Progress() == nullptr)
            return;
        found = Found();
        if (percents.empty() || percents.back() != Percent())
            percents.push_back(Percent());
        Choose("DiscEXDrive"); // a second one is refused
    };
    Choose("DiscEXDrive");
    EXPECT_EQ(found, "Found 3 Images");
    EXPECT_THAT(percents, ElementsAre(0, 33, 66, 100));
    EXPECT_EQ(ImagesListed(), 3);
    EXPECT_EQ(Progress(), nullptr);
    EXPECT_EQ(Title(), "Quoravel - demo-gaps.ssd");
    EXPECT_THAT(Names(0), ElementsAre("$.A", "$.C", "$.F", "D.D"));
    EXPECT_THAT(desktop.proposals, ElementsAre("exall.txt"));
    EXPECT_THAT(desktop.TakeBoxTexts(), testing::Each("A listing is in progress"));
}

TEST_F(ListingWindowTest, AFileThatLoadsNothingIsNotSavedOverWithTheLastImageListed) {
    window->OpenDisc(folder.File("plain", "mine"));
    Choose("DiscEXDrive");
    EXPECT_TRUE(Module1::gsFile.empty());
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
}

TEST_F(ListingWindowTest, CancelEndsTheWalkAndTheListing) {
    desktop.on_pump = [&] {
        if (Progress() != nullptr && Found() == "Found 1 Image")
            PressCancel();
    };
    Choose("DiscEXDrive");
    EXPECT_EQ(TextOf(log), "");
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");

    desktop.folders = {tree};
    desktop.files = {log};
    desktop.on_pump = [&] {
        if (Progress() != nullptr && Percent() == 66)
            Progress()->close(); // the same by the title bar
    };
    Choose("DiscEXDrive");
    EXPECT_EQ(ImagesListed(), 2);
    EXPECT_EQ(Progress(), nullptr);
}

TEST_F(ListingWindowTest, ClosingTheProgramKeepsWhatHasBeenListed) {
    desktop.on_pump = [&] {
        if (Progress() != nullptr && Percent() == 33)
            window->close();
    };
    Choose("DiscEXDrive");
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_EQ(ImagesListed(), 1);
    desktop.quitting = false;
}

} // namespace
} // namespace quoravel
