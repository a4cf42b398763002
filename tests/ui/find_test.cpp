#include "support/view_test.h"

#include <QLabel>
#include <QPushButton>

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

    static int VisibleRows(const View& view) {
        return static_cast<int>(Text(view).Height() / Text(view).TextHeight());
    }

    static int SelectedLine(const View& view) {
        return Text(view).LineNumAtCharPos(Text(view).SelStart());
    }

    static void Next(const View& view) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        QTest::keyClick(&Text(view), Qt::Key_G, Qt::ControlModifier);
    }
};

TEST_F(FindTest, TheDialogOpensWithTheLastSearchSelected) {
    const View first = ShowText("some text");
    Find(first, [](QLineEdit& field, QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find"));
        EXPECT_EQ(dialog.size(), QSize(300, 100));
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("StaticText1"))->text(),
                  QStringLiteral("Find :"));
        QTest::keyClicks(&field, QStringLiteral("text"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    EXPECT_EQ(Selection(first), "5:text");
    const View second = ShowText("other");
    Find(second, [](QLineEdit& field, QDialog&) {
        EXPECT_EQ(field.selectedText(), QStringLiteral("text"));
        QTest::keyClicks(&field, QStringLiteral("THE"));
        QTest::keyClick(&field, Qt::Key_Return);
    });
    EXPECT_EQ(Selection(second), "1:the") << "case makes no difference";
}

TEST_F(FindTest, CancelKeepsTheSearchTextAndSwitchesFindNextOff) {
    const View view = ShowText("ab ab ab");
    Find(view, QStringLiteral("ab"));
    Find(view, [](QLineEdit& field, QDialog& dialog) {
        field.setText(QStringLiteral("other"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(Module1::gStr, "ab");
    EXPECT_EQ(view->fp, -1);
    Next(view);
    EXPECT_EQ(Selection(view), "0:ab");
    Find(view, QStringLiteral("ab"));
    Next(view);
    EXPECT_EQ(Selection(view), "3:ab");
}

TEST_F(FindTest, MatchesMayOverlapAndPositionsCountTheLineEnds) {
    const View view = ShowText("aaa\r\xC4\xE4 aa");
    Find(view, QStringLiteral("aa"));
    EXPECT_EQ(Selection(view), "0:aa");
    for (const char* match : {"1:aa", "8:aa"}) {
        Next(view);
        EXPECT_EQ(Selection(view), match);
    }
    Find(view, QStringLiteral("\u00E4"));
    EXPECT_EQ(Selection(view), "6:\xE4") << "only the letters A to Z are the same in both cases";
}

TEST_F(FindTest, BehindTheLastMatchNothingHappensAnyLonger) {
    const View view = ShowText("ab ab");
    Find(view, QStringLiteral("ab"));
    Next(view);
    for (int i = 0; i < 3; ++i) {
        Next(view);
        EXPECT_EQ(Selection(view), "3:ab");
        EXPECT_EQ(view->fp, -1);
    }
}

TEST_F(FindTest, FindNextInAWindowThatNeverSearchedTakesTheLastSearchOfAnother) {
    Find(ShowText("needle"), QStringLiteral("ee"));
    const View view = ShowText("three trees");
    Next(view);
    EXPECT_EQ(Selection(view), "3:ee");
}

TEST_F(FindTest, AMissedFindIsNotToldAndSelectsFromTheStartAsMeant) {
    const View view = ShowLines();
    Text(view).SetScrollPosition(500);
    Find(view, QStringLiteral("xyz"));
    EXPECT_TRUE(desktop.boxes.empty());
    EXPECT_EQ(view->fp, 0);
    EXPECT_EQ(Selection(view), "0:0 h") << "as many characters as were looked for";
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
    Next(view);
    EXPECT_EQ(view->fp, -1) << "searched from the first character, and gave up";
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(FindTest, NothingIsFoundWhereTheSearchBegins) {
    const View view = ShowText("ab");
    Find(view, QString());
    EXPECT_EQ(view->fp, 1);
    Next(view);
    EXPECT_EQ(Selection(view), "1:");
}

TEST_F(FindTest, AMatchThatCanBeSeenDoesNotScroll) {
    const View view = ShowLines();
    Text(view).SetScrollPosition(95);
    QTest::keyClick(&Text(view), Qt::Key_Home, Qt::ControlModifier);
    Text(view).SetScrollPosition(95);
    Module1::gStr = "100";
    Next(view);
    EXPECT_EQ(SelectedLine(view), 100);
    EXPECT_EQ(Text(view).ScrollPosition(), 95);
    Text(view).SetScrollPosition(101 - VisibleRows(view));
    view->fp = 0;
    Next(view);
    EXPECT_EQ(Text(view).ScrollPosition(), 101 - VisibleRows(view)) << "it is in the last row";
}

TEST_F(FindTest, AMatchThatCannotBeSeenComesToTheMiddle) {
    const View view = ShowLines();
    Find(view, QStringLiteral("here"));
    EXPECT_EQ(Text(view).ScrollPosition(), 0);
    for (int line = 100; line < 400; line += 100) {
        Next(view);
        EXPECT_EQ(SelectedLine(view), line);
        EXPECT_EQ(Text(view).ScrollPosition(), static_cast<int>(line - VisibleRows(view) / 2.0));
        EXPECT_TRUE(Text(view).viewport()->rect().contains(Text(view).cursorRect()));
    }
    Text(view).SetScrollPosition(101); // one row below the match
    view->fp = 4;
    Next(view);
    EXPECT_EQ(SelectedLine(view), 100);
    EXPECT_EQ(Text(view).ScrollPosition(), static_cast<int>(100 - VisibleRows(view) / 2.0));
}

} // namespace
} // namespace quoravel
