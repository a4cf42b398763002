#include "disc/module1.h"
#include "exchange/audit.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/host_faults.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

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

class DriveListingTest : public DiscTest {
  protected:
    DriveListingTest() {
        Module1::gCancel = false;
        fs::permissions(folder.path(), fs::perms::all);
    }

    /// An image file below the tree, its folders made.
    void Touch(const std::string& name, std::string_view bytes = "") const {
        fs::create_directories((tree / name).parent_path());
        static_cast<void>(folder.File("tree/" + name, bytes));
    }

    /// The log of a listing of the tree, with LF line ends and the tree as "FOLDER".
    std::string List() {
        ListImagesBelow(tree, log, progress);
        return Replaced(Replaced(TextOf(log), "\r\n", "\n"), tree.string(), "FOLDER");
    }

    TempFolder folder;
    fs::path tree = folder.path() / "tree";
    fs::path log = folder.path() / "exall.txt";
    Progress progress;
};

TEST_F(DriveListingTest, DiscsOfARealMachineAreListedAsTheirCataloguesSay) {
    fs::copy(TEST_DATA "/discs", tree);
    fs::remove(tree / "demo-wordwise.ssd"); // not from a real machine
    EXPECT_EQ(List(), TextOf(TEST_DATA "/golden/exall.txt"));
    EXPECT_EQ(progress.texts.front(), "Found 1 Image");
    EXPECT_EQ(progress.texts.back(), "Found 7 Images");
    EXPECT_THAT(progress.percents, ElementsAre(14, 28, 42, 57, 71, 85, 100));
    EXPECT_THAT(folder.Names(), ElementsAre("exall.txt", "tree"));
}

TEST_F(DriveListingTest, TheWalkTakesImagesInTheOrderOfNamesAndFollowsNoLinks) {
    for (const char* name : {"b/z.ssd", "a.ssd", "b/a/deep.IMG", "Z.DSD", "a/c.img", "c.ssd.bak",
                             "ssd", ".ssd", "b.dsd/inside.ssd", "shut/b.ssd"})
        Touch(name);
    fs::create_directory_symlink(tree, tree / "b/loop");
    fs::create_symlink(tree / "a.ssd", tree / "link.ssd");
    fs::permissions(tree / "shut", fs::perms::none); // is passed over
    std::vector<std::string> names;
    {
        const AsNobody user;
        ImageAudit audit;
        audit.found = [](int) {};
        AuditDirectories(audit, tree);
        for (const fs::path& image : audit.ImageList)
            names.push_back(image.lexically_relative(tree).string());
    }
    EXPECT_THAT(names, ElementsAre(".ssd", "Z.DSD", "a.ssd", "a/c.img", "b/z.ssd", "b/a/deep.IMG",
                                   "b.dsd/inside.ssd"));
    fs::permissions(tree / "shut", fs::perms::all);
}

TEST_F(DriveListingTest, WhatCannotBeReadIsToldAndTheListingGoesOn) {
    Touch("a.ssd");
    Touch("b.DSD.IMG"); // the name decides the form, where the ending only lets in
    fs::permissions(tree / "a.ssd", fs::perms::none);
    const AsNobody user;
    const std::string text = List();
    EXPECT_THAT(text, testing::StartsWith("\nFOLDER/a.ssd\n\nCannot read: Permission denied\n"
                                          "\nFOLDER/b.DSD.IMG\n\n (0) FM\nDrive 0 "));
    EXPECT_THAT(text, HasSubstr("Drive 1 "));
}

TEST_F(DriveListingTest, MoreThanThirtyTwoFilesAndBytesAboveAsciiAreListed) {
    DiscBuilder(0, DiscBuilder::kWatford).Fill(31, 31).Title("\xA3");
    Touch("\xE9.ssd", BlockText(0, kDriveBytes)); // a name that is Latin-1 and not UTF-8
    const std::string text = List();
    EXPECT_THAT(text, HasSubstr("FOLDER/\xC3\xA9.ssd\n"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 3 + 4 + 62);
}

TEST_F(DriveListingTest, CancelKeepsWhatHasBeenListed) {
    EXPECT_EQ(List(), "") << "no images, an empty log";
    for (const char* name : {"a.ssd", "b.ssd", "c.ssd"})
        Touch(name);
    progress.cancel_after = 1;
    const std::string text = List();
    EXPECT_THAT(text, HasSubstr("a.ssd"));
    EXPECT_THAT(text, testing::Not(HasSubstr("b.ssd")));
}

TEST_F(DriveListingTest, ALogThatCannotBeWrittenIsToldAndWhatIsThereStays) {
    Touch("a.ssd");
    folder.File("exall.txt", "old");
    {
        const FullDisc full(10);
        EXPECT_EQ(List(), "old");
    }
    ListImagesBelow(tree, folder.path() / "no/exall.txt", progress);
    EXPECT_THAT(folder.Names(), ElementsAre("exall.txt", "tree"));
    fs::remove(log);
    fs::create_directory(log);
    ListImagesBelow(tree, log, progress);
    EXPECT_THAT(desktop.TakeBoxTexts(),
                ElementsAre("Cannot save exall.txt: File too large",
                            "Cannot save exall.txt: No such file or directory",
                            "Cannot save exall.txt: Is a directory; it is kept as exall.txt.part"));
    EXPECT_THAT(TextOf(folder.path() / "exall.txt.part"), HasSubstr("a.ssd"));
}

} // namespace
} // namespace quoravel
