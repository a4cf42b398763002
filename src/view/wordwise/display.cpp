// Writing lines to the view.

#include "platform/host.h"
#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

namespace quoravel::WordWise {

namespace {

void Show(int c) {
    const char character = static_cast<char>(c);
    state.view->ShowData({&character, 1});
}

[[nodiscard]] bool CanBeShown(int c) {
    return c == kParagraphEnd || (c >= kSpace && c < kIgnored);
}

/// Obeys the commands that wait at a position with this byte.
void ObeyMark(int byte) {
    if ((byte & kMark) != 0)
        EmbeddedCommandSequence();
}

} // namespace

// Meant: the pound sign goes out whatever it is, and a hard space that is the pound sign's own code
// never becomes a space.
void DisplayCharacter(int c) {
    if (!CanBeShown(c))
        return;
    if (c == kPound)
        Show(state.PoundSign);
    else
        Show(c == state.PadCharacter ? kSpace : c);
}

void DisplayOutputBuffer() {
    const int last = state.OutputPointer; // the commands on the line may move it
    Yield();
    for (int i = 0; i < state.FLValue; ++i)
        DisplayCharacter(kSpace);
    state.StackPointer = 0;
    ObeyMark(state.OutputBuffer.Byte(0));
    for (int position = 1; position <= last; ++position) {
        const int byte = state.OutputBuffer.Byte(position);
        DisplayCharacter(byte & kCharacterBits);
        ObeyMark(byte);
    }
}

void DisplayCR() {
    DisplayCharacter(kParagraphEnd);
    ++state.LineNumber;
    state.CarryFlag = state.LineNumber <= LinesLeft();
}

} // namespace quoravel::WordWise
