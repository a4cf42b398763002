#include "support/view_test.h"

namespace quoravel {
namespace {

class FindTest : public ViewTest {
  protected:
    /// Lines 0 to 999, each with its number, "here" in every hundredth.
    View ShowLines() {
        std::string lines;
        for (int i = 0; i < 1000; ++i)
            lines += std::to_string(i) + (i % 100 == 0 ? " here\r" : "\r");
        return ShowText(lines);
    }

    static void Next(const View& view) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        QTest::keyClick(&Text(view), Qt::Key_G, Qt::ControlModifier);
    }
};

TEST_F(FindTest, TheDialogOpensWithTheLastSearchSelected) {
    const View first = ShowText("some text");
    InDialog(*first, "EditFind", [](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find"));
        EXPECT_EQ(dialog.size(), QSize(300, 100));
        Type(dialog, "txtFind", QStringLiteral("text"));
        Press(dialog, "cmdOK");
    });
    EXPECT_EQ(Selection(first), "5:text");
    const View second = ShowText("other text that reads on");
    Next(second); // in a window that has never searched
    EXPECT_EQ(Selection(second), "6:text");
    InDialog(*second, "EditFind", [](QWidget& dialog) {
        auto& field = Part<QLineEdit>(dialog, "txtFind");
        EXPECT_EQ(field.selectedText(), QStringLiteral("text"));
        QTest::keyClicks(&field, QStringLiteral("THE\r"));
    });
    EXPECT_EQ(Selection(second), "1:the") << "case makes no difference";
}

TEST_F(FindTest, CancelKeepsTheSearchTextAndSwitchesFindNextOff) {
    const View view = ShowText("ab ab ab");
    LookFor(view, QStringLiteral("ab"));
    LookFor(view, QStringLiteral("other"), Qt::Key_Escape);
    EXPECT_EQ(Module1::gStr, "ab");
    Next(view);
    EXPECT_EQ(Selection(view), "0:ab");
    LookFor(view, QStringLiteral("ab"));
    Next(view);
    EXPECT_EQ(Selection(view), "3:ab");
}

TEST_F(FindTest, MatchesMayOverlapAndEndWithTheLastOne) {
    const View view = ShowText("aaa\r\xC4\xE4 aa");
    LookFor(view, QStringLiteral("aa"));
    EXPECT_EQ(Selection(view), "0:aa");
    for (const char* match : {"1:aa", "8:aa", "8:aa", "8:aa"}) {
        Next(view);
        EXPECT_EQ(Selection(view), match);
    }
    LookFor(view, QStringLiteral("\u00E4"));
    EXPECT_EQ(Selection(view), "6:\xE4") << "only the letters A to Z are the same in both cases";
    LookFor(view, QString());
    Next(view);
    EXPECT_EQ(Selection(view), "1:") << "nothing is found where the search begins";
}

TEST_F(FindTest, AMissedFindIsNotToldAndSelectsFromTheStart_Meant) {
    const View view = ShowLines();
    Text(view).SetScrollPosition(500);
    LookFor(view, QStringLiteral("xyz"));
    EXPECT_TRUE(desktop.boxes.empty());
    EXPECT_EQ(Selection(view), "0:0 h") << "as many characters as were looked for";
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
    Next(view);
    EXPECT_EQ(view->fp, -1) << "searched from the first character, and gave up";
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(FindTest, OnlyAMatchThatCannotBeSeenScrollsAndComesToTheMiddle) {
    const View view = ShowLines();
    const int rows = static_cast<int>(Text(view).Height() / Text(view).TextHeight());
    const int middle = static_cast<int>(100 - rows / 2.0);

    struct Row {
        const char* what;
        int scrolled_to;
        int then;
    };

    for (const Row& row :
         {Row{"in the first row", 100, 100}, Row{"in the last row", 101 - rows, 101 - rows},
          Row{"one row above", 101, middle}, Row{"one row below", 100 - rows, middle}}) {
        SCOPED_TRACE(row.what);
        Module1::gStr = "here";
        view->fp = 4; // behind that of line 0
        Text(view).SetScrollPosition(row.scrolled_to);
        Next(view);
        EXPECT_EQ(Selection(view), "399:here");
        EXPECT_EQ(Text(view).ScrollPosition(), row.then);
        EXPECT_TRUE(Text(view).viewport()->rect().contains(Text(view).cursorRect()));
    }
}

} // namespace
} // namespace quoravel
