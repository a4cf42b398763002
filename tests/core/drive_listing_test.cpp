#include "disc/module1.h"
#include "exchange/audit.h"
#include "support/disc_builder.h"
#include "support/host_faults.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Progress : ListingProgress {
    void SetImages(std::string_view text) override { texts.emplace_back(text); }

    void SetProgress(int percent) override {
        percents.push_back(percent);
        if (std::ssize(percents) == cancel_after)
            Module1::gCancel = true;
    }

    std::vector<std::string> texts;
    std::vector<int> percents;
    int cancel_after = -1; ///< images
};

/// `text` with `from` turned into `to` everywhere.
std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

class DriveListingTest : public testing::Test {
  protected:
    void SetUp() override {
        Module1::Init();
        Module1::gCancel = false;
        fs::create_directory(tree);
    }

    /// An empty file below the tree, its folders made.
    void Touch(const std::string& name) const {
        fs::create_directories((tree / name).parent_path());
        std::filesystem::copy_file(empty, tree / name);
    }

    [[nodiscard]] std::vector<std::string> Audit() const {
        std::vector<std::string> names;
        ImageAudit audit;
        audit.found = [](int) {};
        AuditDirectories(audit, tree);
        for (const fs::path& image : audit.ImageList)
            names.push_back(image.lexically_relative(tree).string());
        return names;
    }

    /// The log of a listing of the tree, with LF line ends and the tree as "FOLDER".
    std::string List() {
        const fs::path log = folder.path() / "exall.txt";
        ListImagesBelow(tree, log, progress);
        return Replaced(Replaced(TextOf(log), "\r\n", "\n"), tree.string(), "FOLDER");
    }

    ScriptedHost host;
    TempFolder folder;
    fs::path tree = folder.path() / "tree";
    fs::path empty = folder.File("empty", "");
    Progress progress;
};

TEST_F(DriveListingTest, DiscsOfARealMachineAreListedAsTheirCataloguesSay) {
    fs::remove(tree);
    fs::copy(TEST_DATA "/discs", tree);
    fs::remove(tree / "demo-wordwise.ssd"); // not from a real machine
    EXPECT_EQ(List(), TextOf(TEST_DATA "/golden/exall.txt"));
    EXPECT_EQ(progress.texts.front(), "Found 1 Image");
    EXPECT_EQ(progress.texts.back(), "Found 7 Images");
    EXPECT_THAT(progress.percents, ElementsAre(14, 28, 42, 57, 71, 85, 100));
    EXPECT_THAT(folder.Names(), ElementsAre("empty", "exall.txt", "tree"));
}

TEST_F(DriveListingTest, TheWalkTakesImagesOfAFolderFirstAndBothInTheOrderOfNames) {
    for (const char* name : {"b/z.ssd", "a.ssd", "b/a/deep.IMG", "Z.DSD", "a/c.img", "c.ssd.bak",
                             "ssd", ".ssd", "b.dsd/inside.ssd"})
        Touch(name);
    EXPECT_THAT(Audit(), ElementsAre(".ssd", "Z.DSD", "a.ssd", "a/c.img", "b/z.ssd", "b/a/deep.IMG",
                                     "b.dsd/inside.ssd"));
}

TEST_F(DriveListingTest, LinksAreNotFollowedAndClosedFoldersArePassedOver) {
    Touch("in/a.ssd");
    Touch("shut/b.ssd");
    fs::create_directory_symlink(tree, tree / "in/loop");
    fs::create_symlink(tree / "in/a.ssd", tree / "link.ssd");
    fs::permissions(tree / "shut", fs::perms::none);
    fs::permissions(folder.path(), fs::perms::all);
    {
        const AsNobody user;
        EXPECT_THAT(Audit(), ElementsAre("in/a.ssd"));
    }
    fs::permissions(tree / "shut", fs::perms::all);
}

TEST_F(DriveListingTest, WhatCannotBeReadIsToldAndTheListingGoesOn) {
    Touch("a.ssd");
    Touch("b.ssd");
    fs::permissions(tree / "a.ssd", fs::perms::none);
    fs::permissions(folder.path(), fs::perms::all);
    const AsNobody user;
    const std::string log = List();
    EXPECT_THAT(log, testing::StartsWith("\nFOLDER/a.ssd\n\nCannot read: Permission denied\n"
                                         "\nFOLDER/b.ssd\n\n (0) FM\nDrive 0 "));
}

TEST_F(DriveListingTest, TheNameDecidesWhereTheEndingOnlyLetsIn) {
    Touch("A.DSD.IMG");
    EXPECT_THAT(List(), HasSubstr("Drive 1 "));
}

TEST_F(DriveListingTest, MoreThanThirtyTwoFilesAndBytesAboveAsciiAreListed) {
    DiscBuilder disc(0, DiscBuilder::kWatford);
    disc.Fill(31, 31).Title("\xA3");
    fs::remove(tree);
    fs::create_directory(tree);
    const auto bytes = Module1::DiscImg.Part(0, kDriveBytes);
    std::ofstream(tree / "\xE9.ssd") // a name that is Latin-1 and not UTF-8
        .write(reinterpret_cast<const char*>(bytes.data()), kDriveBytes);
    const std::string log = List();
    EXPECT_THAT(log, HasSubstr("FOLDER/\xC3\xA9.ssd\n"));
    EXPECT_EQ(std::ranges::count(log, '\n'), 3 + 4 + 62);
}

TEST_F(DriveListingTest, AFolderWithoutImagesGivesAnEmptyLog) {
    EXPECT_EQ(List(), "");
    EXPECT_THAT(progress.percents, IsEmpty());
}

TEST_F(DriveListingTest, CancelKeepsWhatHasBeenListed) {
    for (const char* name : {"a.ssd", "b.ssd", "c.ssd"})
        Touch(name);
    progress.cancel_after = 1;
    const std::string log = List();
    EXPECT_THAT(log, HasSubstr("a.ssd"));
    EXPECT_THAT(log, testing::Not(HasSubstr("b.ssd")));
}

TEST_F(DriveListingTest, ALogThatCannotBeWrittenIsToldAndTheOldOneStays) {
    Touch("a.ssd");
    folder.File("exall.txt", "old");
    {
        const FullDisc full(10);
        EXPECT_EQ(List(), "old");
    }
    EXPECT_THAT(host.TakeBoxTexts(), ElementsAre("Cannot save exall.txt: File too large"));
    ListImagesBelow(tree, folder.path() / "no/exall.txt", progress);
    EXPECT_THAT(host.TakeBoxTexts(),
                ElementsAre("Cannot save exall.txt: No such file or directory"));
    EXPECT_THAT(folder.Names(), ElementsAre("empty", "exall.txt", "tree"));
}

TEST_F(DriveListingTest, AFinishedListingThatCannotTakeItsNameIsKept) {
    Touch("a.ssd");
    fs::create_directory(folder.path() / "exall.txt");
    ListImagesBelow(tree, folder.path() / "exall.txt", progress);
    EXPECT_THAT(host.TakeBoxTexts(),
                ElementsAre("Cannot save exall.txt: Is a directory; it is kept "
                            "as exall.txt.part"));
    EXPECT_THAT(TextOf(folder.path() / "exall.txt.part"), HasSubstr("a.ssd"));
}

} // namespace
} // namespace quoravel
