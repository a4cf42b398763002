#include "fuzz/file_input.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/hex_view.h"
#include "view/text_view.h"
#include "view/viewed_file.h"

// Any file of a disc as text and as hex.

namespace quoravel {

namespace {

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

void View(const FileInput& file) {
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
    if (size < quoravel::kFileInputTail)
        return 0;
    const quoravel::ScriptedHost host;
    quoravel::View(quoravel::LoadFileInput({data, size}));
    return 0;
}
