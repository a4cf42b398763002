#include "support/main_window_test.h"

#include <QProgressBar>

#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A tree of three blank images, and a clock with which every Yield pumps.
class ListingWindowTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        fs::create_directories(tree);
        for (const char* name : {"tree/a.ssd", "tree/b.ssd", "tree/c.ssd"})
            folder.File(name, "x");
        desktop.clock_step = std::chrono::milliseconds(20);
    }

    /// Lists the tree; `act` is called over and over with the progress window and its percents.
    void RunListing(const std::function<void(QWidget&, int)>& act) {
        desktop.folders = {tree};
        desktop.files = {log};
        desktop.on_pump = [&] {
            if (QWidget* progress = Find("frmProgress"))
                act(*progress, Part<QProgressBar>(*progress, "pb").value());
        };
        Choose("DiscEXDrive");
        desktop.on_pump = nullptr;
        EXPECT_EQ(Find("frmProgress"), nullptr);
    }

    [[nodiscard]] static std::string Found(const QWidget& progress) {
        return Part<QLabel>(progress, "txtImages").text().toStdString();
    }

    [[nodiscard]] long ImagesListed() const {
        const std::string text = TextOf(log);
        long images = 0;
        for (auto at = text.find(".ssd"); at != std::string::npos; at = text.find(".ssd", at + 1))
            ++images;
        return images;
    }

    const fs::path tree = folder.path() / "tree";
    const fs::path log = folder.path() / "exall.txt";
};

TEST_F(ListingWindowTest, TheWindowCountsAndTheDiscComesBackFromItsFile) {
    window->OpenDisc(CopyOfDisc("demo-gaps.ssd"));
    std::string found;
    std::vector<int> percents{-1};
    RunListing([&](const QWidget& progress, int percent) {
        found = Found(progress);
        if (percents.back() != percent)
            percents.push_back(percent);
        Choose("DiscEXDrive"); // a second one is refused
    });
    EXPECT_EQ(found, "Found 3 Images");
    EXPECT_THAT(percents, ElementsAre(-1, 0, 33, 66, 100));
    EXPECT_EQ(ImagesListed(), 3);
    EXPECT_EQ(Title(), "Quoravel - demo-gaps.ssd");
    EXPECT_THAT(Names(0), ElementsAre("$.A", "$.C", "$.F", "D.D"));
    EXPECT_THAT(desktop.proposals, ElementsAre("exall.txt"));
    EXPECT_THAT(desktop.TakeBoxTexts(), testing::Each("A listing is in progress"));
}

TEST_F(ListingWindowTest, AFileThatLoadsNothingIsNotSavedOverWithTheLastImageListed) {
    window->OpenDisc(folder.File("plain", "mine"));
    RunListing([](QWidget&, int) {});
    EXPECT_TRUE(Module1::gsFile.empty());
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
}

TEST_F(ListingWindowTest, CancelTheTitleBarAndTheEndOfTheProgramEndItAndKeepWhatIsListed) {
    RunListing([](QWidget& progress, int) {
        if (Found(progress) == "Found 1 Image")
            Press(progress, "Cancel");
    });
    EXPECT_EQ(TextOf(log), "");
    RunListing([](QWidget& progress, int percent) {
        if (percent == 66)
            progress.close();
    });
    EXPECT_EQ(ImagesListed(), 2);
    EXPECT_EQ(Title(), "Quoravel - NewDisc.dsd");
    RunListing([this](QWidget&, int percent) {
        if (percent == 33)
            window->close();
    });
    EXPECT_EQ(desktop.quits, 1);
    EXPECT_EQ(ImagesListed(), 1);
    desktop.quitting = false;
}

} // namespace
} // namespace quoravel
