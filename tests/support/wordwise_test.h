#pragma once

#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/wordwise_documents.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// Documents, formatted into the notation of StyledSink. They lie on the second drive, with
/// something behind them that is none of theirs.
class WordWiseTest : public DiscTest {
  protected:
    struct Row {
        const char* what;
        std::string document;
        std::string text;
    };

    static void Put(std::string_view written) {
        const std::string bytes = Document(written);
        Module1::gOffset = kDriveBytes + 512;
        Module1::gSize = static_cast<int>(bytes.size());
        DiscBuilder(1).Data(2, bytes + "X");
    }

    static std::string Format() {
        StyledSink sink;
        WordWise::FormatDocument(sink);
        return sink.text;
    }

    static std::string Format(std::string_view written) {
        Put(written);
        return Format();
    }

    /// Formats each document, none of which may have anything to tell.
    void Expect(const std::vector<Row>& rows) {
        for (const Row& r : rows) {
            SCOPED_TRACE(r.what);
            EXPECT_EQ(Format(r.document), r.text);
            EXPECT_EQ(desktop.TakeBoxTexts(), std::vector<std::string>{});
        }
    }

    static std::string Blanks(int count) { return Repeated(count, " "); }

    static std::string Ends(int count) { return Repeated(count, "\r"); }

    static std::string Repeated(int count, std::string_view text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    }
};

} // namespace quoravel
