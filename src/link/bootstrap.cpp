#include "link/bootstrap.h"

#include "disc/module1.h"
#include "link/ring.h"
#include "link/serial.h"
#include "platform/files.h"
#include "platform/host.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestProgram = 1U << 20U; // far more than a micro can hold

// Comments at the micro's prompt, without line numbers. The last line gives the input back to its
// keyboard.
constexpr std::array<std::string_view, 4> kAborted{
    "REM ******************************\r",
    "REM File Transfer Aborted\r",
    "REM ******************************\r",
    "*FX 2,0\r",
};
constexpr std::array<std::string_view, 6> kComplete{
    "REM ******************************\r",     "REM File Transfer Complete\r",
    "REM Type SAVE \"TAVRILO\" to save file\r", "REM Then RUN to start program\r",
    "REM ******************************\r",     "*FX 2,0\r",
};

/// Gives the lines of a text one by one. They end with LF, CR or CR LF, the last one also without.
class Lines {
  public:
    explicit Lines(std::string_view text) : text_(text) {}

    [[nodiscard]] bool AtEnd() const { return position_ == text_.size(); }

    [[nodiscard]] std::string_view Next() {
        const std::size_t end = std::min(text_.find_first_of("\r\n", position_), text_.size());
        const std::string_view line = text_.substr(position_, end - position_);
        position_ = end;
        if (text_.substr(position_).starts_with("\r\n"))
            position_ += 2;
        else if (!AtEnd())
            ++position_;
        return line;
    }

    /// How much of the text has been given.
    [[nodiscard]] double Share() const {
        return static_cast<double>(position_) / static_cast<double>(text_.size());
    }

  private:
    std::string_view text_;
    std::size_t position_ = 0;
};

/// What the program for the micro says; false if there is none, which is told.
bool LoadProgram(std::string& text) {
    const auto file = ShippedFile(kCompanionFile);
    std::vector<std::uint8_t> bytes;
    if (!file || ReadFile(*file, kLargestProgram, bytes)) {
        const fs::path place = fs::absolute(host().ProgramFolder() / kCompanionFile);
        host().MsgBox("tavrilo.bas not found at " + Utf8Of(place));
        return false;
    }
    text.assign(bytes.begin(), bytes.end());
    return true;
}

void Type(std::string_view text, BootstrapWindow& window) {
    window.SetProgress(0);
    for (Lines lines(text); !lines.AtEnd() && !Module1::TXAbort;) {
        Send_Cmd(std::string(lines.Next()) + '\r');
        if (!Module1::TXAbort)
            window.SetProgress(static_cast<int>(lines.Share() * 100));
        host().DoEvents(-1);
        Yield();
    }
}

void TypeClosingComments(BootstrapWindow& window) {
    window.DimCancel();
    const bool aborted = Module1::TXAbort;
    Module1::TXAbort = false;
    Send_Cmd("\r"); // ends a line that was broken off
    if (aborted)
        std::ranges::for_each(kAborted, Send_Cmd);
    else
        std::ranges::for_each(kComplete, Send_Cmd);
}

/// Opens the port with the settings of the bare micro; false if it does not open, which is told.
bool OpenForTyping() {
    if (Module1::gSerialPortOpen)
        Serial1().Close();
    Module1::gSerialPortOpen = false;
    Serial1().SetProfile(kBootstrapProfile);
    Module1::gSerialPortOpen = Serial1().Open();
    if (!Module1::gSerialPortOpen)
        host().MsgBox("Error Opening Serial Port");
    return Module1::gSerialPortOpen;
}

} // namespace

bool SendBasicProgram(BootstrapWindow& window) {
    Module1::TXAbort = false;
    if (!OpenForTyping())
        return false;
    if (std::string text; LoadProgram(text)) {
        Type(text, window);
        TypeClosingComments(window);
    }
    Serial1().SetProfile(kTransferProfile);
    Serial1().Poll();
    Serial1().Close();
    static_cast<void>(Serial1().Open()); // Meant: the port counts as open whatever this gives.
    return true;
}

} // namespace quoravel
