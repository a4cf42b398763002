#pragma once

#include "platform/qt/edit_field.h"
#include "view/frmView.h"

#include <QApplication>
#include <QEvent>

#include <benchmark/benchmark.h>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

// What measures of view windows share. The windows are open and painted before a clock starts.

namespace quoravel {

using View = std::shared_ptr<frmView>;
using Opener = std::function<View()>; ///< makes the view with its Tag

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

/// Fills views that are to have `size` bytes in the end.
inline void FillViews(benchmark::State& state, const Opener& make, std::size_t size) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow(make);
        state.ResumeTiming();
        view->Show_File();
        state.PauseTiming();
        if (TextOf(view).Text().size() != size)
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

} // namespace quoravel
