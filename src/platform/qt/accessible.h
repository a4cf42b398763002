#pragma once

#include <QAccessible>

class QWidget;

namespace quoravel {

/// Lets screen readers be told of `widget` as of something with that role. Qt tells of a frame as
/// of a window, and of a window that is neither dialog nor main window as of nothing in particular.
/// To be called before anything else is set, as Qt asks once.
void TellAs(QWidget& widget, QAccessible::Role role);

} // namespace quoravel
