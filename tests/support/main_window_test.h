#pragma once

#include "disc/module1.h"
#include "platform/qt/listbox.h"
#include "shell/frmMain.h"
#include "support/temp_folder.h"
#include "support/ui_host.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QTest>

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quoravel {

/// The program as a person has it before them: the real main window, started, with a preferences
/// folder of its own. Actions are found by their names and must be enabled to be chosen.
class MainWindowTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the program (again, if it has run before: as the next session would).
    void Start();

    [[nodiscard]] QAction& Item(const char* name) const;
    /// Chooses a menu item; the test fails if it is dimmed.
    void Choose(const char* name) const;

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
    UiHost desktop;
    std::unique_ptr<frmMain> window;
};

} // namespace quoravel
