#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

// The instructions of the 65C02, one fixed set for every program.

namespace quoravel {

/// An addressing mode: how its operand is written, and the length of the instruction. In the
/// operand, l stands for the byte behind the opcode, h for the one behind that, and r for the
/// target of a branch; every other character stands for itself.
struct AddressingMode {
    std::string_view operand;
    int bytes;
};

inline constexpr auto kAddressingModes = std::to_array<AddressingMode>({
    {"", 1},        // implied
    {"#&l", 2},     // immediate
    {"&l", 2},      // zero page
    {"&hl", 3},     // absolute
    {"&l,X", 2},    // zero page, X
    {"&l,Y", 2},    // zero page, Y
    {"&hl,X", 3},   // absolute, X
    {"&hl,Y", 3},   // absolute, Y
    {"(&l,X)", 2},  // indexed indirect
    {"(&l),Y", 2},  // indirect indexed
    {"A", 1},       // accumulator
    {"(&hl)", 3},   // indirect
    {"&r", 2},      // relative
    {"(&hl,X)", 3}, // absolute indexed indirect
    {"(&l)", 2},    // zero page indirect
});
static_assert(kAddressingModes.size() == 15);

// clang-format off
/// Mnemonic and operand of each opcode; a lone dot has no instruction. Meant: F4 is a NOP of one
/// byte, unlike its neighbours, and the instructions of some makers that test or set single bits
/// are not known here.
inline constexpr auto kInstructions = std::to_array<std::string_view>({
/* 00 */ "BRK", "ORA (&l,X)", ".", ".", "TSB &l", "ORA &l", "ASL &l", ".",
/* 08 */ "PHP", "ORA #&l", "ASL A", ".", "TSB &hl", "ORA &hl", "ASL &hl", ".",
/* 10 */ "BPL &r", "ORA (&l),Y", "ORA (&l)", ".", "TRB &l", "ORA &l,X", "ASL &l,X", ".",
/* 18 */ "CLC", "ORA &hl,Y", "INC A", ".", "TRB &hl", "ORA &hl,X", "ASL &hl,X", ".",
/* 20 */ "JSR &hl", "AND (&l,X)", ".", ".", "BIT &l", "AND &l", "ROL &l", ".",
/* 28 */ "PLP", "AND #&l", "ROL A", ".", "BIT &hl", "AND &hl", "ROL &hl", ".",
/* 30 */ "BMI &r", "AND (&l),Y", "AND (&l)", ".", "BIT &l,X", "AND &l,X", "ROL &l,X", ".",
/* 38 */ "SEC", "AND &hl,Y", "DEC A", ".", "BIT &hl,X", "AND &hl,X", "ROL &hl,X", ".",
/* 40 */ "RTI", "EOR (&l,X)", ".", ".", ".", "EOR &l", "LSR &l", ".",
/* 48 */ "PHA", "EOR #&l", "LSR A", ".", "JMP &hl", "EOR &hl", "LSR &hl", ".",
/* 50 */ "BVC &r", "EOR (&l),Y", "EOR (&l)", ".", ".", "EOR &l,X", "LSR &l,X", ".",
/* 58 */ "CLI", "EOR &hl,Y", "PHY", ".", ".", "EOR &hl,X", "LSR &hl,X", ".",
/* 60 */ "RTS", "ADC (&l,X)", ".", ".", "STZ &l", "ADC &l", "ROR &l", ".",
/* 68 */ "PLA", "ADC #&l", "ROR A", ".", "JMP (&hl)", "ADC &hl", "ROR &hl", ".",
/* 70 */ "BVS &r", "ADC (&l),Y", "ADC (&l)", ".", "STZ &l,X", "ADC &l,X", "ROR &l,X", ".",
/* 78 */ "SEI", "ADC &hl,Y", "PLY", ".", "JMP (&hl,X)", "ADC &hl,X", "ROR &hl,X", ".",
/* 80 */ "BRA &r", "STA (&l,X)", ".", ".", "STY &l", "STA &l", "STX &l", ".",
/* 88 */ "DEY", "BIT #&l", "TXA", ".", "STY &hl", "STA &hl", "STX &hl", ".",
/* 90 */ "BCC &r", "STA (&l),Y", "STA (&l)", ".", "STY &l,X", "STA &l,X", "STX &l,Y", ".",
/* 98 */ "TYA", "STA &hl,Y", "TXS", ".", "STZ &hl", "STA &hl,X", "STZ &hl,X", ".",
/* A0 */ "LDY #&l", "LDA (&l,X)", "LDX #&l", ".", "LDY &l", "LDA &l", "LDX &l", ".",
/* A8 */ "TAY", "LDA #&l", "TAX", ".", "LDY &hl", "LDA &hl", "LDX &hl", ".",
/* B0 */ "BCS &r", "LDA (&l),Y", "LDA (&l)", ".", "LDY &l,X", "LDA &l,X", "LDX &l,Y", ".",
/* B8 */ "CLV", "LDA &hl,Y", "TSX", ".", "LDY &hl,X", "LDA &hl,X", "LDX &hl,Y", ".",
/* C0 */ "CPY #&l", "CMP (&l,X)", ".", ".", "CPY &l", "CMP &l", "DEC &l", ".",
/* C8 */ "INY", "CMP #&l", "DEX", ".", "CPY &hl", "CMP &hl", "DEC &hl", ".",
/* D0 */ "BNE &r", "CMP (&l),Y", "CMP (&l)", ".", ".", "CMP &l,X", "DEC &l,X", ".",
/* D8 */ "CLD", "CMP &hl,Y", "PHX", ".", ".", "CMP &hl,X", "DEC &hl,X", ".",
/* E0 */ "CPX #&l", "SBC (&l,X)", ".", ".", "CPX &l", "SBC &l", "INC &l", ".",
/* E8 */ "INX", "SBC #&l", "NOP", ".", "CPX &hl", "SBC &hl", "INC &hl", ".",
/* F0 */ "BEQ &r", "SBC (&l),Y", "SBC (&l)", ".", "NOP", "SBC &l,X", "INC &l,X", ".",
/* F8 */ "SED", "SBC &hl,Y", "PLX", ".", ".", "SBC &hl,X", "INC &hl,X", ".",
});
// clang-format on
static_assert(kInstructions.size() == 256);
static_assert(std::ranges::count(kInstructions, std::string_view(".")) == 77);

struct Opcode {
    std::string_view mnemonic;
    AddressingMode mode;
};

/// The instruction of a cell above. A mode that kAddressingModes does not have ends the
/// compilation.
consteval Opcode OpcodeOf(std::string_view cell) {
    if (cell == ".")
        return {"???", kAddressingModes[0]};
    const std::string_view mnemonic = cell.substr(0, 3);
    const std::string_view operand = cell.size() > 3 ? cell.substr(4) : std::string_view{};
    for (const AddressingMode& mode : kAddressingModes)
        if (mode.operand == operand)
            return {mnemonic, mode};
    throw "no such mode";
}

consteval std::array<Opcode, 256> AllOpcodes() {
    std::array<Opcode, 256> opcodes{};
    for (std::size_t i = 0; i < opcodes.size(); ++i)
        opcodes[i] = OpcodeOf(kInstructions[i]);
    return opcodes;
}

inline constexpr std::array<Opcode, 256> kOpcodes = AllOpcodes();

} // namespace quoravel
