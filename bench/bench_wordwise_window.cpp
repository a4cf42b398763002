#include "disc/module1.h"
#include "documents.h"
#include "medians.h"
#include "platform/qt/qt_host.h"
#include "platform/text.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"
#include "view_window.h"

#include <cstdio>
#include <string>
#include <vector>

// 60 KB of prose in its window, against one insertion of the same styled text into the same
// control.

namespace quoravel {

namespace {

constexpr const char* kBulk = "OneInsertion";
constexpr const char* kFill = "Document";

View ProseView() {
    const ListRow file{"$.PROSE", " ", "FFFFFF", "FFFFFF", Hex(PutProse(), 6), "002"};
    auto view = std::make_shared<frmView>(file);
    view->Tag = kWordwiseView;
    return view;
}

/// Text of one style, with the line ends of the control.
struct Piece {
    std::string text;
    bool underline;
    bool bold;
};

class Pieces : public ViewSink {
  public:
    std::vector<Piece> all;

    void ShowData(std::string_view text) override {
        if (all.empty() || all.back().underline != WordWise::Underline ||
            all.back().bold != WordWise::DoubleStrike)
            all.push_back({"", WordWise::Underline, WordWise::DoubleStrike});
        all.back().text += text == "\r" ? "\r\n" : text;
    }
};

void OneInsertion(benchmark::State& state, const std::vector<Piece>& pieces) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const View view = OpenWindow(ProseView);
        EditField& text = TextOf(view);
        state.ResumeTiming();
        for (const Piece& piece : pieces) {
            text.SetSelUnderline(piece.underline);
            text.SetSelBold(piece.bold);
            text.SetSelText(piece.text);
        }
        text.Refresh();
    }
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    QApplication app(argc, argv);
    const QtHost desktop;
    Module1::Init();
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    Pieces pieces;
    WordWise::FormatDocument(pieces);
    std::size_t size = 0;
    for (const Piece& piece : pieces.all)
        size += piece.text.size();
    benchmark::RegisterBenchmark(kBulk, OneInsertion, pieces.all)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(kFill, FillViews, ProseView, size)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    std::printf("60 KB of prose: %.2f times one insertion (at most 3)\n"
                "First page: %.1f ms from the command (at most 100)\n",
                medians.nanoseconds[kFill] / medians.nanoseconds[kBulk],
                MillisecondsToFirstPage(ProseView));
    return 0;
}
