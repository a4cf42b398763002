// The formatter's eyes: characters, commands' parameters and numbers of the document.

#include "disc/module1.h"
#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

#include <algorithm>

namespace quoravel::WordWise {

int DocumentByte(int place) {
    return Module1::DiscImg.Byte(state.offset + place);
}

int FindByte(int byte, int place) {
    const auto rest = Module1::DiscImg.Part(state.offset + place, kDiscBytes);
    const auto found = std::ranges::find(rest, byte);
    if (found == rest.end())
        return std::max(kDiscBytes - state.offset, state.size);
    return place + static_cast<int>(found - rest.begin());
}

void ProcessSpace() {
    state.TempInputPointer = state.InputPointer;
    state.TempOutputPointer = state.OutputPointer;
    state.CarryFlag = false;
}

void ProcessChar() {
    for (;;) {
        if (++state.InputPointer >= state.size) {
            state.RegA = kEndOfText;
            state.CarryFlag = true;
            return;
        }
        state.RegA = DocumentByte(state.InputPointer);
        if (state.RegA == kSpace || state.RegA == kSoftComma)
            return ProcessSpace();
        if (state.RegA == kCommandStart) {
            ProcessCommand();
            if (state.CarryFlag)
                return;
        } else if (state.RegA != kIgnored && state.RegA != kIgnoredToo) {
            state.CarryFlag = state.RegA == kParagraphEnd || state.RegA == kEndOfText;
            return;
        }
    }
}

void GetNextChar() {
    for (int d = 0;; ++d) {
        const int place = state.InputPointer + d;
        state.CarryFlag = false;
        if (place < state.size)
            state.RegA = DocumentByte(place);
        if (place >= state.size || state.RegA == kCommandEnd || state.RegA == kParagraphEnd) {
            state.InputPointer = place;
            return;
        }
        if (state.RegA == kCommandStart) {
            state.InputPointer = place - 1;
            return;
        }
        if (state.RegA == kComma) {
            state.InputPointer = place + 1;
            state.CarryFlag = true;
            return;
        }
    }
}

void SkipCommand() {
    do
        GetNextChar();
    while (state.CarryFlag);
}

int GetDigit() {
    const int digit = DocumentByte(state.InputPointer + state.RegY);
    state.CarryFlag = digit < '0' || digit > '9';
    return state.CarryFlag ? 0 : digit & 15;
}

int GetNumber() {
    state.RegY = 0;
    int number = GetDigit();
    if (state.CarryFlag)
        return 0;
    // Meant: RegY is left at 2 after three digits, too, and a fourth is not read.
    for (state.RegY = 1;; ++state.RegY) {
        const int digit = GetDigit();
        if (state.CarryFlag)
            break;
        number = number * 10 + digit;
        if (state.RegY == 2)
            break;
    }
    state.CarryFlag = false;
    return number;
}

} // namespace quoravel::WordWise
