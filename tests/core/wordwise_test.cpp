#include "disc/catalogue.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/temp_folder.h"
#include "support/wordwise_documents.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class WordWiseTest : public DiscTest {
  protected:
    /// What comes of a document, in the notation of StyledSink. It lies on the second drive.
    std::string Format(std::string_view written) {
        const std::string bytes = Document(written);
        Module1::gOffset = kDriveBytes + 512;
        Module1::gSize = static_cast<int>(bytes.size());
        DiscBuilder(1).Byte(512 + Module1::gSize, 'X').Data(2, bytes);
        return Format();
    }

    std::string Format() {
        StyledSink sink;
        WordWise::FormatDocument(sink);
        return sink.text;
    }

    struct Row {
        const char* what;
        std::string document;
        std::string text;
    };

    void Expect(const std::vector<Row>& rows) {
        for (const Row& r : rows) {
            SCOPED_TRACE(r.what);
            EXPECT_EQ(Format(r.document), r.text);
        }
    }

    /// `text` in the middle of 70 columns.
    static std::string Centred(const std::string& text) {
        return std::string((70 - text.size()) / 2, ' ') + text;
    }
};

// --- The demonstration disc.

constexpr std::array<const char*, 4> kDocuments{"L.CLUB", "L.THANKS", "O.ODDS", "R.REPORT"};
constexpr const char* kDisc = "demo-wordwise.ssd";

std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// To make the disc anew, take the file that this test names when it fails.
TEST_F(WordWiseTest, TheDemonstrationDiscIsMadeOfItsSources) {
    const std::filesystem::path data(TEST_DATA);
    constexpr int kSectorsEach = 4;
    constexpr int kEnd = 2 + kSectorsEach * static_cast<int>(kDocuments.size());
    DiscBuilder disc;
    disc.Title("DOCUMENTS");
    int sector = kEnd;
    for (const char* name : kDocuments) {
        sector -= kSectorsEach;
        const std::string bytes = Document(FileText(data / "wordwise" / name));
        EXPECT_LE(bytes.size(), static_cast<std::size_t>(kSectorsEach * kSectorBytes));
        disc.File({.name = name + 2,
                   .dir = name[0],
                   .load = 0x3FFFF,
                   .exec = 0x3FFFF,
                   .length = static_cast<std::uint32_t>(bytes.size()),
                   .sector = sector});
        disc.Data(sector, bytes);
    }
    const std::string image = BlockText(0, kEnd * kSectorBytes);
    if (image == FileText(data / "discs" / kDisc))
        return;
    const auto made = std::filesystem::temp_directory_path() / kDisc;
    std::ofstream(made, std::ios::binary) << image;
    FAIL() << made << " is the disc of today's sources";
}

// The pages were worked out on paper.
TEST_F(WordWiseTest, ItsDocumentsComeOutAsWorkedOutByHand) {
    desktop.yes_no = {true};
    for (const GoldenPage& page : GoldenPages("wordwise.txt")) {
        SCOPED_TRACE(page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        Module1::gOffset = base;
        Module1::gSize = static_cast<int>(length);
        StyledSink sink;
        WordWise::FormatDocument(sink);
        EXPECT_EQ(sink.Page(), JoinLines(page.lines));
    }
    // Meant: each group of style commands but the first takes the document's first letters for a
    // command, and a command in the first line of a page is read twice.
    EXPECT_THAT(desktop.TakeBoxTexts(),
                ElementsAre("Unrecognised Command DD", "Unrecognised Command DD",
                            "Unrecognised Command DD", "Unrecognised Command ZZ",
                            "Unrecognised Command QQ"));
    ASSERT_EQ(desktop.questions.size(), 1U);
    EXPECT_THAT(desktop.questions[0].text, StartsWith("Unrecognised Command QQ\n"));
}

} // namespace
} // namespace quoravel
