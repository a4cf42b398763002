// What each command does. InputPointer stands on its first parameter.

#include "platform/host.h"
#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

#include <array>
#include <optional>
#include <string>

namespace quoravel::WordWise {

namespace {

constexpr State kStart;

/// The number that stands here.
std::optional<int> Parameter() {
    const int number = GetNumber();
    return state.CarryFlag ? std::nullopt : std::optional(number);
}

template<bool State::*flag, bool value>
void Set() {
    state.*flag = value;
}

template<bool& flag, bool value>
void SetStyle() {
    flag = value;
}

/// The number that stands here, or how the variable starts.
template<int State::*variable>
void SetOrReset() {
    state.*variable = Parameter().value_or(kStart.*variable);
}

template<int State::*variable>
void SetIfPresent() {
    state.*variable = Parameter().value_or(state.*variable);
}

/// The same for numbers of lines above and below the text.
template<int State::*variable>
void SetLines() {
    constexpr int kTooMany = 80;
    const int n = Parameter().value_or(kTooMany);
    state.*variable = n < kTooMany ? n : kStart.*variable;
}

void SkipWith(int reg_x) {
    state.RegX = reg_x;
    SkipCommand();
    state.RegA = kLineEnds;
    state.CarryFlag = true;
}

void BeginPage() {
    SkipWith(kLineEnds); // as many as this, or until the page is full
}

// --- Indents.

/// The indent that IN and TI ask for.
int IndentParameter() {
    constexpr int kLeastText = 10;
    const int n = Parameter().value_or(0);
    return state.LineLength > n + kLeastText ? n : 0;
}

void PadAtLineStart(int n) {
    if (AtLineStart())
        PadSpaces(n);
}

void IN() {
    const int n = IndentParameter();
    PadAtLineStart(n);
    state.Indent = n;
}

void TI() {
    PadAtLineStart(IndentParameter());
    SkipCommand();
}

void CI() {
    PadAtLineStart(0);
    state.Indent = 0;
}

void StartAtTheMargin() {
    state.OutputPointer = 0;
    state.CurIndent = 0;
}

void CE() {
    state.CentreValue = Parameter().value_or(1);
    StartAtTheMargin();
    state.CentreMode = true;
    SkipCommand();
}

void FI() {
    StartAtTheMargin();
    state.FullyIndentMode = true;
    SkipCommand();
}

// --- Measures of line and page.

void LL() {
    constexpr int kLeastText = 10;
    const int n = Parameter().value_or(0);
    state.LineLength = n - 1 - state.Indent < kLeastText ? kStart.LineLength : n;
}

void PL() {
    constexpr int kLeast = 10;
    const int n = Parameter().value_or(0);
    state.PageLength = n < kLeast ? kStart.PageLength : n;
}

// Meant: a list of stops that is empty or ends in a comma loses those that it has just set.
void DT() {
    for (std::size_t i = 1; i < state.TabStops.size(); ++i) {
        const auto stop = Parameter();
        if (!stop) {
            state.TabStops = kStart.TabStops;
            return;
        }
        state.TabStops[i] = *stop;
        GetNextChar();
        if (!state.CarryFlag)
            return;
    }
}

void SP() {
    const int n = Parameter().value_or(0);
    n != 0 ? SkipWith(n) : SkipCommand();
}

void BP() {
    state.EnablePaging ? BeginPage() : SkipCommand();
}

void CP() {
    const auto n = Parameter();
    n&& state.LineNumber + *n - 1 > LinesLeft() ? BeginPage() : SkipCommand();
}

// --- Texts and characters.

template<int State::*pointer>
void DefineText() {
    SkipCommand();
    state.*pointer = state.InputPointer;
    state.InputPointer = FindByte(kParagraphEnd, state.InputPointer + 1);
    state.CarryFlag = false;
}

void PC() {
    const int c = DocumentByte(state.InputPointer);
    state.PadCharacter = c < kSpace || c >= kIgnored ? kStart.PadCharacter : c;
}

void PP() {
    for (const char digit : std::to_string(state.PageNumber)) {
        Yield();
        PutNext(digit);
    }
    state.CarryFlag = false;
}

/// The file that is named is not fetched: this passes its name, without a trace.
void GF() {
    state.InputPointer = FindByte('"', state.InputPointer + 1);
}

/// Codes for the printer. RegY is left as GetNumber leaves it.
void OC() {
    do {
        static_cast<void>(GetNumber());
        state.InputPointer += state.RegY;
        GetNextChar();
    } while (state.CarryFlag);
}

void Nothing() {
}

constexpr int kAtLineStart130 = 128 | kAtLineStart;

constexpr std::array<cmdTable, 39> table{{
    {"IN", kWhenMet, IN},
    {"TI", kAtLineStart, TI},
    {"CI", kWhenMet, CI},
    {"FL", kWhenMet, SetOrReset<&State::FLValue>},
    {"LL", kWhenMet, LL},
    {"PL", kWhenMet, PL},
    {"TS", kWhenMet, SetLines<&State::TopSpace>},
    {"BS", kWhenMet, SetLines<&State::BottomSpace>},
    {"LS", kWhenMet, SetOrReset<&State::LineSpacing>},
    {"CE", kAtLineStart, CE},
    {"SP", kAtLineStart, SP},
    {"BP", kAtLineStart130, BP},
    {"PN", kWhenMet, SetIfPresent<&State::PageNumber>},
    {"CP", kAtLineStart130, CP},
    {"PC", kWhenMet, PC},
    {"DH", kWhenMet, DefineText<&State::HeaderPointer>},
    {"DF", kWhenMet, DefineText<&State::FooterPointer>},
    {"JO", kWhenMet, Set<&State::Justify, true>},
    {"NJ", kWhenMet, Set<&State::Justify, false>},
    {"SS", kWhenMet, [] { state.LineSpacing = 1; }},
    {"CO", kWhenMet, Set<&State::EnablePaging, false>},
    {"EP", kWhenMet, Set<&State::EnablePaging, true>},
    {"DT", kWhenMet, DT},
    {"GF", kWhileDisplayed, GF},
    {"OC", kWhileDisplayed, OC},
    {"HP", kWhenMet, SetLines<&State::HeadingPosition>},
    {"FP", kWhenMet, SetLines<&State::FootingPosition>},
    {"DP", kWhenMet, SetOrReset<&State::PoundSign>},
    {"EM", kWhenMet, Set<&State::EnableMessage, true>},
    {"DM", kWhenMet, Set<&State::EnableMessage, false>},
    {"PP", kWhenMet, PP},
    {"LM", kWhenMet, SetIfPresent<&State::FLValue>},
    {"US", kWhileDisplayed, SetStyle<Underline, true>},
    {"UE", kWhileDisplayed, SetStyle<Underline, false>},
    {"DS", kWhileDisplayed, SetStyle<DoubleStrike, true>},
    {"DE", kWhileDisplayed, SetStyle<DoubleStrike, false>},
    {"ES", kWhileDisplayed, Nothing},
    {"*", kWhenMet, Nothing}, // a comment
    {"FI", kAtLineStart, FI},
}};

} // namespace

std::span<const cmdTable> Table() {
    return table;
}

} // namespace quoravel::WordWise
