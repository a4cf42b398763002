#pragma once

#include "platform/host.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace quoravel {

/// A desktop for tests: it records every box, title and proposal in order and takes its answers
/// from queues. A question without an answer fails the test instead of hanging it. Its clock stands
/// still but for DoEvents. Installs itself for as long as it lives.
class ScriptedHost : public Host {
  public:
    ScriptedHost();
    ~ScriptedHost() override;

    // What has been shown, in order.
    struct Box {
        std::string text;
        std::string title;
        bool operator==(const Box&) const = default;
    };

    std::vector<Box> boxes;     ///< message boxes
    std::vector<Box> questions; ///< Yes/No questions
    std::vector<std::string> proposals;
    std::vector<std::string> filters; ///< extensions of each open or save dialog
    std::vector<std::string> links;
    std::filesystem::path dialog_folder; ///< where the next file dialog would start
    std::vector<std::filesystem::path> sounds;
    int pumps = 0; ///< how often DoEvents was called
    int quits = 0; ///< how often the program was told to end

    // Answers to come.
    std::deque<bool> yes_no;
    std::deque<std::optional<std::filesystem::path>> files; ///< open and save dialogs
    std::deque<std::optional<std::filesystem::path>> folders;
    std::optional<std::filesystem::path> preferences_folder;
    std::optional<std::filesystem::path> state_folder;
    std::filesystem::path program_folder;
    int link_code = 0;
    std::string link_result;
    std::function<void()> on_pump;                ///< runs inside every DoEvents
    std::function<void(std::string_view)> on_box; ///< runs while a message box stands

    /// The texts of the boxes shown since the last call.
    std::vector<std::string> TakeBoxTexts();

    using Host::MsgBox;
    void MsgBox(std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    void DoEvents(int milliseconds) override;

    std::chrono::nanoseconds Now() override { return now; }

    std::optional<std::filesystem::path> AskOpenFile(const FileType& filter) override;
    std::optional<std::filesystem::path> AskSaveFile(const FileType& filter,
                                                     std::string_view proposal) override;
    std::optional<std::filesystem::path> AskFolder() override;

    std::optional<std::filesystem::path> PreferencesFolder() override { return preferences_folder; }

    std::optional<std::filesystem::path> StateFolder() override { return state_folder; }

    std::filesystem::path ProgramFolder() override { return program_folder; }

    void PlaySound(const std::filesystem::path& file) override { sounds.push_back(file); }

    std::string ShortDate() override { return "2026-11-23"; }

    std::string LongTime() override { return "12:34:56"; }

    void Quit() override { ++quits; }

    [[nodiscard]] bool IsQuitting() const override { return false; }

    void StartDialogsIn(const std::filesystem::path& folder) override { dialog_folder = folder; }

    void OpenLink(std::string_view url, std::function<void(int, const std::string&)> done) override;

    std::chrono::nanoseconds now{0};
};

} // namespace quoravel
