#pragma once

#include "medians.h"
#include "platform/qt/edit_field.h"
#include "view/frmView.h"

#include <QApplication>
#include <QEvent>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A view that fills its window, against one insertion of the same text into the same control. The
// windows are open and painted before a clock starts.

namespace quoravel {

using View = std::shared_ptr<frmView>;
using Opener = std::function<View()>; ///< makes the view with its Tag

/// Text of one style, with the line ends of the control.
struct Piece {
    std::string text;
    bool underline = false;
    bool bold = false;
};

inline View OpenWindow(const Opener& make) {
    constexpr QSize kSize(611, 380);
    View view = make();
    view->resize(kSize);
    view->show();
    QApplication::processEvents();
    return view;
}

inline EditField& TextOf(const View& view) {
    return *view->findChild<EditField*>();
}

/// Measures `act` on a window that is open.
inline void InWindow(benchmark::State& state, const Opener& make,
                     const std::function<void(frmView&, EditField&)>& act, std::size_t size) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow(make);
        EditField& text = TextOf(view);
        state.ResumeTiming();
        act(*view, text);
        state.PauseTiming();
        if (text.Text().size() != size)
            state.SkipWithError("the view is not complete");
        state.ResumeTiming();
    }
}

/// Notes when a control is first painted with more lines than it can show.
class FirstPage : public QObject {
  public:
    explicit FirstPage(EditField& field) : field_(field) {
        field.viewport()->installEventFilter(this);
    }

    std::optional<std::chrono::steady_clock::time_point> painted;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        constexpr int kPage = 40;
        if (event->type() == QEvent::Paint && !painted && field_.blockCount() > kPage)
            painted = std::chrono::steady_clock::now();
        return false;
    }

  private:
    EditField& field_;
};

/// From the command to the first page, the opening of the window included.
inline double MillisecondsToFirstPage(const Opener& make) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const View view = OpenWindow(make);
    const FirstPage first(TextOf(view));
    view->Show_File();
    return std::chrono::duration<double, std::milli>(first.painted.value_or(Clock::now()) - start)
        .count();
}

/// The benchmark of one kind of view, all of whose text is `pieces`.
inline void MeasureView(int argc, char** argv, const char* what, const Opener& make,
                        const std::vector<Piece>& pieces) {
    std::size_t size = 0;
    for (const Piece& piece : pieces)
        size += piece.text.size();
    const auto insert = [&](frmView&, EditField& text) {
        for (const Piece& piece : pieces) {
            text.SetSelUnderline(piece.underline);
            text.SetSelBold(piece.bold);
            text.SetSelText(piece.text);
        }
        text.Refresh();
    };
    const auto fill = [](frmView& view, EditField&) { view.Show_File(); };
    benchmark::RegisterBenchmark("OneInsertion", InWindow, make, insert, size)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("View", InWindow, make, fill, size)->Unit(benchmark::kMillisecond);
    auto median = RunAll(argc, argv);
    std::printf("%s: %.2f times one insertion (at most 3)\n"
                "First page: %.1f ms from the command (at most 100)\n",
                what, median["View"] / median["OneInsertion"], MillisecondsToFirstPage(make));
}

} // namespace quoravel
