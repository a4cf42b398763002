// Building a line from the document.

#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

#include <algorithm>
#include <span>

namespace quoravel::WordWise {

namespace {

void StartLine() {
    state.TempOutputPointer = 0;
    state.StackPointer = 0;
    const int indent = state.CentreMode ? 0 : state.Indent;
    for (int position = 0; position <= indent; ++position)
        state.OutputBuffer.SetByte(position, kSpace);
    state.CurIndent = std::min(indent, kLastPosition);
    state.OutputPointer = state.CurIndent;
}

/// Fills the line up to the next tab stop, which then is a place to break the line at. On a stop,
/// and behind the last one, it does nothing.
void Tab() {
    const int c = state.OutputPointer + 1;
    const auto stops = std::span(state.TabStops).subspan(1);
    const auto stop = std::ranges::find_if(stops, [c](int s) { return s >= c; });
    if (stop == stops.end() || *stop == c)
        return;
    for (int position = c; position < *stop; ++position)
        state.OutputBuffer.SetByte(position, state.PadCharacter);
    state.OutputPointer = std::min(*stop - 1, kLastPosition);
    ProcessSpace();
}

/// Ends a line that has no room for the character in RegA.
void BreakLine() {
    if (state.RegA == kSpace) {
        state.CarryFlag = false;
    } else if (state.TempOutputPointer != 0) {
        state.InputPointer = state.TempInputPointer;
        state.OutputPointer = state.TempOutputPointer;
        state.CarryFlag = false;
    } else {
        --state.InputPointer; // the word goes on in the next line
    }
}

} // namespace

void PutNext(int character) {
    state.OutputPointer = (state.OutputPointer + 1) & kByte;
    state.OutputBuffer.SetByte(state.OutputPointer, character);
}

bool AtLineStart() {
    return state.OutputPointer == state.CurIndent;
}

void PrepareLine() {
    StartLine();
    for (;;) {
        ProcessChar();
        if (state.CarryFlag)
            return;
        if (state.RegA == kTab) {
            Tab();
            continue;
        }
        state.RegA &= kCharacterBits;
        if (state.OutputPointer >= state.LineLength)
            return BreakLine();
        PutNext(state.RegA);
    }
}

// Meant: with 0 the count runs through all its values, so it clears 256 positions and leaves both
// pointers at 0. A count that can never be met ends there, too.
void PadSpaces(int n) {
    int d = 0;
    do {
        d = (d + 1) & kByte;
        state.OutputBuffer.SetByte(state.OutputPointer + d, kSpace);
    } while (d != n && d != 0);
    state.OutputPointer = d;
    state.CurIndent = d;
}

} // namespace quoravel::WordWise
