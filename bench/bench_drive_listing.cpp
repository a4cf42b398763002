#include "disc/image_files.h"
#include "disc/module1.h"
#include "exchange/audit.h"
#include "measure.h"
#include "support/disc_builder.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

// The *EX listing of 10000 images in 500 folders against the bare reading of the same files, and
// the walk alone over 100000 files against find. The files lie in memory by then.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr int kFolders = 500;
constexpr int kImagesAFolder = 20;
constexpr int kSmallFilesAFolder = 200;
constexpr int kTurns = 5;

/// Notes the longest time between two looks at the events.
class WatchedHost : public RealClockHost {
  public:
    void DoEvents(int /*milliseconds*/) override {
        const auto start = std::exchange(last, Clock::now());
        longest = std::max(longest, last - start);
    }

    Clock::duration longest{0};
    Clock::time_point last = Clock::now();
};

struct NoWindow : ListingProgress {
    void SetImages(std::string_view /*text*/) override {}

    void SetProgress(int /*percent*/) override {}
};

template<class Each>
void InFolders(const fs::path& tree, Each each) {
    for (int i = 0; i < kFolders; ++i) {
        const fs::path folder = tree / std::to_string(i);
        fs::create_directories(folder);
        each(folder);
    }
}

void MakeImages(const fs::path& tree) {
    DiscBuilder(0).Fill(31);
    const auto bytes = Module1::DiscImg.Part(0, kDriveBytes);
    const TempFolder one;
    const fs::path image = one.File("a.ssd", bytes);
    InFolders(tree, [&](const fs::path& folder) {
        for (int i = 0; i < kImagesAFolder; ++i)
            fs::copy_file(image, folder / (std::to_string(i) + ".ssd"));
    });
}

void MakeSmallFiles(const fs::path& tree) {
    InFolders(tree, [&](const fs::path& folder) {
        for (int i = 0; i < kSmallFilesAFolder; ++i)
            ::close(::open((folder / std::to_string(i)).c_str(), O_CREAT | O_WRONLY, 0600));
    });
}

/// The yardstick: each file whole, one after the other, with plain system calls.
void ReadAll(const std::vector<fs::path>& images) {
    static std::vector<char> buffer(kDriveBytes);
    for (const fs::path& image : images) {
        const int fd = ::open(image.c_str(), O_RDONLY);
        while (::read(fd, buffer.data(), buffer.size()) > 0) {
        }
        ::close(fd);
    }
}

std::vector<fs::path> Walk(const fs::path& tree) {
    ImageAudit audit;
    audit.found = [](int) {};
    AuditDirectories(audit, tree);
    return audit.ImageList;
}

long PeakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss; // KB
}

void BenchListing(WatchedHost& host) {
    const TempFolder tree;
    MakeImages(tree.path());
    const auto images = Walk(tree.path());
    const TempFolder out;
    NoWindow window;
    const long before = PeakMemory();
    host.longest = {};
    const Medians times = ByTurns(
        kTurns,
        [&] {
            host.last = Clock::now();
            return Seconds([&] { ListImagesBelow(tree.path(), out.path() / "exall.txt", window); });
        },
        [&] { return Seconds([&] { ReadAll(images); }); });
    std::printf("%zu images listed: %.2f s, read: %.2f s, ratio %.2f (at most 1.5)\n",
                images.size(), times.ours, times.yardstick, times.ratio);
    std::printf("longest time without a look at the events: %.1f ms (at most 50); "
                "memory grew by %ld KB\n",
                std::chrono::duration<double, std::milli>(host.longest).count(),
                PeakMemory() - before);
}

void BenchWalk() {
    const TempFolder tree;
    MakeSmallFiles(tree.path());
    const std::string find = "find " + tree.path().string() + " -type f >/dev/null";
    const Medians times = ByTurns(
        kTurns, [&] { return Seconds([&] { static_cast<void>(Walk(tree.path())); }); },
        [&] { return Seconds([&] { Check(std::system(find.c_str()) == 0, "find finds"); }); });
    std::printf("%d files walked: %.1f ms, find: %.1f ms, ratio %.2f (at most 2)\n",
                kFolders * kSmallFilesAFolder, times.ours * 1e3, times.yardstick * 1e3,
                times.ratio);
}

} // namespace

} // namespace quoravel

int main() {
    quoravel::WatchedHost host;
    quoravel::Module1::Init();
    quoravel::BenchListing(host);
    quoravel::BenchWalk();
    return 0;
}
