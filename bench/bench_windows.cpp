#include "disc/module1.h"
#include "documents.h"
#include "measure.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/qt_host.h"
#include "platform/text.h"
#include "view/frmView.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <QApplication>
#include <QEvent>

#include <functional>
#include <memory>
#include <optional>
#include <string>

// A view that fills its window, against one insertion of the same text into the same control. The
// windows are open and painted before a clock starts.

namespace quoravel {

namespace {

using View = std::shared_ptr<frmView>;
using Opener = std::function<View()>; ///< makes the view with its Tag

/// Text of one style, with the line ends of the control.
struct Piece {
    std::string text;
    bool underline = false;
    bool bold = false;
};

View OpenWindow(const Opener& make) {
    View view = make();
    view->resize(611, 380);
    view->show();
    QApplication::processEvents();
    return view;
}

EditField& TextOf(const View& view) {
    return *view->findChild<EditField*>();
}

/// Notes when a control is first painted with more lines than it can show.
class FirstPage : public QObject {
  public:
    explicit FirstPage(EditField& field) : field_(field) {
        field.viewport()->installEventFilter(this);
    }

    std::optional<Clock::time_point> painted;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        constexpr int kPage = 40;
        if (event->type() == QEvent::Paint && !painted && field_.blockCount() > kPage)
            painted = Clock::now();
        return false;
    }

  private:
    EditField& field_;
};

/// From the command to the first page, the opening of the window included.
double MillisecondsToFirstPage(const Opener& make) {
    const auto start = Clock::now();
    const View view = OpenWindow(make);
    const FirstPage first(TextOf(view));
    view->Show_File();
    Check(first.painted.has_value(), "a page is painted");
    return std::chrono::duration<double, std::milli>(*first.painted - start).count();
}

/// The benchmark of one kind of view, all of whose text is `pieces`.
void MeasureView(const char* what, const Opener& make, const std::vector<Piece>& pieces) {
    std::size_t size = 0;
    for (const Piece& piece : pieces)
        size += piece.text.size();
    const auto in_window = [&](const auto& work) {
        const View view = OpenWindow(make);
        const double seconds = CpuSeconds([&] { work(*view, TextOf(view)); });
        Check(TextOf(view).Text().size() == size, "the view is complete");
        return seconds;
    };
    const auto insert = [&](frmView& /*view*/, EditField& text) {
        for (const Piece& piece : pieces) {
            text.SetSelUnderline(piece.underline);
            text.SetSelBold(piece.bold);
            text.SetSelText(piece.text);
        }
        text.Refresh();
    };
    const auto fill = [](frmView& view, EditField& /*text*/) { view.Show_File(); };
    const Medians times = ByTurns(
        25, [&] { return in_window(fill); }, [&] { return in_window(insert); });
    std::printf("%s: %.2f times one insertion (at most 3)\n"
                "First page: %.1f ms from the command (at most 100)\n",
                what, times.ratio, MillisecondsToFirstPage(make));
}

Opener ViewOf(const ListRow& file, int tag) {
    return [=] {
        auto view = std::make_shared<frmView>(file);
        view->Tag = tag;
        return view;
    };
}

void MeasureHex() {
    const Opener make = ViewOf({"$.DRIVE", " ", "000000", "000000", "032000", "000"}, kHexView);
    View whole = OpenWindow(make);
    whole->Show_File();
    const std::string text = TextOf(whole).Text();
    whole.reset();
    MeasureView("Hex view of 12 800 lines", make, {{text}});
}

class StyledText : public ViewSink {
  public:
    std::vector<Piece> pieces;

    void ShowData(std::string_view text) override {
        if (pieces.empty() || pieces.back().underline != WordWise::Underline ||
            pieces.back().bold != WordWise::DoubleStrike)
            pieces.push_back({"", WordWise::Underline, WordWise::DoubleStrike});
        pieces.back().text += text == "\r" ? "\r\n" : text;
    }
};

void MeasureProse() {
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    StyledText text;
    WordWise::FormatDocument(text);
    const ListRow file{"$.PROSE", " ", "FFFFFF", "FFFFFF", Hex(PutProse(), 6), "002"};
    MeasureView("60 KB of prose", ViewOf(file, kWordwiseView), text.pieces);
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    const quoravel::QtHost desktop;
    quoravel::Module1::Init();
    quoravel::MeasureHex();
    quoravel::MeasureProse();
    return 0;
}
