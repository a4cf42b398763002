#pragma once

#include "platform/host.h"

namespace quoravel {

/// The desktop as Qt sees it. One lives in main(), beside the application object, and installs
/// itself for as long as it does.
class QtHost : public Host {
  public:
    QtHost();
    ~QtHost() override;

    using Host::MsgBox;
    void MsgBox(std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    void DoEvents(int milliseconds) override;
    std::chrono::nanoseconds Now() override;

    void StartDialogsIn(const std::filesystem::path& folder) override { last_folder_ = folder; }

    std::optional<std::filesystem::path> AskOpenFile(const FileType& filter) override;
    std::optional<std::filesystem::path> AskSaveFile(const FileType& filter,
                                                     std::string_view proposal) override;
    std::optional<std::filesystem::path> AskFolder() override;
    std::optional<std::filesystem::path> PreferencesFolder() override;
    std::optional<std::filesystem::path> StateFolder() override;
    std::filesystem::path ProgramFolder() override;
    void PlaySound(const std::filesystem::path& file) override;
    std::string ShortDate() override;
    std::string LongTime() override;
    void Quit() override;

    [[nodiscard]] bool IsQuitting() const override { return quitting_; }

    void OpenLink(std::string_view url, std::function<void(int, const std::string&)> done) override;

  private:
    void UnwindIfQuitting() const;
    /// Remembers the folder of a choice for the next dialog; nothing after Cancel.
    std::optional<std::filesystem::path> Chosen(std::optional<std::filesystem::path> choice);

    bool quitting_ = false;
    std::filesystem::path last_folder_; ///< where the last file dialog was left; empty at first
    std::filesystem::path last_chosen_folder_; ///< the last answer of AskFolder
};

} // namespace quoravel
