#include "link/star_command.h"

#include "link/replies.h"
#include "link/ring.h"
#include "platform/host.h"
#include "platform/text.h"

#include <string>

namespace quoravel {

namespace {

constexpr int kLongestPiece = 1024;
constexpr std::string_view kNoAnswer = "Problem sending * Command";

/// Gives false, for the caller to give on.
bool Tell(std::string_view text) {
    host().MsgBox(text, "* Command Error");
    return false;
}

bool TellError() {
    Send_Cmd(kErrorAcknowledge);
    std::string reply;
    if (!Get_Response(reply, kLongestPiece))
        return Tell(kNoAnswer);
    reply.erase(reply.find_last_not_of("\r\n") + 1);
    return Tell(Latin1ToUtf8(reply));
}

/// Cuts the success line and what stands behind it off; true if it was there.
bool CutSuccess(std::string& reply) {
    const auto found = reply.find(kSuccessText); // by exact letters, unlike whole replies
    if (found == std::string::npos)
        return false;
    reply.erase(found);
    return true;
}

/// Shows the output, of which `reply` is the first piece.
void ShowOutput(std::string& reply, const std::function<bool(std::string_view)>& show) {
    // Meant: a success line that is split across two pieces shows, and the end comes by timeout.
    for (bool ended = false; !ended; Yield()) {
        ended = CutSuccess(reply);
        const std::string output = AddLineFeeds(reply);
        if (output.size() > 1)
            host().DoEvents(1);
        ended = !show(output) || ended;
        if (!ended)
            ended = !Get_Response(reply, kLongestPiece);
    }
}

} // namespace

bool SendStarCommand(std::string_view text, const std::function<bool(std::string_view)>& show) {
    Send_Cmd("*");
    Send_Cmd('*' + std::string(text) + '\r');
    std::string reply;
    static_cast<void>(Get_Response(reply, kLongestPiece));
    if (IsErrorLine(reply))
        return TellError();
    if (reply.empty())
        return Tell(kNoAnswer);
    ShowOutput(reply, show);
    return true;
}

} // namespace quoravel
