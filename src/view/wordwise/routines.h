#pragma once

#include <span>
#include <string_view>

// The routines of the formatter. What they work on and what they leave behind is in state.h.

namespace quoravel::WordWise {

// Bytes of a document that mean something.
inline constexpr int kCommandStart = 2;
inline constexpr int kCommandEnd = 7;
inline constexpr int kParagraphEnd = 13;
inline constexpr int kSpace = 32;
inline constexpr int kComma = 44;
inline constexpr int kPound = 96;
inline constexpr int kIgnored = 127;
inline constexpr int kEndOfText = 129;
inline constexpr int kIgnoredToo = 141;
inline constexpr int kSoftComma = 172; ///< a comma at which a line can be broken
inline constexpr int kTab = 221;

// What RegA says with the carry set, beside a paragraph's end and the end of the text.
inline constexpr int kLineEnds = 254;  ///< a command asks for RegX line ends
inline constexpr int kEndOfLine = 255; ///< a command has to wait for the next line

inline constexpr int kMark = 128; ///< on a position of the line: commands wait here
inline constexpr int kCharacterBits = 127;
inline constexpr int kByte = 255; ///< keeps a count within eight bits

/// A row of the table of commands.
struct cmdTable {
    std::string_view cmd;
    int option;       ///< its kind in the low four bits: one of the three below
    void (*effect)(); ///< runs with InputPointer on the first parameter
};

inline constexpr int kWhenMet = 1;
inline constexpr int kAtLineStart = 2;
inline constexpr int kWhileDisplayed = 3;

// --- Reading the document (reading.cpp).

/// The byte at a place of the document, wherever it ends; 0 outside the block.
[[nodiscard]] int DocumentByte(int place);
/// The next byte that is no command goes to RegA. Carry: the line ends with it.
void ProcessChar();
/// Keeps the place as one where the line can be broken.
void ProcessSpace();
/// Moves behind the next comma of a command (carry set) or to where the command ends.
void GetNextChar();
/// Moves to where the command ends, so that ProcessChar goes on behind it.
void SkipCommand();
/// The digit RegY places on; carry: there is none.
[[nodiscard]] int GetDigit();
/// The number of up to three digits that stands here; carry: there is none.
[[nodiscard]] int GetNumber();
/// The next `byte` from `place` on; without one, where both the block and the document have ended.
[[nodiscard]] int FindByte(int byte, int place);

// --- Commands (commands.cpp, effects.cpp).

/// All commands in the order of search.
[[nodiscard]] std::span<const cmdTable> Table();
/// Finds the command at InputPointer. Carry: it is none, which is told if it has letters.
void FindCommand(int& option, const cmdTable*& cmd);
/// Obeys the command at InputPointer, or leaves it for later, or skips what is none.
void ProcessCommand();
void SubCommand(int option, const cmdTable& cmd);
void CommandType1(const cmdTable& cmd);
/// Obeys the commands that wait at a position.
void EmbeddedCommandSequence();

// --- The line (line.cpp, layout.cpp).

/// Moves OutputPointer on within eight bits and puts `character` there.
void PutNext(int character);
/// True while nothing but indent is on the line.
[[nodiscard]] bool AtLineStart();
/// Builds the next line. Carry: it was ended by what RegA says, not by its length.
void PrepareLine();
/// Makes an indent of `n` (0 to 255) spaces; 0 and above 255 clear 256 positions.
void PadSpaces(int n);
/// Puts a line from PrepareLine into its final place.
void FormatOutputBuffer();
void CentreLine();
void FullyIndentLine();
void JustifyLine();
/// Makes room for a space behind position `n`.
void MoveOutputBuffer(int n);

// --- The page (page.cpp, display.cpp).

void DoInit();
void DisplayCharacter(int c);
void DisplayOutputBuffer();
/// Ends a line. Carry: the page has room for more.
void DisplayCR();
void DisplayHeader();
void DisplayFooter();
/// Lines of a page above its bottom space.
[[nodiscard]] int LinesLeft();

} // namespace quoravel::WordWise
