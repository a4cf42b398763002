#include "support/wordwise_documents.h"

#include "platform/text.h"
#include "view/wordwise/state.h"

#include <cctype>
#include <utility>

namespace quoravel {

namespace {

std::string BytesOf(std::string_view in_braces) {
    if (in_braces == "TAB")
        return "\xDD";
    if (!in_braces.empty() && std::isdigit(static_cast<unsigned char>(in_braces[0])) != 0)
        return {static_cast<char>(std::stoi(std::string(in_braces)))};
    return "\x02" + std::string(in_braces) + "\x07";
}

} // namespace

std::string Document(std::string_view written) {
    std::string bytes;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const std::size_t end = written.find('}', i);
        if (written[i] == '{' && end != std::string_view::npos) {
            bytes += BytesOf(written.substr(i + 1, end - i - 1));
            i = end;
        } else {
            bytes += written[i] == '\n' ? '\r' : written[i];
        }
    }
    return bytes;
}

void StyledSink::ShowData(std::string_view piece) {
    if (std::exchange(underline_, WordWise::Underline) != underline_)
        text += underline_ ? "<u>" : "</u>";
    if (std::exchange(bold_, WordWise::DoubleStrike) != bold_)
        text += bold_ ? "<b>" : "</b>";
    text += piece;
}

std::string StyledSink::Page() const {
    std::string page;
    for (const char c : text) {
        if (c == '\r' && page.ends_with(' '))
            page += "<end>";
        page += c;
    }
    if (!page.ends_with('\r'))
        page += "<no CR>\r";
    return Latin1ToUtf8(page);
}

} // namespace quoravel
