#include "fuzz/file_input.h"
#include "platform/text.h"
#include "support/scripted_host.h"
#include "view/viewed_file.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <string_view>

// Any bytes as a document. It ends, unless its view is closed, says nothing but its one message,
// and keeps its pointers within the line.

namespace quoravel {

namespace {

/// A view that is closed after this many characters, as no reader has the patience for more.
class ImpatientSink : public ViewSink {
  public:
    class Closed {};

    void ShowData(std::string_view text) override {
        // None asks whether the view is still there.
        Require(text.size() <= 1, "one character a call");
        Require(WordWise::state.OutputPointer >= 0 &&
                    WordWise::state.OutputPointer <= WordWise::kLastPosition,
                "the line ends within its block");
        if (--left_ == 0)
            throw Closed();
    }

  private:
    int left_ = 30000;
};

/// Takes the offer of silence at once, or never.
class Reader : public ScriptedHost {
  public:
    explicit Reader(bool patient) : patient_(patient) {}

    void MsgBox(std::string_view text, std::string_view /*title*/) override { Expect(text); }

    bool AskYesNo(std::string_view text, std::string_view /*title*/) override {
        Expect(text);
        return !patient_;
    }

  private:
    static void Expect(std::string_view text) {
        Require(text.starts_with("Unrecognised Command "), "no other message");
        Require(IsUtf8(text), "boxes are UTF-8");
    }

    bool patient_;
};

void FormatInput(std::span<const std::uint8_t> input) {
    const Reader desktop((input.back() & 16) != 0);
    const FileInput file = LoadFileInput(input);
    Module1::gOffset = file.base;
    Module1::gSize = ViewedLength(file.base, file.length);
    ImpatientSink view;
    try {
        WordWise::FormatDocument(view);
    } catch (const ImpatientSink::Closed&) {
        return;
    }
    Require(WordWise::state.view == nullptr, "the run is over");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size >= quoravel::kFileInputTail)
        quoravel::FormatInput({data, size});
    return 0;
}
