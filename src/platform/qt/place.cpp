#include "platform/qt/place.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace quoravel {

namespace {

constexpr int kTitleHeight = 24;    // about what window managers draw above the frame's content
constexpr int kMenuHeight = 24;     // about what a menu bar takes of it
constexpr QSize kReachable(64, 12); // enough of a title bar to take hold of

bool CanBeReached(const QRect& window, const QRect& screen) {
    const QRect title(window.topLeft(), QSize(window.width(), kTitleHeight));
    const QRect seen = title.intersected(screen);
    return seen.width() >= kReachable.width() && seen.height() >= kReachable.height();
}

/// How far `point` is from `screen`, in pixels of both directions together; 0 inside.
int DistanceFrom(const QRect& screen, const QPoint& point) {
    const QPoint nearest(std::clamp(point.x(), screen.left(), screen.right()),
                         std::clamp(point.y(), screen.top(), screen.bottom()));
    return (point - nearest).manhattanLength();
}

/// `start` moved so that `length` fits into [low, high], or starts at low if it cannot.
int Fit(int start, int length, int low, int high) {
    return std::max(low, std::min(start, high - length + 1));
}

/// A size may come from larger screens, or from a file that says anything.
bool IsLargerThan(const QList<QRect>& screens, const QRect& window) {
    QRect all;
    for (const QRect& screen : screens)
        all |= screen;
    return window.width() > all.width() || window.height() > all.height();
}

} // namespace

QSize ScreenSize() {
    return QGuiApplication::primaryScreen()->size();
}

QRect InsideSomeScreen(const QRect& window, const QList<QRect>& screens) {
    const auto reached = [&](const QRect& screen) { return CanBeReached(window, screen); };
    if (std::ranges::any_of(screens, reached) && !IsLargerThan(screens, window))
        return window;
    const QRect screen = *std::ranges::min_element(
        screens, {}, [&](const QRect& s) { return DistanceFrom(s, window.center()); });
    const QSize bars(0, kTitleHeight + kMenuHeight);
    const QSize outer = (window.size() + bars).boundedTo(screen.size());
    return {{Fit(window.left(), outer.width(), screen.left(), screen.right()),
             Fit(window.top(), outer.height(), screen.top(), screen.bottom())},
            outer - bars};
}

QRect InsideSomeScreen(const QRect& window) {
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    return InsideSomeScreen(window, screens);
}

} // namespace quoravel
