#include "view/basic.h"

#include "disc/module1.h"
#include "platform/host.h"
#include "platform/text.h"
#include "view/basic_tokens.h"
#include "view/viewed_file.h"

#include <string>

namespace quoravel {

namespace {

constexpr int kCr = 13;
constexpr int kQuote = 34;
constexpr int kEndOfProgram = 255; ///< in place of the high byte of a line number
constexpr std::size_t kNumberWidth = 5;

/// The number that the three bytes behind a line number token stand for. Meant: the two high bits
/// of the number, which b1 holds too, are left out, so that targets from 16384 up come out small;
/// bytes that no machine writes can give a number below 0.
int InLineNumber(int b1, int b2, int b3) {
    int low = b2 - 64;
    if (b1 == 0x44)
        low += 64;
    else if (b1 == 0x74)
        low += 128;
    else if (b1 == 0x64)
        low += 192;
    return low + (b3 - 64) * 256;
}

/// Walks through one program. Only ends of lines and the end of the file are looked for; the
/// length byte of a line counts for nothing.
class Lister {
  public:
    Lister(int base, std::uint32_t length, ViewSink& sink)
        : at_(base + 1), end_(base + ViewedLength(base, length)), sink_(sink) {}

    void List() {
        while (StartLine()) {
            ListLine();
            Yield();
        }
    }

  private:
    int Next() { return Module1::DiscImg.Byte(at_++); }

    bool StartLine();
    void ListLine();
    void AddControl(int c);
    void AddToken(int token);

    void YieldNowAndThen() {
        if (++bytes_ % kBytesPerYield == 0)
            Yield();
    }

    int at_;
    int end_;
    int bytes_ = 0;    ///< shown so far
    std::string line_; ///< reused, so that a long program costs few allocations
    ViewSink& sink_;
};

/// Begins the text of the next line with its number; false at the end of the program.
bool Lister::StartLine() {
    const int high = Next();
    if (high == kEndOfProgram || at_ >= end_)
        return false;
    const std::string number = std::to_string(high * 256 + Next());
    ++at_; // the length byte
    line_.assign(kNumberWidth - number.size(), ' ');
    line_ += number;
    line_ += ' ';
    return true;
}

/// Shows the rest of the line. One that the end of the file cuts off is lost, unless the byte that
/// is read there is a CR.
void Lister::ListLine() {
    bool in_quote = false;
    int c = 0;
    do {
        c = Next();
        if (c == kQuote)
            in_quote = !in_quote;
        if (c < ' ' && c != kCr)
            AddControl(c);
        else if (c > 127 && !in_quote)
            AddToken(c);
        else
            line_ += static_cast<char>(c);
        if (c == kCr)
            sink_.ShowData(line_);
        YieldNowAndThen();
    } while (c != kCr && at_ < end_);
}

void Lister::AddControl(int c) {
    line_ += " [0x";
    line_ += Hex(static_cast<std::uint32_t>(c), 2);
    line_ += "] ";
}

void Lister::AddToken(int token) {
    line_ += kKeywords[static_cast<std::size_t>(token - kFirstToken)];
    if (token != kLineNumberToken)
        return;
    const int b1 = Next();
    const int b2 = Next();
    const int b3 = Next();
    line_ += std::to_string(InLineNumber(b1, b2, b3));
}

} // namespace

void ListBasic(int base, std::uint32_t length, ViewSink& sink) {
    if (Module1::DiscImg.Byte(base) != kCr)
        sink.ShowData("This does not appear to be a BASIC program");
    else
        Lister(base, length, sink).List();
}

} // namespace quoravel
