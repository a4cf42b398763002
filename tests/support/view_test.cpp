#include "support/view_test.h"

#include "support/disc_builder.h"
#include "view/wordwise/state.h"

#include <QApplication>

namespace quoravel {

void ViewTest::SetUp() {
    MainWindowTest::SetUp();
    Module1::gStr.clear();
    WordWise::Underline = false;
    WordWise::DoubleStrike = false;
}

void ViewTest::TearDown() {
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the busy cursor is still shown";
    EXPECT_EQ(desktop.TakeBoxTexts(), std::vector<std::string>{});
    MainWindowTest::TearDown();
}

void ViewTest::PutFile(std::string_view bytes, std::string_view name) const {
    DiscBuilder()
        .File({.name = name, .length = static_cast<std::uint32_t>(bytes.size()), .sector = 2})
        .Data(2, bytes);
    window->GetRootTitles(0);
}

ViewTest::View ViewTest::Show(const char* item) const {
    Choose(item);
    return Module1::gViewForm.lock();
}

ViewTest::View ViewTest::ShowText(std::string_view bytes) const {
    PutFile(bytes);
    return Show("FileViewAsText");
}

EditField& ViewTest::Text(const View& view) {
    return Part<EditField>(*view, "rtbView");
}

std::string ViewTest::Title(const View& view) {
    return view->windowTitle().toStdString();
}

void ViewTest::LookFor(const View& view, const QString& wanted, Qt::Key key) {
    InDialog(*view, "EditFind", [&](QWidget& dialog) {
        Part<QLineEdit>(dialog, "txtFind").setText(wanted);
        QTest::keyClick(&dialog, key);
    });
    view->activateWindow(); // as window managers do, of which there is none
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
}

std::string ViewTest::Selection(const View& view) {
    const EditField& text = Text(view);
    return std::to_string(text.SelStart()) + ":" + std::string(text.SelText());
}

} // namespace quoravel
