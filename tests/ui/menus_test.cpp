#include "platform/qt/menu_bar.h"
#include "shell/menus.h"
#include "support/main_window_test.h"

#include <QMenuBar>

namespace quoravel {
namespace {

TEST(Menus, AnItemWithoutAHandlerIsDimmedWhateverItsRuleSays) {
    QMenuBar bar;
    MenuBar menus(bar, frmMainMenu);
    bool tracing = false;
    menus.SetRule("TraceWindow", [&] { return !tracing; });
    EXPECT_FALSE(menus.Item("TraceWindow").isEnabled());

    menus.Handle("TraceWindow", [] {});
    EXPECT_TRUE(menus.Item("TraceWindow").isEnabled());
    tracing = true;
    Q_EMIT menus.Menu("TavriloTrace").aboutToShow();
    EXPECT_FALSE(menus.Item("TraceWindow").isEnabled());
    tracing = false;
    Q_EMIT menus.Menu("TavriloTrace").aboutToShow();
    EXPECT_TRUE(menus.Item("TraceWindow").isEnabled());
}

TEST(Menus, SubmenusAndSeparatorsStandWhereTheTableHasThem) {
    QMenuBar bar;
    const MenuBar menus(bar, frmMainMenu);
    QStringList top;
    for (const QAction* action : bar.actions())
        top.append(action->text());
    EXPECT_EQ(top.join(u'|'), QStringLiteral("Disc|&File|Options|Tavrilo|Help"));

    QStringList receive;
    for (const QAction* action : menus.Menu("TavriloReceive").actions())
        receive.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    EXPECT_EQ(receive.join(u'|'),
              QStringLiteral("SSD Drive 0|SSD Drive 1|SSD Drive 2|SSD Drive 3|-|DSD Drive 0|"
                             "DSD Drive 1"));
    EXPECT_EQ(menus.Menu("DiscNewDiscImage").actions().size(), 6);
    EXPECT_EQ(menus.Item("DiscSaveDiscImageAs").shortcut(),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
}

using MenuTest = MainWindowTest;

TEST_F(MenuTest, OptionMarksOutliveTheProgram) {
    EXPECT_TRUE(Item("OptionsDeleteLockedFiles").isChecked()) << "on until somebody turns it off";
    Choose("OptionsDeleteLockedFiles");
    Choose("OptionsAutoLoad");
    window->close();
    Start();
    EXPECT_FALSE(Item("OptionsDeleteLockedFiles").isChecked());
    EXPECT_TRUE(Item("OptionsPlayWave").isChecked());
    EXPECT_FALSE(Item("OptionsAutoLoad").isChecked());
}

} // namespace
} // namespace quoravel
