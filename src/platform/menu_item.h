#pragma once

#include <span>
#include <string_view>

namespace quoravel {

/// One line of a menu, as the tables of menus write it.
struct MenuItem {
    std::string_view Name; ///< by which handlers find it
    std::string_view Text; ///< caption; "-" makes a separator, "&" marks a mnemonic
    std::string_view
        KeyboardShortcut{}; ///< such as "Cmd+Shift+S"; Cmd is the desktop's main modifier
    std::span<const MenuItem> Children{};
    bool AutoEnable = true; ///< false: the window's own rule says when it can be chosen
    bool Checkable = false;
};

} // namespace quoravel
