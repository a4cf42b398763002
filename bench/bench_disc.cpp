#include "disc/image_files.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/export.h"
#include "exchange/import.h"
#include "measure.h"
#include "support/disc_builder.h"
#include "support/temp_folder.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

// Loading, listing, import and export, each against the bare system.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr int kTurns = 9;
constexpr int kFiles = 62;

/// The yardstick of loading: the file, whole, in memory of its own.
void PlainRead(const fs::path& path) {
    std::vector<unsigned char> bytes(fs::file_size(path));
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
    std::setbuf(file.get(), nullptr);
    Check(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size(), "a plain read");
}

/// So many calls, as one takes less than the clock's step.
template<class Work>
double Average(Work work) {
    constexpr int kCalls = 500;
    return CpuSeconds([&] {
               for (int i = 0; i < kCalls; ++i)
                   work();
           }) /
           kCalls;
}

/// A two-sided image, both Watford catalogues full; both free space tables are part of its loading.
void BenchLoading() {
    const TempFolder folder;
    const fs::path image = folder.path() / "image.dsd";
    for (const int drive : {0, 1})
        DiscBuilder(drive, DiscBuilder::kWatford).Fill(31, 31);
    Check(!SaveDisc_DSD(image), "the image is saved");
    const Medians load = ByTurns(
        kTurns, [&] { return Average([&] { Check(!LoadDisc_DSD(image), "it loads"); }); },
        [&] { return Average([&] { PlainRead(image); }); });
    std::printf("Loading a .dsd with both free space tables: %.2f times a plain read (at most 2)\n",
                load.ratio);
}

void BenchListing() {
    std::vector<double> times;
    for (int i = 0; i < kTurns; ++i)
        times.push_back(Average([] { Check(SortedListFiles(0).size() == kFiles, "all files"); }));
    std::printf("Listing a full catalogue of %d files: %.1f us (under 50)\n", kFiles,
                Median(times) * 1e6);
}

/// A full Watford disc of small files, in and out again, against the bare copying of the same
/// files, each with its sidecar.
void BenchExchange() {
    const TempFolder source;
    std::vector<fs::path> files;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "$.FILE" + std::to_string(10 + i);
        files.push_back(source.File(name, std::string(3072, 'x')));
        source.File(name + ".INF", name + "   001900 008023 000C00   \n");
    }
    const auto into_fresh_folder = [](const auto& work) {
        const TempFolder target;
        const double seconds = CpuSeconds([&] { work(target.path()); });
        Check(target.Names().size() == 2 * kFiles, "every file and sidecar arrives");
        return seconds;
    };
    const Medians exchange = ByTurns(
        4 * kTurns,
        [&] {
            return into_fresh_folder([&](const fs::path& target) {
                NewDisc(0, kDriveTracks, true);
                for (const fs::path& file : files)
                    static_cast<void>(ImportFile(0, file));
                for (const ListRow& row : SortedListFiles(0))
                    static_cast<void>(ExportRow(row, 0, target));
            });
        },
        [&] {
            return into_fresh_folder([&](const fs::path& target) {
                for (const auto& file : fs::directory_iterator(source.path()))
                    fs::copy_file(file.path(), target / file.path().filename());
            });
        });
    std::printf("Importing %d files of 3 KB and exporting them again: %.2f times their bare "
                "copying (at most 2)\n",
                kFiles, exchange.ratio);
}

} // namespace

} // namespace quoravel

int main() {
    quoravel::BenchLoading();
    quoravel::BenchListing();
    quoravel::BenchExchange();
    return 0;
}
