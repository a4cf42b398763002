#include "fuzz/file_input.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/disassembler.h"
#include "view/viewed_file.h"

#include <chrono>

// Any file of a disc as machine code. Bit 1 of the last byte lets the current drive change again
// and again while it is shown.

namespace quoravel {

namespace {

using std::string_view;

constexpr string_view kRefusal = "This appears to be a BASIC program";
constexpr std::size_t kColumns = 35;

/// Reads a file again through its disassembly.
class CodeReader : public ViewSink {
  public:
    int next;
    bool refused = false;

    CodeReader(const FileInput& file, ScriptedHost& desktop)
        : next(file.base), address_(file.load), desktop_(desktop) {}

    void ShowData(string_view line) override {
        desktop_.now += std::chrono::milliseconds(1); // so that a yield pumps now and then
        Require(!refused, "nothing follows a refusal");
        refused = line == kRefusal;
        if (!refused)
            CheckLine(line);
    }

  private:
    void CheckLine(string_view line) {
        const std::size_t bytes = (line.substr(0, 18).find_last_not_of(' ') - 4) / 3;
        const auto opcode = Module1::DiscImg.Byte(next);
        const std::size_t ends = opcode == 0x60 || opcode == 0x40 ? 2 : 1;
        Require(bytes >= 1 && bytes <= 3, "an instruction has one to three bytes");
        Require(line.size() == kColumns + bytes + ends, "a line has its width");
        Require(line.substr(kColumns + bytes) == string_view("\r\r").substr(0, ends),
                "a line has its end");
        Require(HexValue(line.substr(0, 4)) == (address_ & 0xFFFFU), "addresses follow the bytes");
        for (std::size_t i = 0; i < bytes; ++i)
            Require(HexValue(line.substr(6 + 3 * i, 2)) == Module1::DiscImg.Byte(next++),
                    "each byte is there");
        address_ += static_cast<std::uint32_t>(bytes);
    }

    std::uint32_t address_;
    ScriptedHost& desktop_;
};

void View(const FileInput& file, bool drives_change) {
    ScriptedHost desktop;
    if (drives_change)
        desktop.on_pump = [] { Module1::cur_drive = 1 - Module1::cur_drive; };
    CodeReader code(file, desktop);
    Disassemble(file.sector, file.length, static_cast<std::uint16_t>(file.load), code);
    const int end = file.base + ViewedLength(file.base, file.length);
    if (code.refused)
        Require(Module1::DiscImg.Byte(file.base) == 13, "only what starts with CR is refused");
    else if (drives_change)
        Require(code.next <= end + kDriveBytes + 3, "it ends, whatever the drive");
    else
        Require(code.next > end && code.next <= end + 3, "the byte behind the file is the last");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < quoravel::kFileInputTail)
        return 0;
    const auto file = quoravel::LoadFileInput({data, size});
    quoravel::View(file, (data[size - 1] & 2U) != 0);
    return 0;
}
