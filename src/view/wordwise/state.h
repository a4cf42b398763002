#pragma once

#include "view/sink.h"

#include <array>
#include <cstddef>
#include <cstdint>

// What the formatter of WordWise documents remembers. It has the shape of a routine for the 6502:
// its parts talk to each other through registers and pointers in here, not through arguments, and
// that is what makes its odd cases come out as they do.

namespace quoravel::WordWise {

// The style of what a view window writes. Documents turn these on and off, and nothing else does:
// Meant: a document that ends with one of them on leaves it on for every view opened later.
inline bool Underline = false;
inline bool DoubleStrike = false; ///< shown as bold

inline constexpr int kLastPosition = 511; ///< of the line
inline constexpr int kStackEntries = 41;
inline constexpr int kTabStops = 11;

/// A command that waits on the line until its position is displayed.
struct clsStack {
    int InputPointer = 0;  ///< where the command is in the document; 0 ends a chain
    int OutputPointer = 0; ///< never used
};

/// The bytes of the line. What would lie behind its last position is dropped.
class LineBlock {
  public:
    [[nodiscard]] int Byte(int position) const {
        return Holds(position) ? bytes_[static_cast<std::size_t>(position)] : 0;
    }

    void SetByte(int position, int value) {
        if (Holds(position))
            bytes_[static_cast<std::size_t>(position)] = static_cast<std::uint8_t>(value);
    }

  private:
    [[nodiscard]] static bool Holds(int position) {
        return position >= 0 && position <= kLastPosition;
    }

    std::array<std::uint8_t, kLastPosition + 1> bytes_{};
};

/// All that belongs to one run, with the values that it starts from.
struct State {
    // What commands set.
    bool EnableMessage = false;   ///< has no effect
    bool Justify = false;         ///< wrapped lines
    bool CentreMode = false;      ///< the next CentreValue lines are centred
    int CentreValue = 1;          ///< lines left to centre
    bool FullyIndentMode = false; ///< the next end of a paragraph goes to the right
    bool EnablePaging = false;    ///< print headings, obey BP
    int Indent = 0;               ///< of each line
    int FLValue = 0;              ///< left margin: spaces sent before each line
    int LineLength = 70;
    int PageLength = 66;
    int LineSpacing = 1;
    int TopSpace = 6; ///< lines above the text
    int BottomSpace = 6;
    int HeadingPosition = 2; ///< line of the space above that holds the heading, from 0
    int FootingPosition = 2;
    int PadCharacter = 124; ///< hard space; fills up to a tab stop
    int PoundSign = 96;     ///< shown for byte 96
    int PageNumber = 1;
    int NumTabStops = kTabStops; ///< never read
    std::array<int, kTabStops + 1> TabStops{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110};
    int HeaderPointer = -1; ///< where the heading's text begins, less one; -1: there is none
    int FooterPointer = -1;

    // The page and the line.
    int LineNumber = 0; ///< on the page, from 1
    int CurIndent = 0;  ///< last position of the line's indent
    int JustifyDirection = 0;
    LineBlock OutputBuffer; ///< from 1; position 0 holds but a mark; top bit: commands wait there
    int OutputPointer = 0;  ///< last position in use
    int InputPointer = -1;  ///< counted on before each reading
    int TempOutputPointer = 0; ///< where the line could be broken last; 0: nowhere
    int TempInputPointer = 0;
    std::array<clsStack, kStackEntries> Stack{}; ///< the commands that wait on the line
    int StackPointer = 0;

    // The registers.
    int RegA = 0;
    int RegX = 0;
    int RegY = 0;
    bool CarryFlag = false;

    // What the run works on.
    ViewSink* view = nullptr; ///< nullptr: nothing runs
    int offset = 0;           ///< of the document in the block
    int size = 0;             ///< of the document
    int messages = 0;         ///< told so far
    bool silent = false;      ///< the user wants no more of them
};

inline State state;

} // namespace quoravel::WordWise
