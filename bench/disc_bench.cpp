#include "disc/image_files.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "medians.h"
#include "support/disc_builder.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr const char* kPlainRead = "PlainRead";
constexpr const char* kLoad = "LoadDsd";
constexpr const char* kList = "ListFullCatalogue";

/// A two-sided image, both Watford catalogues full, as a file for as long as this lives.
class ImageFile {
  public:
    ImageFile() {
        for (const int drive : {0, 1})
            DiscBuilder(drive, DiscBuilder::kWatford).Fill(31, 31);
        if (SaveDisc_DSD(path))
            std::perror(path.c_str());
    }

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    ~ImageFile() { fs::remove(path); }

    const fs::path path = fs::temp_directory_path() / "quoravel-bench.dsd";
};

/// The yardstick: the file, whole, in memory of its own.
void PlainRead(benchmark::State& state, const fs::path& path) {
    for ([[maybe_unused]] auto _ : state) {
        std::vector<unsigned char> bytes(fs::file_size(path));
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                                   &std::fclose);
        std::setbuf(file.get(), nullptr);
        if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size())
            state.SkipWithError("short read");
        benchmark::DoNotOptimize(bytes.data());
    }
}

/// Both free space tables are part of it.
void Load(benchmark::State& state, const fs::path& path) {
    for ([[maybe_unused]] auto _ : state) {
        if (LoadDisc_DSD(path))
            state.SkipWithError("does not load");
        benchmark::DoNotOptimize(Module1::FreeSpaceLen);
    }
}

void List(benchmark::State& state) {
    if (ListFiles(0).size() != 62)
        state.SkipWithError("the catalogue is not full");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(SortedListFiles(0));
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    const ImageFile image;
    benchmark::RegisterBenchmark(kPlainRead, PlainRead, image.path);
    benchmark::RegisterBenchmark(kLoad, Load, image.path);
    benchmark::RegisterBenchmark(kList, List);
    auto median = RunAll(argc, argv);
    std::printf(
        "\nLoading a .dsd with both free space tables: %.2f times a plain read (at most 2)\n"
        "Listing a full catalogue of 62 files: %.1f us (under 50)\n",
        median[kLoad] / median[kPlainRead], median[kList] / 1000);
    return 0;
}
