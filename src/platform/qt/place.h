#pragma once

#include <QList>
#include <QRect>

class QWidget;

namespace quoravel {

/// Size of the first screen in pixels.
[[nodiscard]] QSize ScreenSize();

/// `window` as a frame in screen coordinates. If nothing of its title bar could be reached where it
/// is, or it is larger than all screens together, it is moved just inside the nearest one, and cut
/// to its size.
[[nodiscard]] QRect InsideSomeScreen(const QRect& window);

/// The same against screens given by their rectangles, the first of which exists.
[[nodiscard]] QRect InsideSomeScreen(const QRect& window, const QList<QRect>& screens);

} // namespace quoravel
