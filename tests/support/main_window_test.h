#pragma once

#include "disc/module1.h"
#include "shell/frmMain.h"
#include "support/temp_folder.h"
#include "support/ui_host.h"
#include "support/windows.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quoravel {

/// The program as a person has it before them: the real main window, started, with a preferences
/// folder of its own.
class MainWindowTest : public testing::Test {
  protected:
    explicit MainWindowTest(std::unique_ptr<UiHost> host = std::make_unique<UiHost>());

    void SetUp() override;
    void TearDown() override;

    /// Starts the program (again, if it has run before: as the next session would).
    void Start();

    /// Opens the menus and chooses an item; the test fails if it is dimmed.
    static void Choose(const QWidget& window, const char* item);

    void Choose(const char* item) const { Choose(*window, item); }

    /// Chooses an item that shows a dialog or box. `act` gets that while it stands, and ends it.
    static void InDialog(const QWidget& window, const char* item,
                         const std::function<void(QWidget&)>& act);

    void InDialog(const char* item, const std::function<void(QWidget&)>& act) const {
        InDialog(*window, item, act);
    }

    /// Replaces what is in a field.
    static void Type(const QWidget& dialog, const char* field, const QString& text);

    /// One serial port, "Cable", for as long as the test takes.
    static void PlugInCable(const QString& path = QStringLiteral("/nowhere"));

    [[nodiscard]] Listbox& List(int drive) const;
    [[nodiscard]] std::string Status(int drive) const;

    [[nodiscard]] std::string Title() const { return window->windowTitle().toStdString(); }

    /// The texts of column 0, or of a row.
    [[nodiscard]] std::vector<std::string> Names(int drive) const;
    [[nodiscard]] std::vector<std::string> Row(int drive, int row) const;
    /// Rows that are highlighted.
    [[nodiscard]] std::vector<int> SelectedRows(int drive) const;
    /// Clicks a cell as a person does.
    void Click(int drive, int row, Qt::KeyboardModifiers keys = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton) const;

    /// A copy of one of the discs of tests/data/discs in the test's folder.
    [[nodiscard]] std::filesystem::path CopyOfDisc(const char* name) const;

    TempFolder folder;
    const std::unique_ptr<UiHost> host_;
    UiHost& desktop = *host_;
    std::unique_ptr<frmMain> window;
};

} // namespace quoravel
