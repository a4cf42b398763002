#pragma once

#include "platform/qt/listbox.h"

#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace quoravel {

/// A control or menu item of a window by its name.
template<class Control>
[[nodiscard]] Control& Part(const QWidget& window, const char* name) {
    if (auto* found = window.findChild<Control*>(QLatin1StringView(name)))
        return *found;
    throw std::runtime_error(std::string("there is no ") + name);
}

/// A window of the program by its name, or nullptr while none is to be seen.
[[nodiscard]] QWidget* Find(const char* window);

/// Clicks a button; the test fails if it is dimmed.
void Press(const QWidget& window, const char* button);

/// Drops files as a file manager does: enter, move, drop.
void Drop(const Listbox& list, const std::vector<std::filesystem::path>& files);

/// Drops something else.
void Drop(const Listbox& list, const QMimeData& data);

/// The windows that take keys and clicks now: the menu or dialog in front, or else all.
[[nodiscard]] std::vector<QWidget*> WindowsInReach();

/// What a person can do, by names such as "frmMain/DiscCompactDisc" or "close frmRX".
using Deeds = std::map<std::string, std::function<void()>>;

/// Adds the menu items and buttons of a window that are enabled, and its closing.
void AddDeeds(QWidget& window, Deeds& deeds);

} // namespace quoravel
