#include "platform/qt/application.h"
#include "platform/qt/modal.h"
#include "platform/qt/qt_host.h"
#include "support/temp_folder.h"

#include <QApplication>
#include <QDialog>
#include <QFileOpenEvent>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace quoravel {
namespace {

using namespace std::chrono_literals;

/// Does something to the box that stands next.
template<class Act>
void WhileItStands(const Act& act) {
    QTimer::singleShot(0, qApp, [act] {
        ASSERT_NE(QApplication::activeModalWidget(), nullptr);
        act(*QApplication::activeModalWidget());
    });
}

TEST(QtHostTest, ABoxShowsItsTextAsItStandsAndKeysAnswerIt) {
    QtHost desktop;
    WhileItStands([](QWidget& box) {
        const auto& message = dynamic_cast<QMessageBox&>(box);
        EXPECT_EQ(message.text(), QStringLiteral("Cannot open <b>Größe</b>.ssd"));
        EXPECT_EQ(message.textFormat(), Qt::PlainText);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    desktop.MsgBox("Cannot open <b>Größe</b>.ssd");
    for (const auto& [key, answer] : {std::pair(Qt::Key_Return, true), {Qt::Key_Escape, false}}) {
        WhileItStands([key = key](QWidget& box) { QTest::keyClick(&box, key); });
        EXPECT_EQ(desktop.AskYesNo("Save your changes now ?", "Changes will be lost"), answer);
    }
}

/// Lets `wait` run under a real event loop, quits while it stands, and tells whether it unwound.
bool UnwindsAtQuit(const std::function<void(Host&)>& wait) {
    QtHost desktop;
    bool unwound = false;
    QTimer::singleShot(0, qApp, [&] {
        QTimer::singleShot(0, qApp, [&] { desktop.Quit(); });
        try {
            wait(desktop);
        } catch (const AppQuitting&) {
            unwound = true;
        }
    });
    App::exec();
    return unwound;
}

TEST(QtHostQuit, UnwindsEveryKindOfWait) {
    EXPECT_TRUE(UnwindsAtQuit([](Host& desktop) { desktop.MsgBox("text"); }));
    EXPECT_TRUE(
        UnwindsAtQuit([](Host& desktop) { static_cast<void>(desktop.AskYesNo("text", "")); }));
    EXPECT_TRUE(UnwindsAtQuit([](Host&) { ShowModal<QDialog>(); }));
    EXPECT_TRUE(UnwindsAtQuit([](Host& desktop) { desktop.DoEvents(10'000); }));
    EXPECT_TRUE(UnwindsAtQuit([](Host&) {
        while (true)
            Yield();
    }));
}

TEST(QtHostTest, DoEventsKeepsItsPaceAndRunsWhatComes) {
    QtHost desktop;
    bool fired = false;
    QTimer::singleShot(1ms, qApp, [&] { fired = true; });
    const auto start = desktop.Now();
    desktop.DoEvents(20);
    EXPECT_GE(desktop.Now() - start, 20ms);
    EXPECT_TRUE(fired);
}

TEST(QtHostTest, ALinkTellsHowItsOpenerEnded) {
    QtHost desktop;
    const TempFolder folder;
    std::filesystem::permissions(
        folder.File("xdg-open", "#!/bin/sh\necho no method for $1\nexit 3\n"),
        std::filesystem::perms::owner_all);
    const QByteArray path = qgetenv("PATH");
    int code = -1;
    std::string result;
    const auto open = [&] {
        code = -1;
        desktop.OpenLink("https://quoravel.example/", [&](int c, const std::string& r) {
            code = c;
            result = r;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return code != -1; }));
    };
    qputenv("PATH", QByteArray::fromStdString(folder.path().string()) + ":" + path);
    open();
    EXPECT_EQ(code, 3);
    EXPECT_EQ(result, "no method for https://quoravel.example/");
    qputenv("PATH", QByteArray::fromStdString(folder.path().string() + "/none"));
    open();
    EXPECT_EQ(code, 127);
    qputenv("PATH", path);
}

TEST(QtHostTest, ADocumentOfTheDesktopReachesTheProgram) {
    std::filesystem::path opened;
    App& app = dynamic_cast<App&>(*qApp);
    app.Event_OpenDocument = [&](const std::filesystem::path& file) { opened = file; };
    QFileOpenEvent event(QStringLiteral("/discs/games.dsd"));
    QCoreApplication::sendEvent(&app, &event);
    app.Event_OpenDocument = nullptr;
    EXPECT_EQ(opened, "/discs/games.dsd");
}

} // namespace
} // namespace quoravel
