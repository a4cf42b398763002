#include "prefs/xml_dictionary.h"
#include "prefs/xml_preferences.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <tuple>

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

    /// What the program does first of all.
    static void Start() {
        InitPrefFile(kName);
        WritePrefFile();
    }

    /// A new run of the program.
    static void StartAgain() {
        ForgetPrefFile();
        Start();
    }

    [[nodiscard]] std::string Saved() const { return TextOf(folder_.path() / kName); }

    TempFolder folder_;
    ScriptedHost host_;
};

TEST_F(PrefsStore, AFirstStartLeavesAFileWithoutKeys) {
    Start();
    EXPECT_EQ(GetPrefInteger("MainWidth", 800), 800);
    EXPECT_TRUE(GetPrefBoolean("PlayWave", true));
    EXPECT_THAT(Saved(), HasSubstr("\n<xmldict version=\"1.1\">\n</xmldict>\n"));
    EXPECT_THAT(folder_.Names(), ElementsAre(kName));
    EXPECT_THAT(host_.boxes, IsEmpty());
}

TEST_F(PrefsStore, WhatIsStoredIsThereInTheNextRun) {
    Start();
    const std::string before = Saved();
    SetPrefInteger("MainLeft", -20);
    SetPrefBoolean("AutoLoad", false);
    SetPrefString("Name", "Gr\xC3\xBC\xC3\x9F <&>\r\n");
    EXPECT_EQ(Saved(), before) << "nothing reaches the disc before the next write";
    WritePrefFile();
    StartAgain();
    EXPECT_EQ(GetPrefInteger("MainLeft", 0), -20);
    EXPECT_FALSE(GetPrefBoolean("AutoLoad", true));
    EXPECT_EQ(GetPrefString("Name", ""), "Gr\xC3\xBC\xC3\x9F <&>\r\n");
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
}

TEST_F(PrefsStore, WithoutAFolderTheStoreStaysClosed) {
    host_.preferences_folder.reset();
    InitPrefFile(kName);
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kNoFolder));
    EXPECT_EQ(GetPrefInteger("a", 5), 5);
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kNotInitialised));
}

TEST_F(PrefsStore, AKeyNeverChangesItsType) {
    folder_.File(kName, "<xmldict version='1.1'><key>MainWidth</key><string>wide</string>"
                        "</xmldict>");
    const std::string box =
        "Preferences Error!\n\nThis Key does not match the assigned Type!\nKey: MainWidth";
    Start();
    EXPECT_EQ(GetPrefInteger("MainWidth", 800), 800);
    SetPrefInteger("MainWidth", 1024);
    EXPECT_FALSE(GetPrefBoolean("MainWidth", false));
    EXPECT_EQ(host_.TakeBoxTexts(), std::vector<std::string>(3, box));
    WritePrefFile();
    StartAgain();
    EXPECT_EQ(GetPrefString("MainWidth", ""), "wide");
}

TEST_F(PrefsStore, UnknownKeysAreKept) {
    folder_.File(kName, "<xmldict version='1.1'><key>Other</key><array><real>1.5</real></array>"
                        "<key>Nothing</key><null/></xmldict>");
    Start();
    EXPECT_THAT(Saved(), HasSubstr("\t<key>Other</key>\n\t<array>\n\t\t<real>1.5</real>\n\t</array>"
                                   "\n\t<key>Nothing</key>\n\t<null/>\n"));
}

TEST_F(PrefsStore, AFileThatCannotBeTakenIsKeptBesideTheNewOne) {
    using Row = std::tuple<const char*, const char*>;
    const Row rows[] = {
        {"empty", ""},
        {"cut off", "<xmldict><key>a</key><integer>1"},
        {"from the future", "<xmldict version='1.2'/>"},
        {"no dict in it", "<plist version='1.0'><array/></plist>"},
    };
    for (const auto& [what, text] : rows) {
        SCOPED_TRACE(what);
        const TempFolder folder;
        host_.preferences_folder = folder.path();
        folder.File(kName, text);
        ForgetPrefFile();
        InitPrefFile(kName);
        EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kBadFile));
        EXPECT_THAT(folder.Names(), ElementsAre(kName)) << "moved before there was a need";
        SetPrefInteger("a", 2);
        WritePrefFile();
        EXPECT_EQ(TextOf(folder.path() / "Quoravel.pref.bad"), text);
        StartAgain();
        EXPECT_EQ(GetPrefInteger("a", 0), 2);
        EXPECT_THAT(host_.TakeBoxTexts(), IsEmpty());
    }
}

TEST_F(PrefsStore, EarlierBadFilesAreNotDestroyed) {
    for (int i = 1; i <= 11; ++i) {
        folder_.File(kName, "bad " + std::to_string(i));
        StartAgain();
    }
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad"), "bad 1");
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad.2"), "bad 2");
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad.9"), "bad 11"); // the last gives way
    EXPECT_EQ(folder_.Names().size(), 10U);
}

TEST_F(PrefsStore, WhatCannotBeReadIsMovedAsideWhole) {
    std::filesystem::create_directory(folder_.path() / kName);
    folder_.File("Quoravel.pref/inside", "kept");
    Start();
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kBadFile));
    EXPECT_EQ(TextOf(folder_.path() / "Quoravel.pref.bad/inside"), "kept");
    EXPECT_THAT(Saved(), HasSubstr("<xmldict"));
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
}

TEST_F(PrefsStore, AFailedSaveIsToldAndTheStoreGoesOn) {
    host_.preferences_folder = folder_.path() / "gone";
    Start();
    EXPECT_THAT(host_.TakeBoxTexts(), ElementsAre(kNotSaved));
    SetPrefInteger("a", 3);
    EXPECT_EQ(GetPrefInteger("a", 0), 3);
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
