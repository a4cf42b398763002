#include "disc/module1.h"
#include "platform/qt/qt_host.h"
#include "view_window.h"

// A hex view of a whole drive in its window.

namespace quoravel {

namespace {

View HexView() {
    const ListRow drive{"$.DRIVE", " ", "000000", "000000", "032000", "000"};
    auto view = std::make_shared<frmView>(drive);
    view->Tag = kHexView;
    return view;
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;

    const QApplication app(argc, argv);
    const QtHost desktop;
    Module1::Init();
    View whole = OpenWindow(HexView);
    whole->Show_File();
    const std::string text = TextOf(whole).Text();
    whole.reset();
    MeasureView(argc, argv, "Hex view of 12 800 lines", HexView, {{text}});
    return 0;
}
