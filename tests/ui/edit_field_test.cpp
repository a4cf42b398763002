#include "platform/qt/byte_marks.h"
#include "platform/qt/edit_field.h"
#include "support/ui_host.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>
#include <random>

namespace quoravel {
namespace {

std::string AllBytes() {
    std::string bytes;
    for (int code = 0; code < 256; ++code)
        bytes += static_cast<char>(code);
    return bytes;
}

class EditFieldTest : public testing::Test {
  protected:
    EditFieldTest() {
        field.resize(600, 300);
        field.show();
        QApplication::processEvents();
    }

    void Append(std::string_view text) {
        field.SetSelStart(static_cast<int>(field.Text().size()));
        field.SetSelText(text);
    }

    /// Where a byte stands on screen, from the left.
    int ColumnOf(std::size_t offset) {
        field.SetSelStart(static_cast<int>(offset));
        return field.cursorRect().left();
    }

    /// A picture of the cell that a byte alone in the text takes.
    QImage PictureOf(char byte) {
        field.selectAll();
        field.SetSelText(std::string{' ', byte, ' '});
        field.clearFocus();
        const int left = ColumnOf(1);
        return field.viewport()
            ->grab({left, 0, ColumnOf(2) - left, static_cast<int>(field.TextHeight()) + 4})
            .toImage();
    }

    UiHost desktop;
    EditField field;
};

TEST_F(EditFieldTest, EveryByteIsKeptAndTakesOneCell) {
    std::string text;
    for (const char byte : AllBytes())
        text += std::string{'<', byte, '>'} + "\r\n";
    field.SetSelText(text);
    EXPECT_EQ(field.Text(), text);
    ASSERT_EQ(field.document()->blockCount(), 257);
    const int column = ColumnOf(2);
    for (std::size_t code = 0; code < 256; ++code)
        EXPECT_EQ(ColumnOf(5 * code + 2), column) << "behind byte " << code;
}

TEST_F(EditFieldTest, WhatHasNoPictureShowsAMarkOfItsOwn) {
    const QImage blank = PictureOf(' ');
    std::vector<QImage> marks;
    for (const char byte : AllBytes()) {
        if (!HasMark(byte))
            continue;
        SCOPED_TRACE(static_cast<unsigned char>(byte));
        const QImage mark = PictureOf(byte);
        EXPECT_NE(mark, blank);
        EXPECT_EQ(std::ranges::find(marks, mark), marks.end()) << "looks like another";
        marks.push_back(mark);
    }
    EXPECT_EQ(marks.size(), 32U + 33U + 1U);
}

TEST_F(EditFieldTest, CopyGivesOrdinaryLineEndsAndTheOriginalCharacters) {
    field.SetSelText("one\r\ntab\there\r\n\xA3\xA0\x07.\r.\n.");
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QStringLiteral("one\ntab\there\n\u00A3\u00A0\x07.\r.\n."));
}

// Text built from the pieces that line ends are made of, written in pieces at random places, is
// held against a plain string.
TEST_F(EditFieldTest, PositionsCountInTheTextAsItWasGiven) {
    std::mt19937 random(4); // NOLINT(cert-msc51-cpp): the same texts each time
    const std::vector<std::string> pieces{"a", "bc", "\r", "\n", "\r\n", "\r\n\r\n", "\t", ""};
    std::string expected;
    for (int i = 0; i < 400; ++i) {
        const auto start = static_cast<std::size_t>(random() % (expected.size() + 1));
        field.SetSelStart(static_cast<int>(start));
        field.SetSelLength(static_cast<int>(random() % 4));
        const auto from = static_cast<std::size_t>(field.SelStart());
        const auto length = static_cast<std::size_t>(field.SelLength());
        const std::string& piece = pieces[random() % pieces.size()];
        EXPECT_EQ(field.SelText(), expected.substr(from, length));
        field.SetSelText(piece);
        expected.replace(from, length, piece);
        ASSERT_EQ(field.Text(), expected);
    }
    int lines = 1;
    for (std::size_t offset = 0; offset <= expected.size(); ++offset) {
        const bool inside_line_end =
            offset > 0 && std::string_view(expected).substr(offset - 1).starts_with("\r\n");
        field.SetSelStart(static_cast<int>(offset));
        EXPECT_EQ(field.SelStart(), static_cast<int>(offset) - (inside_line_end ? 1 : 0));
        EXPECT_EQ(field.LineNumAtCharPos(static_cast<int>(offset)) + 1, lines);
        if (inside_line_end)
            ++lines;
    }
    EXPECT_EQ(field.document()->blockCount(), lines);
}

TEST_F(EditFieldTest, ASelectionOutsideTheTextIsCutOff) {
    field.SetSelText("first\r\nsecond");

    struct Row {
        int start;
        int length;
        std::string_view selected;
    };

    for (const Row& row : {Row{-1, 5, "first"}, Row{-100, 3, "fir"}, Row{7, 1000, "second"},
                           Row{1000, 4, ""}, Row{3, -2, ""}, Row{3, 6, "st\r\nse"}}) {
        SCOPED_TRACE(row.start);
        field.SetSelStart(row.start);
        field.SetSelLength(row.length);
        EXPECT_EQ(field.SelText(), row.selected);
    }
}

TEST_F(EditFieldTest, WhatIsWrittenIsThereWithTheNextEventsAndDoesNotScroll) {
    for (int i = 0; i < 100; ++i)
        Append("line\r\n");
    QApplication::processEvents();
    EXPECT_GT(field.verticalScrollBar()->maximum(), 50);
    EXPECT_EQ(field.ScrollPosition(), 0);
    field.SetScrollPosition(20);
    for (int i = 0; i < 100; ++i) {
        Append("line\r\n");
        QApplication::processEvents();
    }
    EXPECT_EQ(field.ScrollPosition(), 20);
}

TEST_F(EditFieldTest, StylesHoldForWhatIsWrittenAfterThem) {
    Append("plain ");
    field.SetSelBold(true);
    Append("bold ");
    field.SetSelUnderline(true);
    field.SetSelBold(false);
    Append("underlined");
    const auto style = [&](int offset) {
        QTextCursor cursor(field.document());
        cursor.setPosition(offset + 1);
        const QTextCharFormat format = cursor.charFormat();
        return std::pair(format.fontWeight() == QFont::Bold, format.fontUnderline());
    };
    EXPECT_EQ(style(2), std::pair(false, false));
    EXPECT_EQ(style(8), std::pair(true, false));
    EXPECT_EQ(style(15), std::pair(false, true));
    EXPECT_EQ(ColumnOf(10) - ColumnOf(5), ColumnOf(5) - ColumnOf(0)) << "bold has other cells";
}

TEST_F(EditFieldTest, TheUserCannotChangeTheText) {
    field.SetSelText("kept");
    QGuiApplication::clipboard()->setText(QStringLiteral("other"));
    QTest::keyClicks(&field, QStringLiteral("abc"));
    QTest::keyClick(&field, Qt::Key_Backspace);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(field.Text(), "kept");
    EXPECT_EQ(field.toPlainText(), QStringLiteral("kept"));
}

TEST_F(EditFieldTest, ALongLineIsScrolledToItsCaret) {
    field.SetSelText(std::string(200000, 'x') + "y\r\nshort");
    field.SetSelStart(200000);
    field.ShowCaretColumn();
    EXPECT_TRUE(field.viewport()->rect().contains(field.cursorRect()));
    field.SetSelStart(3);
    field.ShowCaretColumn();
    EXPECT_TRUE(field.viewport()->rect().contains(field.cursorRect()));
}

} // namespace
} // namespace quoravel
