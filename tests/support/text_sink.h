#pragma once

#include "view/sink.h"

#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// Collects what a renderer writes.
class TextSink : public ViewSink {
  public:
    std::vector<std::string> pieces; ///< of each call

    /// All of it as one text.
    [[nodiscard]] std::string Text() const {
        std::string text;
        for (const std::string& piece : pieces)
            text += piece;
        return text;
    }

    void ShowData(std::string_view text) override { pieces.emplace_back(text); }
};

} // namespace quoravel
