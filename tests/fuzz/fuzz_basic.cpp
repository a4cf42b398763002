#include "fuzz/file_input.h"
#include "support/scripted_host.h"
#include "view/basic.h"
#include "view/viewed_file.h"

#include <algorithm>

// Any file of a disc as a BASIC program.

namespace quoravel {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Looks at each line of a listing.
class LineReader : public ViewSink {
  public:
    std::int64_t written = 0;
    bool refused = false;

    void ShowData(std::string_view text) override {
        Require(!refused, "nothing follows a refusal");
        written += std::ssize(text);
        refused = text == "This does not appear to be a BASIC program";
        if (!refused)
            CheckLine(text);
    }

  private:
    static void CheckLine(std::string_view line) {
        constexpr std::size_t number_width = 5;
        Require(line.size() > number_width + 1, "a line has a number and an end");
        const std::string_view number = line.substr(0, number_width);
        Require(std::all_of(number.begin() + static_cast<int>(number.find_first_not_of(' ')),
                            number.end(), IsDigit),
                "a number stands right in its field");
        Require(line[number_width] == ' ', "a space follows the number");
        Require(line.back() == '\r', "a line ends with CR");
        Require(std::all_of(line.begin(), line.end() - 1,
                            [](char c) { return static_cast<std::uint8_t>(c) >= ' '; }),
                "no control code is in the text of a line");
    }
};

void List(const FileInput& file) {
    LineReader lines;
    ListBasic(file.base, file.length, lines);
    Require(lines.refused == (Module1::DiscImg.Byte(file.base) != 13), "only the first CR decides");
    // A byte is eight characters at most. A line that the end cuts off reads a few more.
    const std::int64_t bytes = ViewedLength(file.base, file.length) + 8;
    Require(lines.refused || lines.written <= bytes * 8, "the listing is no longer than it can be");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < quoravel::kFileInputTail)
        return 0;
    const quoravel::ScriptedHost host;
    quoravel::List(quoravel::LoadFileInput({data, size}));
    return 0;
}
