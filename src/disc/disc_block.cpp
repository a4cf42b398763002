#include "disc/disc_block.h"

#include <algorithm>

namespace quoravel {

namespace {

struct Range {
    std::int64_t begin;
    std::int64_t end;
};

/// The part of [offset, offset + count) inside the block; begin and end agree if there is none.
Range InsideBlock(std::int64_t offset, std::int64_t count) {
    const std::int64_t begin = std::clamp<std::int64_t>(offset, 0, kDiscBytes);
    const std::int64_t length = std::clamp<std::int64_t>(count, 0, INT32_MAX);
    const std::int64_t end = offset >= kDiscBytes ? begin : offset + length;
    return {begin, std::clamp<std::int64_t>(end, begin, kDiscBytes)};
}

} // namespace

void DiscBlock::Fill(std::int64_t offset, std::int64_t count, std::uint8_t value) {
    const auto [begin, end] = InsideBlock(offset, count);
    if (value == 0) {
        const std::int64_t clear_to = std::clamp(blank_from_, begin, end);
        std::fill(bytes_.begin() + begin, bytes_.begin() + clear_to, value);
        if (end >= blank_from_)
            blank_from_ = std::min(blank_from_, begin);
        return;
    }
    std::fill(bytes_.begin() + begin, bytes_.begin() + end, value);
    blank_from_ = std::max(blank_from_, end);
}

void DiscBlock::Write(std::int64_t offset, std::span<const std::uint8_t> source) {
    const auto [begin, end] = InsideBlock(offset, std::ssize(source));
    if (begin == end)
        return;
    const auto part = source.subspan(static_cast<std::size_t>(begin - offset),
                                     static_cast<std::size_t>(end - begin));
    std::copy(part.begin(), part.end(), bytes_.begin() + begin);
    blank_from_ = std::max(blank_from_, end);
}

std::span<std::uint8_t> DiscBlock::Head(std::size_t count) {
    const auto head = std::span(bytes_).first(std::min<std::size_t>(count, kDiscBytes));
    blank_from_ = std::max(blank_from_, std::ssize(head));
    return head;
}

// A damaged catalogue can ask for dozens of copies of the whole block, so they are no loops over
// bytes.
void DiscBlock::CopyAscending(std::int64_t from, std::int64_t to, std::int64_t count) {
    const auto [begin, end] = InsideBlock(to, count);
    const std::int64_t up = std::clamp<std::int64_t>(to - from, -kDiscBytes, kDiscBytes);
    // The targets whose source lies inside the block; it reads as 0 elsewhere.
    const std::int64_t first = std::clamp(up, begin, end);
    const std::int64_t last = std::clamp(kDiscBytes + up, first, end);
    const auto block = bytes_.begin();
    std::fill(block + begin, block + first, std::uint8_t{0});
    // Upwards, so much at once that no piece overlaps its source.
    const std::int64_t piece = up > 0 ? up : kDiscBytes;
    for (std::int64_t at = first; at < last; at += piece) {
        const auto source = block + (at - up);
        std::copy(source, source + std::min(piece, last - at), block + at);
    }
    std::fill(block + last, block + end, std::uint8_t{0});
    if (begin < end)
        blank_from_ = std::max(blank_from_, end);
}

std::span<const std::uint8_t> DiscBlock::Part(std::int64_t offset, std::int64_t count) const {
    const auto [begin, end] = InsideBlock(offset, count);
    return std::span(bytes_).subspan(static_cast<std::size_t>(begin),
                                     static_cast<std::size_t>(end - begin));
}

} // namespace quoravel
