#include "disc/image_files.h"
#include "platform/backup.h"
#include "platform/files.h"
#include "platform/saving.h"
#include "platform/text.h"
#include "support/disc_test.h"
#include "support/host_faults.h"
#include "support/temp_folder.h"

#include <array>
#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <optional>
#include <random>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;

struct stat StatusOf(const fs::path& file) {
    struct stat status {};

    EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
    return status;
}

void SetMode(const fs::path& path, mode_t mode) {
    EXPECT_EQ(::chmod(path.c_str(), mode), 0) << path;
}

std::string ReasonOf(const std::optional<FileError>& error) {
    return error ? error->reason : std::string();
}

/// A folder with an image file "disc.dsd" in it, and another for the user's state. Everybody may
/// write to both.
class Files : public DiscTest {
  protected:
    Files() : file(folder.File("disc.dsd", "old")) {
        for (const fs::path& path : {folder.path(), state.path()})
            SetMode(path, 0777);
        SetMode(file, 0666);
        desktop.state_folder = state.path();
    }

    ~Files() override { SetMode(folder.path(), 0777); }

    /// Names in the backup folder, sorted.
    [[nodiscard]] std::vector<std::string> Copies() const {
        return state.Names().empty() ? state.Names() : state.Names("backup");
    }

    TempFolder folder;
    TempFolder state;
    fs::path file;
};

TEST_F(Files, ReadingTakesUpToTheLimitFromAPlainFileAndRefusesTheRest) {
    fs::create_symlink("/dev/zero", folder.path() / "zero.ssd");
    fs::create_symlink("disc.dsd", folder.path() / "link.ssd");
    ASSERT_EQ(::mkfifo((folder.path() / "pipe.ssd").c_str(), 0666), 0);
    SetMode(folder.File("secret.ssd", "x"), 0);
    folder.File("empty.ssd", "");
    const fs::path huge = folder.File("huge.ssd", "big");
    fs::resize_file(huge, std::uintmax_t{10} << 30U);
    using Row = std::tuple<const char*, std::size_t, std::string, std::string>;
    const AsNobody permissions_count;
    for (const auto& [name, limit, text, reason] :
         {Row{"disc.dsd", 2, "ol", ""}, Row{"link.ssd", 100, "old", ""},
          Row{"empty.ssd", 100, "", ""}, Row{"huge.ssd", 3, "big", ""},
          Row{"none.ssd", 100, "before", "No such file or directory"},
          Row{".", 100, "before", "Is a directory"},
          Row{"zero.ssd", 100, "before", "Not a regular file"},
          Row{"pipe.ssd", 100, "before", "Not a regular file"},
          Row{"secret.ssd", 100, "before", "Permission denied"}}) {
        SCOPED_TRACE(name);
        Bytes bytes{'b', 'e', 'f', 'o', 'r', 'e'};
        EXPECT_EQ(ReasonOf(ReadFile(folder.path() / name, limit, bytes)), reason);
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), text);
    }
    EXPECT_FALSE(LoadDisc_DSD(huge));
    EXPECT_EQ(BlockText(0, 4), std::string("big\0", 4)) << "the first part of ten gigabytes";
}

TEST_F(Files, AFailedSaveLeavesTheOldFileWholeAndTheDiscChanged) {
    fs::create_directory(folder.path() / "folder.dsd");
    fs::create_symlink("loop.dsd", folder.path() / "loop.dsd");
    fs::create_symlink("/dev/full", folder.path() / "full.dsd");
    ASSERT_EQ(::mkfifo((folder.path() / "pipe.dsd").c_str(), 0666), 0);
    const auto names = folder.Names();

    enum Closed { Nothing, File, Folder, FolderAndState };

    using Room = std::optional<rlim_t>;
    using Row = std::tuple<const char*, const char*, Closed, Room, const char*>;
    for (const auto& [what, name, closed, room, reason] :
         {Row{"folder gone", "none/disc.dsd", Nothing, {}, "No such file or directory"},
          Row{"a folder", "folder.dsd", Nothing, {}, "Is a directory"},
          Row{"a device", "full.dsd", Nothing, {}, "Not a regular file"},
          Row{"a pipe", "pipe.dsd", Nothing, {}, "Not a regular file"},
          Row{"links in a ring", "loop.dsd", Nothing, {}, "Too many levels"},
          Row{"disc full", "disc.dsd", Nothing, 100'000, "File too large"},
          Row{"disc full at once", "new.dsd", Nothing, 0, "File too large"},
          Row{"file is read-only", "disc.dsd", File, {}, "Permission denied"},
          Row{"new file, closed folder", "new.dsd", Folder, {}, "Permission denied"},
          Row{"no place for the copy", "disc.dsd", FolderAndState, {}, "Permission denied"},
          Row{"no room for the copy", "disc.dsd", Folder, 2, "File too large"},
          Row{"closed folder, disc full", "disc.dsd", Folder, 100'000, "File too large"}}) {
        SCOPED_TRACE(what);
        SetMode(file, closed == File ? 0444 : 0666);
        SetMode(folder.path(), closed >= Folder ? 0555 : 0777);
        SetMode(state.path(), closed == FolderAndState ? 0555 : 0777);
        for (const bool dirty : {false, true}) {
            Module1::gDirty = dirty;
            const AsNobody permissions_count;
            std::optional<FullDisc> full;
            if (room)
                full.emplace(*room);
            EXPECT_THAT(ReasonOf(SaveDisc_DSD(folder.path() / name)), HasSubstr(reason));
            EXPECT_EQ(Module1::gDirty, dirty);
        }
        EXPECT_EQ(TextOf(file), "old");
        EXPECT_EQ(folder.Names(), names) << "nothing is left behind";
    }
    EXPECT_THAT(Copies(), ElementsAre("disc-1.dsd", "disc.dsd")) << "of the last row alone";
}

/// Saves over `file` until it is killed, and says so in `pipe` after the first time. Every save has
/// bytes and a length of its own.
[[noreturn]] void SaveForEver(const fs::path& file, int pipe) {
    for (std::size_t i = 1;; ++i) {
        const auto error =
            ReplaceFile(file, Bytes(100'000 + i % 256, static_cast<std::uint8_t>(i)));
        if ((i == 1 && ::write(pipe, "x", 1) != 1) || error)
            ::_exit(1);
    }
}

TEST_F(Files, ASaveThatIsKilledAtAnyMomentLeavesTheOldFileOrTheNewOneWhole) {
    constexpr int kKills = 1000;
    std::minstd_rand random;
    std::array<int, 2> saved{};
    ASSERT_EQ(::pipe(saved.data()), 0);
    for (int kill = 0; kill < kKills; ++kill) {
        const pid_t saver = ::fork();
        ASSERT_GE(saver, 0);
        if (saver == 0)
            SaveForEver(file, saved[1]);
        char sign = 0;
        ASSERT_EQ(::read(saved[0], &sign, 1), 1);
        ::usleep(static_cast<useconds_t>(random() % 3000));
        ASSERT_EQ(::kill(saver, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(saver, &status, 0), saver);
        ASSERT_TRUE(WIFSIGNALED(status)) << "no save failed";
        Bytes bytes;
        ASSERT_FALSE(ReadFile(file, 200'000, bytes));
        ASSERT_FALSE(bytes.empty());
        ASSERT_EQ(bytes, Bytes(100'000U + bytes.front(), bytes.front()));
    }
    for (const int end : saved)
        ::close(end);
    EXPECT_LT(folder.Names().size(), kKills / 4U) << "few are between their name and their place";
}

TEST_F(Files, ASaveKeepsThePermissions) {
    for (const mode_t mode : {0600U, 0640U, 0666U, 02755U}) {
        SetMode(file, mode);
        ASSERT_FALSE(ReplaceFile(file, AsBytes("new")));
        EXPECT_EQ(StatusOf(file).st_mode & 07777U, mode);
    }
    const mode_t mask = ::umask(027);
    ASSERT_FALSE(ReplaceFile(folder.path() / "fresh.dsd", AsBytes("new")));
    ::umask(mask);
    EXPECT_EQ(StatusOf(folder.path() / "fresh.dsd").st_mode & 07777U, 0640U)
        << "a new file gets what the user's mask allows";
    EXPECT_THAT(folder.Names(), ElementsAre("disc.dsd", "fresh.dsd"));
}

TEST_F(Files, ASaveFollowsSymbolicLinks) {
    fs::create_directory(folder.path() / "sub");
    fs::create_symlink("../disc.dsd", folder.path() / "sub" / "inner.dsd");
    fs::create_symlink(folder.path() / "sub" / "inner.dsd", folder.path() / "outer.dsd");
    fs::create_symlink("sub/fresh.dsd", folder.path() / "dangling.dsd");
    ASSERT_FALSE(ReplaceFile(folder.path() / "outer.dsd", AsBytes("new")));
    ASSERT_FALSE(ReplaceFile(folder.path() / "dangling.dsd", AsBytes("fresh")));
    EXPECT_FALSE(fs::is_symlink(file));
    EXPECT_EQ(TextOf(file), "new");
    EXPECT_FALSE(fs::is_symlink(folder.path() / "sub" / "fresh.dsd"));
    EXPECT_EQ(TextOf(folder.path() / "sub" / "fresh.dsd"), "fresh");
    for (const char* link : {"outer.dsd", "dangling.dsd", "sub/inner.dsd"})
        EXPECT_TRUE(fs::is_symlink(folder.path() / link)) << link;
}

TEST_F(Files, InAClosedFolderTheFileIsWrittenInPlaceAfterACopyIsKept) {
    SetMode(folder.path(), 0555);
    const auto inode = StatusOf(file).st_ino;
    for (const char* text : {"longer", "short", ""}) {
        const AsNobody permissions_count;
        ASSERT_FALSE(ReplaceFile(file, AsBytes(text)));
        EXPECT_EQ(TextOf(file), text);
    }
    EXPECT_EQ(StatusOf(file).st_ino, inode);
    EXPECT_THAT(Copies(), ElementsAre("disc-1.dsd", "disc-2.dsd", "disc.dsd"));
    EXPECT_EQ(TextOf(state.path() / "backup" / "disc.dsd"), "old");
    EXPECT_EQ(TextOf(state.path() / "backup" / "disc-2.dsd"), "short");
    desktop.state_folder.reset();
    const AsNobody permissions_count;
    EXPECT_TRUE(ReplaceFile(file, AsBytes("new"))) << "no copy, no save";
    EXPECT_EQ(TextOf(file), "");
}

TEST_F(Files, SomebodyElsesFileInAFolderLikeTmpIsWrittenInPlace) {
    if (::getuid() != 0)
        GTEST_SKIP() << "only root can make somebody else's file";
    ASSERT_EQ(::chown(folder.path().c_str(), 0, 0), 0);
    SetMode(folder.path(), 01777);
    const AsNobody permissions_count;
    EXPECT_EQ(ReasonOf(ReplaceFile(file, AsBytes("new"))), "");
    EXPECT_EQ(TextOf(file), "new");
    EXPECT_EQ(StatusOf(file).st_uid, 0U);
    EXPECT_THAT(folder.Names(), ElementsAre("disc.dsd"));
    EXPECT_THAT(Copies(), ElementsAre("disc.dsd"));
}

TEST_F(Files, TheFirstSaveOverAnOpenedFileKeepsACopyByWhateverNameItIsSaved) {
    fs::create_symlink("disc.dsd", folder.path() / "link.dsd");
    OpenedFiles opened;
    EXPECT_FALSE(opened.KeepCopyOf(file)) << "nobody has opened it";
    opened.Note(folder.path() / "link.dsd");
    for (int save = 0; save < 2; ++save)
        EXPECT_FALSE(opened.KeepCopyOf(file));
    EXPECT_THAT(Copies(), ElementsAre("disc.dsd"));
    EXPECT_EQ(TextOf(state.path() / "backup" / "disc.dsd"), "old");
    EXPECT_EQ(StatusOf(state.path() / "backup").st_mode & 07777U, 0700U);
    opened.Note(file);
    fs::remove(file);
    EXPECT_FALSE(opened.KeepCopyOf(file)) << "there is nothing to keep";
    fs::resize_file(folder.File("disc.dsd", "large"), std::uintmax_t{10} << 30U);
    EXPECT_EQ(ReasonOf(opened.KeepCopyOf(file)), "It is too large to be copied");
}

TEST_F(Files, OfTheCopiesTheNewestFiftyStay) {
    std::set<std::string> kept;
    for (int i = 0; i < 52; ++i) {
        static_cast<void>(folder.File("disc.dsd", std::to_string(i)));
        const auto copy = KeepCopy(file);
        ASSERT_TRUE(std::holds_alternative<fs::path>(copy));
        // The system's clock for files stands still for some milliseconds.
        fs::last_write_time(std::get<fs::path>(copy),
                            fs::file_time_type::clock::now() - std::chrono::hours(100 - i));
    }
    for (const std::string& name : Copies())
        kept.insert(TextOf(state.path() / "backup" / name));
    EXPECT_EQ(kept.size(), 50U);
    EXPECT_FALSE(kept.contains("0") || kept.contains("1")) << "the oldest";
}

TEST(FileNames, AreShownInUtf8) {
    EXPECT_EQ(FileName("/a/b/caf\xC3\xA9.ssd"), "caf\xC3\xA9.ssd");
    EXPECT_EQ(FileName("/a/\x80\xE9.ssd"), "\xC2\x80\xC3\xA9.ssd")
        << "not UTF-8, so taken as Latin-1";
    EXPECT_EQ(FileName("disc.ssd"), "disc.ssd");
}

} // namespace
} // namespace quoravel
