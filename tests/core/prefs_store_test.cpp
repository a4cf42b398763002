#include "prefs/xml_dictionary.h"
#include "prefs/xml_preferences.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>

namespace quoravel {
namespace {

using namespace XMLPreferences;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kName = "Quoravel.pref";
constexpr const char* kNoFolder =
    "Error Creating Preferences File!!!\n\nThe FolderItem was NIL! <InitPrefFile>";
constexpr const char* kBadFile = "Error Parsing the Preference File!!\n\nThe FolderItem used may "
                                 "not be the correct type of file!";
constexpr const char* kNotSaved =
    "Error Creating Preferences File!!!\n\nYou must call InitPrefFile "
    "to initialize the preferences first!";
constexpr const char* kNotInitialised = "Error Creating Preferences File!!!\n\nYou must call "
                                        "InitPrefFile() to initialize the preferences first!";

class PrefsStore : public testing::Test {
  protected:
    PrefsStore() {
        ForgetPrefFile();
        host_.preferences_folder = folder_.path();
    }

    void TearDown() override { ForgetPrefFile(); }

    /// A new run of the program, and what that does first of all.
    static void Start() {
        ForgetPrefFile();
        InitPrefFile(kName);
        WritePrefFile();
    }

    [[nodiscard]] std::string Saved() const { return TextOf(folder_.path() / kName); }

    TempFolder folder_;
    ScriptedHost host_;
};

TEST_F(PrefsStore, WhatIsStoredIsThereInTheNextRun) {
    Start();
    EXPECT_EQ(GetPrefInteger("MainWidth", 800), 800);
    EXPECT_THAT(Saved(), HasSubstr("\n<xmldict version=\"1.1\">\n</xmldict>\n")) << "no keys";
    const std::string before = Saved();
    SetPrefInteger("MainLeft", -20);
    SetPrefBoolean("AutoLoad", false);
    SetPrefString("Name", "Gr\xC3\xBC\xC3\x9F <&>\r\n");
    EXPECT_EQ(Saved(), before) << "nothing reaches the disc before the next write";
    WritePrefFile();
    Start();
    EXPECT_EQ(GetPrefInteger("MainLeft", 0), -20);
    EXPECT_FALSE(GetPrefBoolean("AutoLoad", true));
    EXPECT_EQ(GetPrefString("Name", ""), "Gr\xC3\xBC\xC3\x9F <&>\r\n");
    EXPECT_THAT(folder_.Names(), ElementsAre(kName));
    EXPECT_THAT(host_.boxes, IsEmpty());
}

TEST_F(PrefsStore, EveryUseBeforeTheStartIsToldAndGivesTheDefault) {
    InitPrefFile("");
    EXPECT_EQ(GetPrefInteger("a", 5), 5);
    EXPECT_EQ(GetPrefString("a", "x"), "x");
    EXPECT_TRUE(GetPrefBoolean("a", true));
    SetPrefInteger("a", 1);
    SetPrefString("a", "");
    SetPrefBoolean("a", false);
    WritePrefFile();
    EXPECT_EQ(host_.TakeBoxTexts(), std::vector<std::string>(7, kNotInitialised));
    EXPECT_THAT(folder_.Names(), IsEmpty());
    host_.preferences_folder.reset();
    InitPrefFile(kName);
    EXPECT_EQ(GetPrefInteger("a", 5), 5);
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kNoFolder, kNotInitialised));
}

TEST_F(PrefsStore, AKeyNeverChangesItsTypeAndUnknownOnesAreKept) {
    folder_.File(kName, "<xmldict version='1.1'><key>MainWidth</key><string>wide</string>"
                        "<key>Other</key><array><real>1.5</real></array></xmldict>");
    Start();
    EXPECT_EQ(GetPrefInteger("MainWidth", 800), 800);
    SetPrefInteger("MainWidth", 1024);
    EXPECT_FALSE(GetPrefBoolean("MainWidth", false));
    EXPECT_EQ(host_.TakeBoxTexts(),
              std::vector<std::string>(3, "Preferences Error!\n\nThis Key does not match the "
                                          "assigned Type!\nKey: MainWidth"));
    WritePrefFile();
    Start();
    EXPECT_EQ(GetPrefString("MainWidth", ""), "wide");
    EXPECT_THAT(Saved(), HasSubstr("\t<key>Other</key>\n\t<array>\n\t\t<real>1.5</real>\n"));
}

TEST_F(PrefsStore, FilesThatCannotBeTakenAreKeptBesideTheNewOne) {
    folder_.File(kName, "<xmldict><key>a</key><integer>1"); // cut off
    InitPrefFile(kName);
    EXPECT_THAT(folder_.Names(), ElementsAre(kName)) << "moved before there was a need";
    SetPrefInteger("a", 2);
    WritePrefFile();
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad"), "<xmldict><key>a</key><integer>1");
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kBadFile));
    Start();
    EXPECT_EQ(GetPrefInteger("a", 0), 2);
    EXPECT_THAT(host_.TakeBoxTexts(), IsEmpty());
    std::filesystem::remove(folder_.path() / kName);
    std::filesystem::create_directory(folder_.path() / kName);
    folder_.File("Quoravel.pref/inside", "kept");
    Start();
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad.2/inside"), "kept");
    for (int i = 3; i <= 11; ++i) {
        folder_.File(kName, "bad " + std::to_string(i));
        Start();
    }
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad.3"), "bad 3");
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad.9"), "bad 11"); // the last gives way
    EXPECT_EQ(folder_.Names().size(), 10U);
}

TEST_F(PrefsStore, ABadFileThatCannotBeMovedIsNotOverwritten) {
    // A folder with something in it under the last name cannot be replaced by a file.
    for (const char* end : {"", ".2", ".3", ".4", ".5", ".6", ".7", ".8", ".9"}) {
        const auto taken = folder_.path() / (std::string(kName) + ".bad" + end);
        std::filesystem::create_directories(taken / "full");
    }
    folder_.File(kName, "precious");
    Start();
    WritePrefFile();
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kBadFile, kNotSaved, kNotSaved));
    EXPECT_EQ(Saved(), "precious");
    host_.preferences_folder = folder_.path() / "gone";
    Start();
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kNotSaved));
    SetPrefInteger("a", 3);
    EXPECT_EQ(GetPrefInteger("a", 0), 3) << "the store goes on";
}

TEST_F(PrefsStore, NothingHalfLoadedIsSavedWhenTheProgramEndsMeanwhile) {
    const std::string text = "<xmldict><key>a</key><integer>1</integer></xmldict>";
    folder_.File(kName, text);
    host_.now = std::chrono::hours(1); // so that the first chance to run other events is taken
    host_.on_pump = [] { throw AppQuitting(); };
    EXPECT_THROW(InitPrefFile(kName), AppQuitting);
    host_.on_pump = nullptr;
    WritePrefFile();
    EXPECT_EQ(Saved(), text);
}

} // namespace
} // namespace quoravel
