#include "disc/module1.h"
#include "medians.h"
#include "platform/qt/qt_host.h"
#include "view_window.h"

#include <cstdio>
#include <string>

// A hex view of a whole drive, 12 800 lines, against one insertion of the same text into the same
// control.

namespace quoravel {

namespace {

constexpr const char* kBulk = "OneInsertion";
constexpr const char* kFill = "HexView";

View HexView() {
    const ListRow drive{"$.DRIVE", " ", "000000", "000000", "032000", "000"};
    auto view = std::make_shared<frmView>(drive);
    view->Tag = kHexView;
    return view;
}

std::string WholeText() {
    const View view = OpenWindow(HexView);
    view->Show_File();
    return TextOf(view).Text();
}

void OneInsertion(benchmark::State& state, const std::string& text) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow(HexView);
        state.ResumeTiming();
        TextOf(view).SetSelText(text);
        TextOf(view).Refresh();
    }
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    QApplication app(argc, argv);
    const QtHost desktop;
    Module1::Init();
    const std::string text = WholeText();
    benchmark::RegisterBenchmark(kBulk, OneInsertion, text)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(kFill, FillViews, HexView, text.size())
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    std::printf("Hex view of 12 800 lines: %.2f times one insertion (at most 3)\n"
                "First page: %.1f ms from the command (at most 100)\n",
                medians.nanoseconds[kFill] / medians.nanoseconds[kBulk],
                MillisecondsToFirstPage(HexView));
    return 0;
}
