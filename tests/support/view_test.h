#pragma once

#include "platform/qt/edit_field.h"
#include "support/main_window_test.h"
#include "view/frmView.h"

#include <QDialog>
#include <QLineEdit>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quoravel {

/// The program with view windows, opened and used through menus, keys and mouse.
class ViewTest : public MainWindowTest {
  protected:
    using View = std::shared_ptr<frmView>;

    void SetUp() override;
    void TearDown() override;

    /// Puts one file with these bytes on drive 0, as the only row of its list, selected.
    void PutFile(std::string_view bytes, std::string_view name = "FILE") const;

    /// Chooses an item of the main window and gives the view window that it opened.
    [[nodiscard]] View Show(const char* item) const;
    /// A text view of one file with these bytes. Each CR in them ends a line.
    [[nodiscard]] View ShowText(std::string_view bytes) const;

    [[nodiscard]] static EditField& Text(const View& view);
    [[nodiscard]] static std::string Title(const View& view);
    [[nodiscard]] static QAction& Item(const View& view, const char* name);
    using MainWindowTest::Item;
    using MainWindowTest::Title;

    /// Chooses an item of a view window.
    static void Choose(const View& view, const char* item);
    using MainWindowTest::Choose;

    /// Runs Find; `act` gets the field and the dialog while it stands.
    static void Find(const View& view, const std::function<void(QLineEdit&, QDialog&)>& act);
    /// Finds as a person does who types and presses Enter.
    static void Find(const View& view, const QString& wanted);

    /// What is selected, as position and text: "12:abc".
    [[nodiscard]] static std::string Selection(const View& view);
};

} // namespace quoravel
