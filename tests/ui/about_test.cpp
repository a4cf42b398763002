#include "platform/qt/link_label.h"
#include "shell/frmAbout.h"
#include "support/ui_host.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace quoravel {
namespace {

class AboutTest : public testing::Test {
  protected:
    LinkLabel& Link(const char* name) {
        return *window.findChild<LinkLabel*>(QLatin1StringView(name));
    }

    UiHost desktop;
    frmAbout window{nullptr};
};

TEST_F(AboutTest, ItTellsTheVersionAndClosesWithOk) {
    window.show();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("About Quoravel"));
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblVersion"))->text(),
              QStringLiteral("2.0.0"));
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    EXPECT_TRUE(window.isHidden());
}

TEST_F(AboutTest, LinksOpenThroughTheDesktopByMouseAndByKey) {
    window.show();
    QTest::mouseClick(&Link("StaticText11"), Qt::LeftButton);
    QTest::keyClick(&Link("StaticText12"), Qt::Key_Return);
    ASSERT_EQ(desktop.links.size(), 2U);
    EXPECT_TRUE(desktop.links[0].starts_with("mailto:") &&
                desktop.links[0].find("subject=Quoravel") != std::string::npos);
    EXPECT_TRUE(desktop.links[1].starts_with("https://"));
    EXPECT_TRUE(desktop.boxes.empty());
    EXPECT_EQ(Link("StaticText11").cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(window.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(AboutTest, ALinkThatFailsIsToldAndLeavesTheWindowOpen) {
    window.show();
    desktop.link_code = 3;
    desktop.link_result = "no method available for opening";
    QTest::mouseClick(&Link("StaticText12"), Qt::LeftButton);
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Error 3, no method available for opening"});
    EXPECT_TRUE(window.isVisible());
}

} // namespace
} // namespace quoravel
