#include "view/disassembler.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/host.h"
#include "platform/text.h"
#include "view/opcodes.h"
#include "view/os_names.h"
#include "view/viewed_file.h"

namespace quoravel {

namespace {

constexpr char kCr = 13;
constexpr int kJsr = 0x20;
constexpr int kRti = 0x40;
constexpr int kJmp = 0x4C;
constexpr int kRts = 0x60;
constexpr int kBytesWidth = 12;
constexpr int kOperandWidth = 12;

void AddSpaces(std::string& line, int count) {
    line.append(static_cast<std::size_t>(count), ' ');
}

/// Target of the branch at offset `p`, whose own address is `address`.
std::uint32_t BranchTarget(int p, std::uint32_t address) {
    const auto distance = static_cast<std::int8_t>(ByteAt(p + 1));
    return address + 2 + static_cast<std::uint32_t>(distance);
}

/// Appends the operand and gives its width.
int AddOperand(std::string& line, std::string_view operand, int p, std::uint32_t address) {
    const std::size_t before = line.size();
    for (const char c : operand) {
        if (c == 'r')
            line += Hex(BranchTarget(p, address), 4);
        else if (c == 'l')
            line += Hex(ByteAt(p + 1), 2);
        else if (c == 'h')
            line += Hex(ByteAt(p + 2), 2);
        else
            line += c;
    }
    return static_cast<int>(line.size() - before);
}

/// A byte as the last column shows it. Meant: 31 is let through, unlike in the hex view.
char ShownByte(unsigned byte) {
    const unsigned c = byte & 127U;
    return c < 31 || c == 127 ? '.' : static_cast<char>(c);
}

/// Writes the instruction at offset `p` to `line`. A blank line follows RTS and RTI.
void BuildLine(std::string& line, int opcode, int p, std::uint32_t address) {
    const auto& [mnemonic, mode] = kOpcodes[static_cast<std::size_t>(opcode)];
    line = Hex(address, 4);
    line += "  ";
    for (int i = 0; i < mode.bytes; ++i) {
        line += Hex(ByteAt(p + i), 2);
        line += ' ';
        Yield();
    }
    AddSpaces(line, kBytesWidth - 3 * mode.bytes);
    line += mnemonic;
    line += "  ";

    int width = opcode == kJmp || opcode == kJsr ? os(p, line) : 0;
    if (width == 0)
        width = AddOperand(line, mode.operand, p, address);
    AddSpaces(line, kOperandWidth - width);
    for (int i = 0; i < mode.bytes; ++i) {
        line += ShownByte(ByteAt(p + i));
        Yield();
    }
    if (opcode == kRts || opcode == kRti)
        line += kCr;
    line += kCr;
}

/// Where `sector` of cur_drive lies in the block.
int OffsetOf(int sector) {
    return GetStartSectorOfDrive(Module1::cur_drive) + sector * kSectorBytes;
}

/// Where a file that starts in `sector` ends on cur_drive, as it is now.
int EndOf(int sector, std::uint32_t length) {
    const int base = OffsetOf(sector);
    return base + ViewedLength(base, length);
}

/// Whether the file at `base` starts and ends as a BASIC program does; a guess.
bool LooksLikeBasic(int base, std::uint32_t length) {
    return ByteAt(base) == kCr && ByteAt(std::int64_t{base} + length - 1) == 255;
}

} // namespace

inline namespace Module5 {

int os(int position, std::string& text) {
    if (ByteAt(position + 2) != 0xFF)
        return 0;
    for (const OsEntry& entry : kOsEntries) {
        if (entry.low == ByteAt(position + 1)) {
            text += "os";
            text += entry.name;
            return 6;
        }
    }
    return 0;
}

} // namespace Module5

void Disassemble(int sector, std::uint32_t length, std::uint16_t address, ViewSink& sink) {
    const int base = OffsetOf(sector);
    if (LooksLikeBasic(base, length)) {
        sink.ShowData("This appears to be a BASIC program");
        return;
    }
    int p = base;
    std::uint32_t counter = address;
    std::string line;
    // Up to the byte behind the file, which is shown too; cur_drive may change with any yield.
    while (p <= EndOf(sector, length)) {
        const auto opcode = static_cast<int>(ByteAt(p));
        BuildLine(line, opcode, p, counter);
        sink.ShowData(line);
        const int bytes = kOpcodes[static_cast<std::size_t>(opcode)].mode.bytes;
        p += bytes;
        counter += static_cast<std::uint32_t>(bytes);
        Yield();
    }
}

} // namespace quoravel
