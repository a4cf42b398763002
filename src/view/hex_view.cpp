#include "view/hex_view.h"

#include "disc/module1.h"
#include "platform/host.h"
#include "platform/text.h"
#include "view/viewed_file.h"

#include <algorithm>
#include <string>

namespace quoravel {

namespace {

constexpr int kRowBytes = 16;
constexpr int kFieldWidth = 3; // two digits and a space
constexpr std::string_view kDigits = "0123456789ABCDEF";

/// Makes `row` the row of `count` bytes at `offset` of the file at `base`.
void BuildRow(std::string& row, int base, int offset, int count) {
    const int first = base + offset;
    row.assign(Hex(static_cast<std::uint32_t>(offset), 6)).append(" : ");
    for (int i = first; i < first + count; ++i) {
        const unsigned byte = ByteAt(i);
        row.append({kDigits[byte / 16], kDigits[byte % 16], ' '});
    }
    row.append(static_cast<std::size_t>(kFieldWidth * (kRowBytes - count) + 1), ' ');
    for (int i = first; i < first + count; ++i)
        row += DumpCharacter(ByteAt(i));
    row += '\r';
}

} // namespace

void ListHex(int base, std::uint32_t length, ViewSink& sink) {
    const int size = ViewedLength(base, length);
    std::string row;
    for (int offset = 0; offset < size; offset += kRowBytes) {
        BuildRow(row, base, offset, std::min(kRowBytes, size - offset));
        sink.ShowData(row);
        Yield();
    }
}

} // namespace quoravel
