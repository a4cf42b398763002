// Finding commands, and when each of them acts.

#include "platform/host.h"
#include "platform/text.h"
#include "view/wordwise/routines.h"
#include "view/wordwise/state.h"

#include <string>

namespace quoravel::WordWise {

namespace {

constexpr int kKindBits = 15;
constexpr int kAroundCommand = 3; // the byte that starts it and its two letters

/// A document can be all bad commands, so from this one on the user can have them passed over.
constexpr int kMessagesBeforeTheOffer = 5;

void TellUnrecognised(std::string_view pair) {
    if (state.silent)
        return;
    state.view->ShowData({}); // ends here for a window that has been closed: no box for that one
    const std::string text = "Unrecognised Command " + Latin1ToUtf8(pair);
    if (++state.messages <= kMessagesBeforeTheOffer)
        host().MsgBox(text);
    else
        state.silent =
            host().AskYesNo(text + "\n\nGo on without telling more ?", "There are many of them");
}

[[nodiscard]] const cmdTable* RowOf(std::string_view pair) {
    for (const cmdTable& row : Table())
        if (pair.starts_with(row.cmd))
            return &row;
    return nullptr;
}

[[nodiscard]] bool Marked(int position) {
    return (state.OutputBuffer.Byte(position) & kMark) != 0;
}

/// Leaves the command at InputPointer on the line. A new group of commands starts an entry further
/// on, so that a 0 stands between it and the last one.
void WaitOnLine() {
    const bool new_group = state.StackPointer != 0 && !Marked(state.OutputPointer);
    const int entry = state.StackPointer + (new_group ? 1 : 0);
    const bool room = entry + 1 < kStackEntries;
    if (room) {
        state.Stack[static_cast<std::size_t>(entry)].InputPointer = state.InputPointer;
        state.Stack[static_cast<std::size_t>(entry) + 1].InputPointer = 0;
        state.StackPointer = entry + 1;
    }
    ++state.InputPointer;
    SkipCommand();
    if (room)
        state.OutputBuffer.SetByte(state.OutputPointer,
                                   state.OutputBuffer.Byte(state.OutputPointer) | kMark);
    state.CarryFlag = false;
}

/// The command that waits in the entry at StackPointer; 0: none.
[[nodiscard]] int WaitingCommand() {
    return state.StackPointer < kStackEntries
               ? state.Stack[static_cast<std::size_t>(state.StackPointer)].InputPointer
               : 0;
}

} // namespace

void FindCommand(int& option, const cmdTable*& cmd) {
    Yield();
    const int first = DocumentByte(state.InputPointer + 1);
    state.CarryFlag = first < kSpace;
    if (state.CarryFlag)
        return;
    const int second = DocumentByte(state.InputPointer + 2);
    const std::string pair =
        UpperCase(std::string{static_cast<char>(first), static_cast<char>(second)});
    cmd = RowOf(pair);
    state.CarryFlag = cmd == nullptr;
    if (cmd != nullptr)
        option = cmd->option;
    else
        TellUnrecognised(pair);
}

void ProcessCommand() {
    int option = 0;
    const cmdTable* cmd = nullptr;
    FindCommand(option, cmd);
    if (state.CarryFlag) {
        ++state.InputPointer;
        SkipCommand();
    } else {
        SubCommand(option, *cmd);
    }
}

// Meant: BP and CP act only at the start of a line, too, whatever the high bit of their option
// says.
void SubCommand(int option, const cmdTable& cmd) {
    const int kind = option & kKindBits;
    if (kind == kWhileDisplayed)
        return WaitOnLine();
    if (kind == kAtLineStart && !AtLineStart()) {
        SkipCommand(); // on the byte that starts it, so this steps back: it is read again
        state.RegA = kEndOfLine;
        state.CarryFlag = true;
        return;
    }
    state.InputPointer += kAroundCommand;
    CommandType1(cmd);
    if (kind != kAtLineStart) // those skip themselves, as the carry that they leave counts
        SkipCommand();
}

void CommandType1(const cmdTable& cmd) {
    cmd.effect();
}

// Meant: this stops on the 0 behind a group, so each later group of the line begins with that entry
// and takes what stands behind the document's first byte for a command.
void EmbeddedCommandSequence() {
    const int place = state.InputPointer;
    do {
        state.InputPointer = WaitingCommand();
        int option = 0;
        const cmdTable* cmd = nullptr;
        FindCommand(option, cmd);
        if (cmd != nullptr && !state.CarryFlag) {
            state.InputPointer += kAroundCommand;
            CommandType1(*cmd);
            SkipCommand();
        }
        ++state.StackPointer;
    } while (WaitingCommand() != 0);
    state.InputPointer = place;
}

} // namespace quoravel::WordWise
