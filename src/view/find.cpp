#include "view/find.h"

#include "platform/text.h"

#include <algorithm>
#include <string>

namespace quoravel {

int FindText(std::string_view text, std::string_view wanted, int from) {
    const auto start = static_cast<std::size_t>(std::max(from, 1) - 1);
    const std::size_t found = UpperCase(text).find(UpperCase(wanted), start);
    return found == std::string::npos ? 0 : static_cast<int>(found) + 1;
}

} // namespace quoravel
