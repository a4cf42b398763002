#include "view/text_view.h"

#include "disc/module1.h"
#include "platform/host.h"
#include "view/viewed_file.h"

#include <string>

namespace quoravel {

namespace {

constexpr char kLineFeed = '\n';
constexpr char kCarriageReturn = '\r';

} // namespace

void ListText(int base, std::uint32_t length, ViewSink& sink) {
    const int size = ViewedLength(base, length);
    std::string line;
    for (int offset = 0; offset < size; ++offset) {
        const char c = static_cast<char>(Module1::DiscImg.Byte(base + offset));
        if (c != kLineFeed)
            line += c;
        if (c == kCarriageReturn) {
            sink.ShowData(line);
            line.clear();
        }
        if (offset % kBytesPerYield == 0)
            Yield();
    }
    if (!line.empty())
        sink.ShowData(line);
}

} // namespace quoravel
