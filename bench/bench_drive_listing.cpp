#include "disc/image_files.h"
#include "disc/module1.h"
#include "exchange/audit.h"
#include "measure.h"
#include "support/disc_builder.h"
#include "support/temp_folder.h"
#include "view/drive_listing.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
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

/// So many files in each of the folders, all with these bytes.
void MakeFiles(const fs::path& tree, int each, const char* extension, std::string_view bytes) {
    for (int folder = 0; folder < kFolders; ++folder) {
        const fs::path path = tree / std::to_string(folder);
        fs::create_directories(path);
        for (int i = 0; i < each; ++i)
            std::ofstream(path / (std::to_string(i) + extension)) << bytes;
    }
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
    DiscBuilder(0).Fill(31);
    const auto bytes = Module1::DiscImg.Part(0, kDriveBytes);
    MakeFiles(tree.path(), kImagesAFolder, ".ssd",
              {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
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
    MakeFiles(tree.path(), kSmallFilesAFolder, "", "");
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
