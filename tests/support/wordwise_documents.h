#pragma once

#include "view/sink.h"

#include <string>
#include <string_view>

namespace quoravel {

/// The bytes of a document that is written down as a person reads it: "{US}" is a command with its
/// frame, "{TAB}" a tab, "{172}" that byte, and each line end ends a paragraph.
[[nodiscard]] std::string Document(std::string_view written);

/// Collects what the formatter writes and shows its styles: "<u>", "</u>", "<b>", "</b>" where they
/// change.
class StyledSink : public ViewSink {
  public:
    std::string text;

    void ShowData(std::string_view piece) override;

    /// `text` in UTF-8, with "<end>" behind lines that end in a blank and "<no CR>" behind a last
    /// line without an end, so that it can be held against pages in a file.
    [[nodiscard]] std::string Page() const;

  private:
    bool underline_ = false;
    bool bold_ = false;
};

} // namespace quoravel
