// Giving a line its final place: centred, to the right, or justified.

#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

#include <algorithm>

namespace quoravel::WordWise {

namespace {

// Meant: a space at which commands wait is no space for justification, so that none is lost.
[[nodiscard]] bool SpaceAt(int position) {
    return state.OutputBuffer.Byte(position) == kSpace;
}

void RemoveTrailingSpaces() {
    while (state.OutputPointer > state.CurIndent && SpaceAt(state.OutputPointer))
        --state.OutputPointer;
}

[[nodiscard]] bool LineIsFull() {
    return state.OutputPointer >= state.LineLength;
}

/// Widens each gap between two words by one space, from the left or from the right, until the line
/// is full. False if there is no more to do.
bool WidenGaps() {
    const bool forward = state.JustifyDirection == 1;
    const int step = forward ? 1 : -1;
    bool widened = false;
    bool behind_space = true;
    for (int i = forward ? state.CurIndent : state.OutputPointer;
         forward ? i < state.OutputPointer : i > state.CurIndent; i += step) {
        const bool space = SpaceAt(i);
        if (space && !behind_space) {
            MoveOutputBuffer(i);
            if (LineIsFull())
                return false;
            widened = true;
        }
        behind_space = space;
    }
    return widened;
}

void MoveRight(int gap) {
    for (int n = 0; n < gap; ++n)
        MoveOutputBuffer(n);
}

} // namespace

void MoveOutputBuffer(int n) {
    for (int i = state.OutputPointer; i > n; --i)
        state.OutputBuffer.SetByte(i + 1, state.OutputBuffer.Byte(i));
    state.OutputBuffer.SetByte(n + 1, kSpace);
    state.OutputPointer = std::min(state.OutputPointer + 1, kLastPosition);
}

void CentreLine() {
    MoveRight((state.LineLength - state.OutputPointer) / 2);
}

void FullyIndentLine() {
    MoveRight(state.LineLength - state.OutputPointer);
}

void JustifyLine() {
    RemoveTrailingSpaces();
    if (state.OutputPointer <= state.CurIndent || LineIsFull())
        return;
    state.JustifyDirection ^= 1;
    while (WidenGaps()) {
    }
}

void FormatOutputBuffer() {
    const bool paragraph_ends = state.CarryFlag && state.RegA == kParagraphEnd;
    if (state.FullyIndentMode && paragraph_ends) {
        FullyIndentLine();
        state.FullyIndentMode = false;
    } else if (state.CentreMode && paragraph_ends) {
        CentreLine();
    } else if (state.Justify && !state.CarryFlag) {
        JustifyLine();
    }
}

} // namespace quoravel::WordWise
