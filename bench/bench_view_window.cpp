#include "disc/module1.h"
#include "medians.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/qt_host.h"
#include "view/frmView.h"

#include <QApplication>
#include <QEvent>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

// A hex view of a whole drive, 12 800 lines, against one insertion of the same text into the same
// control. The windows are open and painted before the clock starts, and painted when it stops.

namespace quoravel {

namespace {

using Clock = std::chrono::steady_clock;
using View = std::shared_ptr<frmView>;

constexpr const char* kBulk = "OneInsertion";
constexpr const char* kFill = "HexView";
constexpr QSize kSize(611, 380);

View OpenWindow() {
    const ListRow drive{"$.DRIVE", " ", "000000", "000000", "032000", "000"};
    auto view = std::make_shared<frmView>(drive);
    view->Tag = kHexView;
    view->resize(kSize);
    view->show();
    QApplication::processEvents();
    return view;
}

EditField& TextOf(const View& view) {
    return *view->findChild<EditField*>();
}

std::string WholeText() {
    const View view = OpenWindow();
    view->Show_File();
    return TextOf(view).Text();
}

void OneInsertion(benchmark::State& state, const std::string& text) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow();
        state.ResumeTiming();
        TextOf(view).SetSelText(text);
        TextOf(view).Refresh();
    }
}

void HexView(benchmark::State& state, const std::string& text) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow();
        state.ResumeTiming();
        view->Show_File();
        state.PauseTiming();
        if (TextOf(view).Text() != text)
            state.SkipWithError("the view is not complete");
        state.ResumeTiming();
    }
}

/// Notes when a control is first painted with more text than it can show.
class FirstPage : public QObject {
  public:
    explicit FirstPage(EditField& field) : field_(field) {
        field.viewport()->installEventFilter(this);
    }

    std::optional<Clock::time_point> painted;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        constexpr std::size_t kPage = 40UL * 76;
        if (event->type() == QEvent::Paint && !painted && field_.Text().size() > kPage)
            painted = Clock::now();
        return false;
    }

  private:
    EditField& field_;
};

/// From the command to the first page, the opening of the window included.
double MillisecondsToFirstPage() {
    const auto start = Clock::now();
    const View view = OpenWindow();
    const FirstPage first(TextOf(view));
    view->Show_File();
    return std::chrono::duration<double, std::milli>(first.painted.value_or(Clock::now()) - start)
        .count();
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
    benchmark::RegisterBenchmark(kFill, HexView, text)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    std::printf("Hex view of 12 800 lines: %.2f times one insertion (at most 3)\n"
                "First page: %.1f ms from the command (at most 100)\n",
                medians.nanoseconds[kFill] / medians.nanoseconds[kBulk], MillisecondsToFirstPage());
    return 0;
}
