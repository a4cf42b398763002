#pragma once

#include <QRect>
#include <QSize>

#include <string_view>

class QWidget;

namespace quoravel {

inline constexpr int kLeastWindowSize = 64;
inline constexpr int kLargestWindowSize = 32000;

/// Where a window was left, from the preferences "…Left", "…Top", "…Width" and "…Height" of a
/// prefix such as "Main". Without them it has `size` in the middle of the first screen. A place
/// that no screen shows is moved inside the nearest; values that no window can have are cut to its
/// limits.
/// A width under `least_width` is raised to it first.
[[nodiscard]] QRect StoredPlace(std::string_view prefix, QSize size,
                                int least_width = kLeastWindowSize);

/// Stores the place of a window, whose content has `size`, under the same keys. Of a maximized
/// window the place that it goes back to.
void StorePlace(std::string_view prefix, const QWidget& window, QSize size);

/// Where a window that has a size of its own was left, from "…Left" and "…Top".
[[nodiscard]] QPoint StoredPosition(std::string_view prefix, QSize size);

/// Stores where such a window is.
void StorePosition(std::string_view prefix, const QWidget& window);

} // namespace quoravel
