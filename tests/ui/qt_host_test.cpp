#include "platform/qt/application.h"
#include "platform/qt/guard.h"
#include "platform/qt/modal.h"
#include "platform/qt/qt_host.h"
#include "support/temp_folder.h"

#include <QApplication>
#include <QDialog>
#include <QFileOpenEvent>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <tuple>

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

TEST(QtHostTest, AClosedWindowIsDeletedWhenNoEntryStandsAnyMore) {
    QtHost desktop;
    const QPointer<QWidget> window = new QWidget;
    window->show();
    QApplication::setActiveWindow(window);
    Guarded([&] {
        WhileItStands([&](QWidget& box) {
            EXPECT_EQ(box.parentWidget(), window);
            Guarded([&] { DeleteWhenIdle(window); }); // as the end of a session may
            QCoreApplication::processEvents();
            QTest::keyClick(&box, Qt::Key_Return);
        });
        desktop.MsgBox("text");
        QCoreApplication::processEvents();
        EXPECT_FALSE(window.isNull());
    });
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
    App::exec();
    EXPECT_TRUE(window.isNull());
}

TEST(QtHostTest, AFailureThatNobodyForesawIsToldOnceAndTheProgramGoesOn) {
    QtHost desktop;
    InstallHost(&desktop);
    const auto fail = [] { Guarded([] { throw std::length_error("too long"); }); };
    WhileItStands([&](QWidget& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(),
                  QStringLiteral("That could not be done: too long. "
                                 "Better save your disc under another name."));
        fail(); // as what is painted below the box may
        EXPECT_EQ(QApplication::activeModalWidget(), &box);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    fail();
    WhileItStands([&](QWidget& /*box*/) { desktop.Quit(); });
    fail(); // the end of the program comes no further either
    InstallHost(nullptr);
}

TEST(QtHostTest, AtQuitEveryKindOfWaitUnwinds) {
    for (const auto& wait : std::vector<std::function<void(Host&)>>{
             [](Host& desktop) { desktop.MsgBox("text"); },
             [](Host& desktop) { static_cast<void>(desktop.AskYesNo("text", "")); },
             [](Host&) { ShowModal<QDialog>(); }, [](Host& desktop) { desktop.DoEvents(10'000); },
             [](Host&) {
                 while (true)
                     Yield();
             }}) {
        QtHost desktop;
        bool unwound = false;
        QTimer::singleShot(0, qApp, [&] {
            QTimer::singleShot(0, qApp, [&] { desktop.Quit(); });
            EXPECT_THROW(wait(desktop), AppQuitting);
            unwound = true;
        });
        App::exec();
        EXPECT_TRUE(unwound);
    }
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
    const QByteArray here = QByteArray::fromStdString(folder.path().string());
    using Row = std::tuple<QByteArray, int, std::string_view>;
    for (const auto& [searched, expected, told] :
         {Row{here + ":" + path, 3, "no method for https://quoravel.example/"},
          Row{here + "/none", 127, ""}}) {
        qputenv("PATH", searched);
        int code = -1;
        std::string result;
        desktop.OpenLink("https://quoravel.example/", [&](int c, const std::string& r) {
            std::tie(code, result) = std::pair(c, r);
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return code != -1; }));
        EXPECT_EQ(code, expected);
        EXPECT_TRUE(result.starts_with(told)) << result;
    }
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
