#include "disc/module1.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/hex_view.h"
#include "view/text_view.h"
#include "view/viewed_file.h"

#include <cstdio>
#include <cstdlib>
#include <span>

// Any file of a disc as text and as hex. The last four bytes of the input say where it lies and how
// long it is, the others are what lies there.

namespace quoravel {

namespace {

constexpr std::size_t kTail = 4;

/// Ends the run at the input that breaks a promise.
void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

struct File {
    int base = 0;
    std::uint32_t length = 0;
};

/// A file of up to 4 KB on any sector that a catalogue can name, or one whose length reads FFxxxx.
/// That ends with the block, so it starts near there: short files are quick.
File Place(std::span<const std::uint8_t> tail) {
    const int sector = tail[0] | (tail[1] & 3) << 8;
    const std::uint32_t length = tail[2] | (tail[3] & 15U) << 8U;
    if ((tail[3] & 128) != 0)
        return {kDriveBytes + (sector | 768) * kSectorBytes, length | 0xFF0000};
    return {(tail[1] >> 7) * kDriveBytes + sector * kSectorBytes, length};
}

File Load(std::span<const std::uint8_t> input) {
    const File file = Place(input.last(kTail));
    Module1::DiscImg.Fill(0, kDiscBytes, 0);
    Module1::DiscImg.Write(file.base, input.first(input.size() - kTail));
    return file;
}

/// Reads a file again through its view as text.
class TextReader : public ViewSink {
  public:
    int next;

    explicit TextReader(int base) : next(base) {}

    void ShowData(std::string_view text) override {
        Require(!text.empty(), "no piece is empty");
        Require(!ended_, "only the last piece has no CR at its end");
        ended_ = text.back() != '\r';
        for (const char c : text) {
            SkipLineFeeds();
            Require(static_cast<std::uint8_t>(c) == Module1::DiscImg.Byte(next++),
                    "all but the line feeds is there as it was");
        }
        Require(text.substr(0, text.size() - 1).find('\r') == text.npos, "a piece has one line");
    }

    void SkipLineFeeds() {
        while (Module1::DiscImg.Byte(next) == '\n')
            ++next;
    }

  private:
    bool ended_ = false;
};

/// Reads a file again through its view as hex.
class HexReader : public ViewSink {
  public:
    int offset = 0;

    explicit HexReader(int base) : base_(base) {}

    void ShowData(std::string_view row) override {
        constexpr std::size_t kAround = 6 + 3 + 48 + 1 + 1;
        Require(row.size() > kAround && row.size() <= kAround + 16, "a row has 1 to 16 bytes");
        Require(offset % 16 == 0, "only the last row has fewer");
        Require(HexValue(row) == static_cast<std::uint32_t>(offset), "each row has its offset");
        for (std::size_t i = 0; i < row.size() - kAround; ++i) {
            const char c = row[58 + i];
            Require(c >= 32 && c < 127, "characters can be shown");
            Require(HexValue(row.substr(9 + 3 * i, 2)) == Module1::DiscImg.Byte(base_ + offset++),
                    "each byte is there");
        }
    }

  private:
    int base_;
};

void View(const File& file) {
    const int size = ViewedLength(file.base, file.length);
    TextReader text(file.base);
    ListText(file.base, file.length, text);
    Require(text.next <= file.base + size, "the text ends with the file");
    if (text.next < file.base + size)
        text.SkipLineFeeds();
    Require(text.next >= file.base + size, "the text is complete");
    HexReader hex(file.base);
    ListHex(file.base, file.length, hex);
    Require(hex.offset == size, "the dump is complete");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < quoravel::kTail)
        return 0;
    const quoravel::ScriptedHost host;
    quoravel::View(quoravel::Load({data, size}));
    return 0;
}
