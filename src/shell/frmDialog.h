#pragma once

#include <functional>
#include <string_view>

class QDialog;
class QWidget;

namespace quoravel {

/// The two buttons below a small dialog: `cmdOK` with the caption `ok`, chosen by Enter, which
/// calls `action`, and `cmdCancel`, chosen by Escape, which rejects the dialog.
[[nodiscard]] QWidget* MakeButtons(QDialog& dialog, std::string_view ok,
                                   std::function<void()> action);

} // namespace quoravel
