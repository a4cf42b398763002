#include "support/main_window_test.h"

#include "platform/qt/serial_port.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

namespace quoravel {

namespace fs = std::filesystem;

MainWindowTest::MainWindowTest(std::unique_ptr<UiHost> host) : host_(std::move(host)) {
}

void MainWindowTest::SetUp() {
    fs::create_directory(folder.path() / "config");
    desktop.preferences_folder = folder.path() / "config";
    desktop.state_folder = folder.path() / "state";
    Start();
}

void MainWindowTest::TearDown() {
    window.reset();
    ListPortsWith({});
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

void MainWindowTest::Choose(const QWidget& window, const char* item) {
    for (QMenu* menu : window.findChildren<QMenu*>())
        Q_EMIT menu->aboutToShow();
    auto& found = Part<QAction>(window, item);
    EXPECT_TRUE(found.isEnabled()) << item;
    found.trigger();
}

void MainWindowTest::InDialog(const QWidget& window, const char* item,
                              const std::function<void(QWidget&)>& act) {
    QTimer::singleShot(0, &window, [&act] {
        const QPointer<QWidget> dialog = QApplication::activeModalWidget();
        ASSERT_FALSE(dialog.isNull());
        act(*dialog);
        if (!dialog.isNull() && dialog->isVisible()) {
            ADD_FAILURE() << "still open at the end";
            dialog->hide();
        }
    });
    Choose(window, item);
}

void MainWindowTest::Type(const QWidget& dialog, const char* field, const QString& text) {
    auto& edit = Part<QLineEdit>(dialog, field);
    edit.selectAll();
    QTest::keyClicks(&edit, text);
}

void MainWindowTest::PlugInCable(const QString& path) {
    ListPortsWith([path] { return std::vector<PortInfo>{{QStringLiteral("Cable"), path}}; });
}

Listbox& MainWindowTest::List(int drive) const {
    return Part<Listbox>(*window, drive == 0 ? "lvwDB(0)" : "lvwDB(1)");
}

std::string MainWindowTest::Status(int drive) const {
    return Part<QLabel>(*window, drive == 0 ? "MsgText(0)" : "MsgText(1)").text().toStdString();
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
