#pragma once

#include <array>
#include <string_view>

namespace quoravel {

/// The token that stands for a line number inside a line; three bytes with the number follow it.
inline constexpr int kLineNumberToken = 0x8D;

inline constexpr int kFirstToken = 0x80;

// clang-format off
/// The keyword of each token from 0x80 up, eight to a row. 0x8D has none of its own, 0xCE none at
/// all. PTR, PAGE, TIME, LOMEM and HIMEM have two tokens, one to be read and one to be assigned.
inline constexpr auto kKeywords = std::to_array<std::string_view>({
/* 80 */ "AND", "DIV", "EOR", "MOD", "OR", "ERROR", "LINE", "OFF",
/* 88 */ "STEP", "SPC", "TAB(", "ELSE", "THEN", "", "OPENIN", "PTR",
/* 90 */ "PAGE", "TIME", "LOMEM", "HIMEM", "ABS", "ACS", "ADVAL", "ASC",
/* 98 */ "ASN", "ATN", "BGET", "COS", "COUNT", "DEG", "ERL", "ERR",
/* A0 */ "EVAL", "EXP", "EXT", "FALSE", "FN", "GET", "INKEY", "INSTR(",
/* A8 */ "INT", "LEN", "LN", "LOG", "NOT", "OPENUP", "OPENOUT", "PI",
/* B0 */ "POINT(", "POS", "RAD", "RND", "SGN", "SIN", "SQR", "TAN",
/* B8 */ "TO", "TRUE", "USR", "VAL", "VPOS", "CHR$", "GET$", "INKEY$",
/* C0 */ "LEFT$(", "MID$(", "RIGHT$(", "STR$", "STRING$(", "EOF", "AUTO", "DELETE",
/* C8 */ "LOAD", "LIST", "NEW", "OLD", "RENUMBER", "SAVE", "", "PTR",
/* D0 */ "PAGE", "TIME", "LOMEM", "HIMEM", "SOUND", "BPUT", "CALL", "CHAIN",
/* D8 */ "CLEAR", "CLOSE", "CLG", "CLS", "DATA", "DEF", "DIM", "DRAW",
/* E0 */ "END", "ENDPROC", "ENVELOPE", "FOR", "GOSUB", "GOTO", "GCOL", "IF",
/* E8 */ "INPUT", "LET", "LOCAL", "MODE", "MOVE", "NEXT", "ON", "VDU",
/* F0 */ "PLOT", "PRINT", "PROC", "READ", "REM", "REPEAT", "REPORT", "RESTORE",
/* F8 */ "RETURN", "RUN", "STOP", "COLOUR", "TRACE", "UNTIL", "WIDTH", "OSCLI",
});
// clang-format on

static_assert(kKeywords.size() == 256 - kFirstToken);

} // namespace quoravel
