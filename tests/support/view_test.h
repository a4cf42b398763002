#pragma once

#include "platform/qt/edit_field.h"
#include "support/main_window_test.h"
#include "view/frmView.h"

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
    using MainWindowTest::Title;

    /// Looks for a text as a person does who types and presses a key.
    static void LookFor(const View& view, const QString& wanted, Qt::Key key = Qt::Key_Return);

    /// What is selected, as position and text: "12:abc".
    [[nodiscard]] static std::string Selection(const View& view);
};

} // namespace quoravel
