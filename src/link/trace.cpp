#include "link/trace.h"

#include "platform/growing_file.h"
#include "platform/host.h"
#include "platform/text.h"

#include <cstdint>
#include <vector>

namespace quoravel {

namespace {

constexpr int kFullPane = 32000;
constexpr int kCut = 4096; // at once, so that it happens rarely
constexpr std::size_t kLongestRecord = 255;
constexpr std::size_t kDumpColumns = 16;

TracePane* installed_pane = nullptr;

/// The log file. A length byte stands before each record: it is no text file.
GrowingFile log_file;
std::uint64_t log_length = 0;

void WriteRecord(std::string_view line) {
    line = line.substr(0, kLongestRecord);
    std::vector<std::uint8_t> record{static_cast<std::uint8_t>(line.size())};
    record.insert(record.end(), line.begin(), line.end());
    if (!log_file.WriteAt(log_length, record))
        log_length += record.size();
}

/// `offset` is that of the first byte of `part`, which has up to 16.
std::string DumpLine(std::string_view part, std::size_t offset, bool sent) {
    std::string line = sent ? "TX: " : "RX: ";
    line += Hex(static_cast<std::uint32_t>(offset), 4) + " : ";
    for (const char c : part)
        line += Hex(static_cast<std::uint8_t>(c), 2) + ' ';
    line.append(3 * (kDumpColumns - part.size()) + 1, ' ');
    for (const char c : part)
        line += DumpCharacter(static_cast<std::uint8_t>(c));
    return line;
}

} // namespace

void InstallTracePane(TracePane* pane) {
    installed_pane = pane;
}

void ShowData(std::string_view text) {
    if (!Module1::gTraceWindow)
        return;
    std::string line = host().ShortDate() + ' ' + host().LongTime() + ' ';
    line += text;
    if (installed_pane != nullptr && installed_pane->TextLength() > kFullPane)
        installed_pane->CutOldest(kCut);
    line = AddLineFeeds(line);
    host().DoEvents(-1);
    if (installed_pane != nullptr) // the window may have been closed meanwhile
        installed_pane->Append(line);
    if (Module1::gTraceFileOpen)
        WriteRecord(line);
}

void DumpHex(std::string_view bytes, bool sent) {
    for (std::size_t offset = 0; offset < bytes.size(); offset += kDumpColumns) {
        TraceLine(DumpLine(bytes.substr(offset, kDumpColumns), offset, sent));
        Yield();
    }
}

void TraceToFile() {
    const auto file = host().AskSaveFile(FileTypes1::pLogFiles, "trace.log");
    if (!file)
        return;
    CloseTraceFile();
    log_length = 0;
    Module1::gTraceFileOpen = !log_file.Create(*file);
}

void CloseTraceFile() {
    log_file.Close();
    Module1::gTraceFileOpen = false;
}

} // namespace quoravel
