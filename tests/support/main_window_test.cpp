#include "support/main_window_test.h"

#include <QApplication>

#include <stdexcept>

namespace quoravel {

namespace fs = std::filesystem;

void MainWindowTest::SetUp() {
    fs::create_directory(folder.path() / "config");
    desktop.preferences_folder = folder.path() / "config";
    desktop.state_folder = folder.path() / "state";
    Start();
}

void MainWindowTest::TearDown() {
    window.reset();
    EXPECT_TRUE(desktop.files.empty()) << "a dialog was expected and did not come";
    EXPECT_TRUE(desktop.yes_no.empty()) << "a question was expected and did not come";
}

void MainWindowTest::Start() {
    window.reset();
    desktop.quitting = false;
    Module1::gDirty = false;
    window = std::make_unique<frmMain>();
    window->Event_Open();
    QApplication::setActiveWindow(window.get()); // the offscreen platform has no window manager
}

QAction& MainWindowTest::Item(const char* name) const {
    auto* item = window->findChild<QAction*>(QLatin1StringView(name));
    if (item == nullptr)
        throw std::runtime_error(std::string("no menu item ") + name);
    return *item;
}

void MainWindowTest::Choose(const char* name) const {
    EXPECT_TRUE(Item(name).isEnabled()) << name;
    Item(name).trigger();
}

Listbox& MainWindowTest::List(int drive) const {
    return *window->findChild<Listbox*>(QStringLiteral("lvwDB(%1)").arg(drive));
}

std::string MainWindowTest::Status(int drive) const {
    return window->findChild<QLabel*>(QStringLiteral("MsgText(%1)").arg(drive))
        ->text()
        .toStdString();
}

std::vector<std::string> MainWindowTest::Names(int drive) const {
    std::vector<std::string> names;
    for (int row = 0; row < List(drive).ListCount(); ++row)
        names.push_back(List(drive).Cell(row, 0));
    return names;
}

std::vector<std::string> MainWindowTest::Row(int drive, int row) const {
    std::vector<std::string> cells;
    for (int column = 0; column < List(drive).columnCount(); ++column)
        cells.push_back(List(drive).Cell(row, column));
    return cells;
}

std::vector<int> MainWindowTest::SelectedRows(int drive) const {
    std::vector<int> rows;
    for (int row = 0; row < List(drive).ListCount(); ++row)
        if (List(drive).Selected(row))
            rows.push_back(row);
    return rows;
}

void MainWindowTest::Click(int drive, int row, Qt::KeyboardModifiers keys,
                           Qt::MouseButton button) const {
    Listbox& list = List(drive);
    const QPoint cell = list.visualItemRect(list.topLevelItem(row)).topLeft() + QPoint(10, 5);
    QTest::mouseClick(list.viewport(), button, keys, cell);
}

fs::path MainWindowTest::CopyOfDisc(const char* name) const {
    const fs::path copy = folder.path() / name;
    fs::copy_file(fs::path(TEST_DATA) / "discs" / name, copy);
    return copy;
}

} // namespace quoravel
