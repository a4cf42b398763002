#include "link/replies.h"

#include "platform/text.h"

#include <algorithm>
#include <limits>

namespace quoravel {

namespace {

/// Both ends of a line that the micro sends.
bool IsLine(std::string_view reply, std::string_view text) {
    if (!reply.ends_with('\r'))
        return false;
    reply.remove_suffix(1);
    if (reply.ends_with('\n'))
        reply.remove_suffix(1);
    return EqualIgnoringCase(reply, text);
}

} // namespace

bool IsSuccessLine(std::string_view reply) {
    return IsLine(reply, kSuccessText);
}

bool IsErrorLine(std::string_view reply) {
    return IsLine(reply, kErrorAcknowledge) || IsLine(reply, kErrorAcknowledge.substr(1));
}

std::int32_t NumberOf(std::string_view reply) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    std::int64_t number = 0;
    for (std::size_t i = std::min(reply.find_first_not_of(' '), reply.size()); i < reply.size();
         ++i) {
        if (reply[i] < '0' || reply[i] > '9')
            break;
        number = std::min(number * 10 + (reply[i] - '0'), kMost);
    }
    return static_cast<std::int32_t>(number);
}

std::string TrackMessage(char command, int drive, std::int64_t track) {
    return command + std::to_string(drive) + '\r' + std::to_string(track) + '\r';
}

} // namespace quoravel
