#pragma once

#include "platform/qt/printing.h"
#include "support/main_window_test.h"
#include "support/quick_link.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quoravel {

/// A desktop whose boxes and dialogs stand until somebody leaves them, over the window in use as
/// the real ones do. Each Yield of the program pumps, and what is to pass is not waited for.
class StandingDesktop : public UiHost {
  public:
    StandingDesktop() { clock_step = std::chrono::milliseconds(20); }

    std::function<std::filesystem::path()> to_open, to_save, to_folder; ///< what OK chooses
    int hindrances = 0; ///< boxes, and dialogs that were not left with OK

    /// Whether a dialog is one of these and asks for something to be chosen.
    [[nodiscard]] static bool Chooses(const QDialog& dialog);

    /// Shows a dialog of that name until it is left; gives whether by OK.
    bool Stand(const char* name);

    using Host::MsgBox;
    void MsgBox(std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    std::optional<std::filesystem::path> AskOpenFile(const FileType& filter) override;
    std::optional<std::filesystem::path> AskSaveFile(const FileType& filter,
                                                     std::string_view proposal) override;
    std::optional<std::filesystem::path> AskFolder() override;

    void DoEvents(int /*milliseconds*/) override { UiHost::DoEvents(0); }

    void Quit() override;

    /// The next program. Documents that the desktop wanted to open in the last one are forgotten.
    void Restart();
};

/// The program on a desktop that takes its time, with a micro at the cable.
class WaitTest : public MainWindowTest {
  protected:
    explicit WaitTest(std::unique_ptr<StandingDesktop> host = std::make_unique<StandingDesktop>());

    void SetUp() override;
    void TearDown() override;

    /// Starts the program if it has ended, with a micro that is not in the middle of anything.
    void StartAgain();

    StandingDesktop& standing = static_cast<StandingDesktop&>(desktop);
    CompanionDouble micro;
    bool printed = false; ///< the print dialog was left with OK

  private:
    std::unique_ptr<QuickLink> link_;
    const PrintDialogs real_dialogs_ = print_dialogs();
};

} // namespace quoravel
