#include "platform/qt/link_label.h"
#include "shell/frmAbout.h"
#include "support/ui_host.h"
#include "support/windows.h"

#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

namespace quoravel {
namespace {

TEST(About, ItTellsTheVersionAndOpensLinksByMouseAndByKey) {
    UiHost desktop;
    frmAbout window{nullptr};
    window.show();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("About Quoravel"));
    EXPECT_EQ(Part<QLabel>(window, "lblVersion").text(), QStringLiteral("2.0.0"));
    auto& mail = Part<LinkLabel>(window, "StaticText11");
    EXPECT_EQ(mail.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseClick(&mail, Qt::LeftButton);
    EXPECT_TRUE(desktop.boxes.empty());
    desktop.link_code = 3;
    desktop.link_result = "no method available for opening";
    QTest::keyClick(&Part<LinkLabel>(window, "StaticText12"), Qt::Key_Return);
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Error 3, no method available for opening"});
    ASSERT_EQ(desktop.links.size(), 2U);
    EXPECT_TRUE(desktop.links[0].starts_with("mailto:") &&
                desktop.links[0].find("subject=Quoravel") != std::string::npos);
    EXPECT_TRUE(desktop.links[1].starts_with("https://"));
    Press(window, "cmdOK");
    EXPECT_TRUE(window.isHidden());
}

} // namespace
} // namespace quoravel
