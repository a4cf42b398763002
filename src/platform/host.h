#pragma once

#include "platform/file_type.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quoravel {

/// Thrown by whatever pumps events once the program is to end, so that the deepest wait unwinds at
/// once. Nothing catches it but the guard around each entry from the toolkit (platform/qt/guard.h).
class AppQuitting {};

/// All that the program asks of a desktop. main() installs the one that Qt answers, tests install
/// one that records every word and queues the answers. Texts are UTF-8.
class Host {
  public:
    Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    virtual ~Host() = default;

    /// An application-modal box with an OK button. Returns when it has been answered.
    virtual void MsgBox(std::string_view text, std::string_view title) = 0;

    void MsgBox(std::string_view text) { MsgBox(text, {}); }

    /// An application-modal question; true for Yes, false for No and for a closed box.
    [[nodiscard]] virtual bool AskYesNo(std::string_view text, std::string_view title) = 0;

    /// Handles events for `milliseconds` (1 and up), keeping that pace without eating a core.
    /// 0 and below: handles what is pending and returns. May throw AppQuitting.
    virtual void DoEvents(int milliseconds) = 0;

    /// A clock that only goes forward, from an arbitrary start.
    [[nodiscard]] virtual std::chrono::nanoseconds Now() = 0;

    /// Lets the next file dialog start in `folder`.
    virtual void StartDialogsIn(const std::filesystem::path& folder) = 0;

    /// The chosen file, or nothing after Cancel.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    AskOpenFile(const FileType& filter) = 0;

    /// The file to write to, or nothing after Cancel. `proposal` is a file name without a folder.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    AskSaveFile(const FileType& filter, std::string_view proposal) = 0;

    /// The chosen folder, or nothing after Cancel.
    [[nodiscard]] virtual std::optional<std::filesystem::path> AskFolder() = 0;

    /// The folder that holds preferences files, made if need be; nothing if there is none.
    [[nodiscard]] virtual std::optional<std::filesystem::path> PreferencesFolder() = 0;

    /// The folder for what the program keeps for the user's safety (copies of replaced files),
    /// made on demand by whoever writes there; nothing if there is none.
    [[nodiscard]] virtual std::optional<std::filesystem::path> StateFolder() = 0;

    /// The folder that holds the program's executable.
    [[nodiscard]] virtual std::filesystem::path ProgramFolder() = 0;

    /// Starts to play a sound file and returns at once; a beep where no sound can be played.
    virtual void PlaySound(const std::filesystem::path& file) = 0;

    /// Now, as the user's locale writes a short date and a long time.
    [[nodiscard]] virtual std::string ShortDate() = 0;
    [[nodiscard]] virtual std::string LongTime() = 0;

    /// Ends the program: the event loop returns, and every wait unwinds by AppQuitting at its next
    /// pump.
    virtual void Quit() = 0;

    /// True from Quit on.
    [[nodiscard]] virtual bool IsQuitting() const = 0;

    /// Opens a web or mail link with the desktop's own program. `done` gets the exit code of the
    /// desktop's opener (0 is success) and what it printed; it may be called after this returns.
    virtual void OpenLink(std::string_view url,
                          std::function<void(int code, const std::string& result)> done) = 0;
};

/// The installed host. There must be one: see InstallHost.
[[nodiscard]] Host& host();

/// Makes `the_host` the one that host() gives; nullptr removes it. The caller keeps ownership.
void InstallHost(Host* the_host);

/// Lets other events run inside a long loop. Cheap enough for every turn: it pumps only when the
/// last pump was 12 ms ago. May throw AppQuitting; whatever is shared may have changed after it.
void Yield();

} // namespace quoravel
