#include "disc/module1.h"
#include "documents.h"
#include "platform/qt/qt_host.h"
#include "platform/text.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"
#include "view_window.h"

// 60 KB of prose in its window.

namespace quoravel {

namespace {

View ProseView() {
    const ListRow file{"$.PROSE", " ", "FFFFFF", "FFFFFF", Hex(PutProse(), 6), "002"};
    auto view = std::make_shared<frmView>(file);
    view->Tag = kWordwiseView;
    return view;
}

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

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    const QApplication app(argc, argv);
    const QtHost desktop;
    Module1::Init();
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    Pieces pieces;
    WordWise::FormatDocument(pieces);
    MeasureView(argc, argv, "60 KB of prose", ProseView, pieces.all);
    return 0;
}
