#include "disc/disc_block.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "exchange/export.h"
#include "exchange/import.h"
#include "medians.h"
#include "support/temp_folder.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <optional>

// A full Watford disc of small files, in and out again, against the bare copying of the same files.

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 62;
constexpr std::size_t kHostFiles = 124; ///< each with its sidecar
constexpr std::size_t kFileBytes = 3072;
constexpr const char* kCopy = "BareCopy";
constexpr const char* kExchange = "ImportAndExport";

/// 62 files of 3 KB, each with its sidecar; gives the data files.
std::vector<fs::path> FilesToImport(const TempFolder& folder) {
    std::vector<fs::path> files;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "$.FILE" + std::to_string(10 + i);
        files.push_back(folder.File(name, std::string(kFileBytes, 'x')));
        folder.File(name + ".INF", name + "   001900 008023 000C00   \n");
    }
    return files;
}

/// A fresh folder for each turn; making and removing it is not measured.
class Target {
  public:
    explicit Target(benchmark::State& state) : state_(state) {}

    void Renew() {
        state_.PauseTiming();
        if (folder_ && folder_->Names().size() != kHostFiles)
            state_.SkipWithError("a file is missing");
        folder_.emplace();
        state_.ResumeTiming();
    }

    [[nodiscard]] const fs::path& path() const { return folder_->path(); }

  private:
    benchmark::State& state_;
    std::optional<TempFolder> folder_;
};

/// The yardstick: data and sidecars, file by file.
void BareCopy(benchmark::State& state, const fs::path& source) {
    Target target(state);
    for ([[maybe_unused]] auto _ : state) {
        target.Renew();
        for (const auto& file : fs::directory_iterator(source))
            fs::copy_file(file.path(), target.path() / file.path().filename());
    }
}

void ImportAndExport(benchmark::State& state, const std::vector<fs::path>& files) {
    Target target(state);
    for ([[maybe_unused]] auto _ : state) {
        target.Renew();
        NewDisc(0, kDriveTracks, true);
        for (const fs::path& file : files)
            benchmark::DoNotOptimize(ImportFile(0, file));
        for (const ListRow& row : SortedListFiles(0))
            benchmark::DoNotOptimize(ExportRow(row, 0, target.path()));
    }
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    const TempFolder source;
    const auto files = FilesToImport(source);
    benchmark::RegisterBenchmark(kCopy, BareCopy, source.path())->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(kExchange, ImportAndExport, files)->Unit(benchmark::kMicrosecond);
    auto median = RunAll(argc, argv);
    std::printf("\nImporting %d files of 3 KB and exporting them again: %.2f times their bare "
                "copying (at most 2)\n",
                kFiles, median[kExchange] / median[kCopy]);
    return 0;
}
