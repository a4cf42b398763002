#include "disc/module1.h"

namespace quoravel::Module1 {

namespace {

StatusLine* status_line = nullptr;

} // namespace

void Init() {
    DiscImg.Fill(0, kDiscBytes, 0);
    gTraceWindow = false;
    RXHead = RXTail = RXLen = 0;
    gTraceFileOpen = false;
    gsFile.clear();
}

void MsgBar(int drive, std::string_view text) {
    if (status_line != nullptr)
        status_line->SetMsgText(drive, text);
}

void InstallStatusLine(StatusLine* line) {
    status_line = line;
}

} // namespace quoravel::Module1
