#include "platform/qt/byte_marks.h"
#include "platform/qt/edit_field.h"
#include "support/ui_host.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace quoravel {
namespace {

class EditFieldTest : public testing::Test {
  protected:
    EditFieldTest() {
        field.resize(600, 300);
        field.show();
        QApplication::processEvents();
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
    for (int code = 0; code < 256; ++code)
        text += std::string{'<', static_cast<char>(code), '>'} + "\r\n";
    field.SetSelText(text);
    EXPECT_EQ(field.Text(), text);
    ASSERT_EQ(field.document()->blockCount(), 257);
    const int column = ColumnOf(2);
    for (std::size_t code = 0; code < 256; ++code)
        EXPECT_EQ(ColumnOf(5 * code + 2), column) << "behind byte " << code;
}

TEST_F(EditFieldTest, WhatHasNoPictureShowsAMarkOfItsOwn) {
    std::vector<QImage> marks{PictureOf(' ')};
    for (int code = 0; code < 256; ++code) {
        if (!HasMark(static_cast<char>(code)))
            continue;
        const QImage mark = PictureOf(static_cast<char>(code));
        EXPECT_EQ(std::ranges::find(marks, mark), marks.end()) << code << " looks like another";
        marks.push_back(mark);
    }
    EXPECT_EQ(marks.size(), 1U + 32U + 33U + 1U);
}

// Text built from the pieces that line ends are made of, written in pieces at random places, is
// held against a plain string.
TEST_F(EditFieldTest, PositionsCountInTheTextAsItWasGiven) {
    std::mt19937 random(4); // NOLINT(cert-msc51-cpp): the same texts each time
    const std::vector<std::string> pieces{"a", "bc", "\r", "\n", "\r\n", "\r\n\r\n", "\t", ""};
    std::string expected;
    for (int i = 0; i < 400; ++i) {
        const int size = static_cast<int>(expected.size());
        const int start = static_cast<int>(random() % (expected.size() + 21)) - 10;
        field.SetSelStart(start); // outside the text is its nearer end
        EXPECT_LE(std::abs(field.SelStart() - std::clamp(start, 0, size)), 1);
        field.SetSelLength(static_cast<int>(random() % 5) - 1);
        const auto from = static_cast<std::size_t>(field.SelStart());
        const auto length = static_cast<std::size_t>(field.SelLength());
        const std::string& piece = pieces[random() % pieces.size()];
        EXPECT_EQ(field.SelText(), expected.substr(from, length));
        field.SetSelStart(static_cast<int>(from + length)); // the end of what is selected
        EXPECT_EQ(field.SelLength(), 0);
        field.SetSelStart(static_cast<int>(from));
        field.SetSelLength(static_cast<int>(length));
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

TEST_F(EditFieldTest, WhatIsWrittenIsThereWithTheNextEventsAndDoesNotScroll) {
    std::string lines;
    for (int i = 0; i < 100; ++i)
        lines += "line\r\n";
    field.SetSelText(lines);
    QApplication::processEvents();
    EXPECT_GT(field.verticalScrollBar()->maximum(), 50);
    field.SetScrollPosition(20);
    field.SetSelStart(static_cast<int>(lines.size()));
    field.SetSelText(lines);
    QApplication::processEvents();
    EXPECT_EQ(field.ScrollPosition(), 20);
}

TEST_F(EditFieldTest, StylesHoldForWhatIsWrittenAfterThem) {
    field.SetSelText("plain ");
    field.SetSelBold(true);
    field.SetSelText("bold ");
    field.SetSelUnderline(true);
    field.SetSelBold(false);
    field.SetSelText("underlined");
    std::string styles;
    const QTextBlock line = field.document()->firstBlock();
    for (auto piece = line.begin(); !piece.atEnd(); ++piece) {
        const QTextCharFormat format = piece.fragment().charFormat();
        styles += piece.fragment().text().toStdString() + (format.fontUnderline() ? "_" : "") +
                  (format.fontWeight() == QFont::Bold ? "*" : "") + "|";
    }
    EXPECT_EQ(styles, "plain |bold *|underlined_|");
    EXPECT_EQ(ColumnOf(10) - ColumnOf(5), ColumnOf(5) - ColumnOf(0)) << "bold has other cells";
}

TEST_F(EditFieldTest, TheUserCannotChangeTheText) {
    field.SetSelText("kept");
    QGuiApplication::clipboard()->setText(QStringLiteral("other"));
    QTest::keyClicks(&field, QStringLiteral("abc"));
    QTest::keyClick(&field, Qt::Key_Backspace);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(field.toPlainText(), QStringLiteral("kept"));
}

TEST_F(EditFieldTest, ALongLineIsScrolledToItsCaret) {
    field.SetSelText(std::string(200000, 'x') + "y\r\nshort");
    for (const int caret : {200000, 3}) {
        field.SetSelStart(caret);
        field.ShowCaretColumn();
        EXPECT_TRUE(field.viewport()->rect().contains(field.cursorRect())) << caret;
    }
}

} // namespace
} // namespace quoravel
