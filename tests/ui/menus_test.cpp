#include "platform/qt/menu_bar.h"
#include "shell/menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <gtest/gtest.h>

namespace quoravel {
namespace {

QString Texts(const QList<QAction*>& items) {
    QStringList texts;
    for (const QAction* item : items)
        texts.append(item->isSeparator() ? QStringLiteral("-") : item->text());
    return texts.join(u'|');
}

TEST(Menus, ItemsStandWhereTheTableHasThemAndAreDimmedWithoutAHandlerOrByTheirRule) {
    QMenuBar bar;
    MenuBar menus(bar, frmMainMenu);
    EXPECT_EQ(Texts(bar.actions()), QStringLiteral("Disc|&File|Options|Tavrilo|Help"));
    EXPECT_EQ(Texts(menus.Menu("TavriloReceive").actions()),
              QStringLiteral("SSD Drive 0|SSD Drive 1|SSD Drive 2|SSD Drive 3|-|DSD Drive 0|"
                             "DSD Drive 1"));
    EXPECT_EQ(menus.Item("DiscSaveDiscImageAs").shortcut(),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));

    bool tracing = false;
    menus.SetRule("TraceWindow", [&] { return !tracing; });
    EXPECT_FALSE(menus.Item("TraceWindow").isEnabled());
    menus.Handle("TraceWindow", [] {});
    for (const bool now : {true, false}) {
        EXPECT_EQ(menus.Item("TraceWindow").isEnabled(), now);
        tracing = now;
        Q_EMIT menus.Menu("TavriloTrace").aboutToShow();
    }
}

} // namespace
} // namespace quoravel
