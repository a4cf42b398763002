#include "disc/module1.h"
#include "exchange/audit.h"
#include "support/disc_test.h"
#include "support/host_faults.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

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

class DriveListingTest : public DiscTest {
  protected:
    DriveListingTest() {
        Module1::gCancel = false;
        fs::permissions(folder.path(), fs::perms::all);
    }

    /// An image file below the tree, its folders made.
    void Touch(const std::string& name) const {
        fs::create_directories((tree / name).parent_path());
        static_cast<void>(folder.File("tree/" + name, ""));
    }

    /// The log of a listing of the tree, with LF line ends and the tree as "FOLDER".
    std::string List() {
        ListImagesBelow(tree, log, progress);
        std::string text = TextOf(log);
        for (const auto& [what, shown] : {std::pair(std::string("\r\n"), "\n"), {tree, "FOLDER"}})
            for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at))
                text.replace(at, what.size(), shown);
        return text;
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
    Touch("\xE9.DSD.IMG"); // is no UTF-8; the name decides the form, where the ending only lets in
    fs::permissions(tree / "a.ssd", fs::perms::none);
    const AsNobody user;
    const std::string text = List();
    EXPECT_THAT(text, testing::StartsWith("\nFOLDER/a.ssd\n\nCannot read: Permission denied\n"
                                          "\nFOLDER/\xC3\xA9.DSD.IMG\n\n (0) FM\nDrive 0 "));
    EXPECT_THAT(text, HasSubstr("Drive 1 "));
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
