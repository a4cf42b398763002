// The run over a document: pages, with their headings and footings.

#include "disc/module1.h"
#include "platform/text.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

namespace quoravel::WordWise {

namespace {

/// One formatting, from its start to its end. If it was started while another one yields, that one
/// goes on from where it was.
class Run {
  public:
    Run() : outer_(state), underline_(Underline), double_strike_(DoubleStrike) {}

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    ~Run() {
        state.view = nullptr;
        if (outer_.view == nullptr)
            return;
        state = outer_;
        Underline = underline_;
        DoubleStrike = double_strike_;
    }

  private:
    State outer_;
    bool underline_;
    bool double_strike_;
};

/// The lines above or below the text. What `space`, `position` and `text` refer to may change on
/// the way, by commands in the heading itself.
void DisplayMargin(const int& space, const int& position, const int& text) {
    for (int t = 0; t < space; ++t) {
        if (t == position) {
            const int place = state.InputPointer;
            state.InputPointer = text;
            if (text != -1) {
                PrepareLine();
                FormatOutputBuffer();
                DisplayOutputBuffer();
            }
            state.InputPointer = place;
            state.CentreMode = false;
            state.FullyIndentMode = false;
        }
        DisplayCR();
    }
}

/// Shows what stands before a command that asks for line ends. True if it does: RegY says how many.
bool ShowBeforeLineEnds() {
    const bool carry = state.CarryFlag;
    bool line_ends = false;
    if (carry && state.RegA == kLineEnds) {
        state.RegY = state.RegX;
        DisplayOutputBuffer(); // Meant: a command that waits on the line may change RegY.
        line_ends = state.RegY != 0;
    }
    state.CarryFlag = carry;
    return line_ends;
}

/// Shows the line. False if it was the last one, which has no end.
bool ShowLine() {
    FormatOutputBuffer();
    const bool last = state.CarryFlag && state.RegA == kEndOfText;
    DisplayOutputBuffer();
    if (last)
        return false;
    if (state.CentreMode && --state.CentreValue == 0)
        state.CentreMode = false;
    state.RegY = state.LineSpacing;
    return true;
}

/// Sends RegY line ends. False as soon as the page is full.
/// Meant: a count of 0 fills the page.
bool SendLineEnds() {
    do {
        DisplayCR();
        if (!state.CarryFlag)
            return false;
    } while (--state.RegY != 0);
    return true;
}

/// Shows a page. False if the document ended on it.
/// Meant: its first line is read once in advance, for its commands, which so run twice.
bool ShowPage() {
    const int place = state.InputPointer;
    PrepareLine();
    state.InputPointer = place;
    state.LineNumber = 1;
    do {
        if (state.EnablePaging && state.LineNumber == 1)
            DisplayHeader();
        PrepareLine();
        if (!ShowBeforeLineEnds() && !ShowLine())
            return false;
    } while (SendLineEnds());
    DisplayFooter();
    ++state.PageNumber;
    return true;
}

} // namespace

bool IsDocument(std::string_view load, std::string_view exec) {
    constexpr std::string_view kAddress = "FFFFFF";
    return EqualIgnoringCase(load, kAddress) && EqualIgnoringCase(exec, kAddress);
}

void DoInit() {
    state = State{};
    state.offset = Module1::gOffset;
    state.size = Module1::gSize;
    Underline = false;
    DoubleStrike = false;
}

void DisplayHeader() {
    DisplayMargin(state.TopSpace, state.HeadingPosition, state.HeaderPointer);
}

void DisplayFooter() {
    DisplayMargin(state.BottomSpace, state.FootingPosition, state.FooterPointer);
}

int LinesLeft() {
    return state.PageLength - state.BottomSpace;
}

// An indent beyond the line's end leaves no room for text. A footing can free it, but after two
// pages on which the document did not move on, nothing will.
void FormatDocument(ViewSink& view) {
    constexpr int kIdlePages = 2;
    const Run run;
    DoInit();
    state.view = &view;
    int idle = 0;
    while (idle < kIdlePages) {
        const int place = state.InputPointer;
        if (!ShowPage())
            return;
        idle = state.InputPointer == place ? idle + 1 : 0;
    }
}

} // namespace quoravel::WordWise
