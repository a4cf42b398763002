#include "shell/frmPlace.h"

#include "platform/qt/place.h"
#include "prefs/xml_preferences.h"

#include <QWidget>

#include <algorithm>
#include <string>

namespace quoravel {

namespace {

using namespace XMLPreferences;

constexpr int kFarthest = 100000; // pixels; beyond every desktop, and harmless in sums

std::string Key(std::string_view prefix, std::string_view part) {
    return std::string(prefix).append(part);
}

int StoredSize(const std::string& key, int otherwise, int least = kLeastWindowSize) {
    return std::clamp(GetPrefInteger(key, otherwise), least, kLargestWindowSize);
}

int StoredCoordinate(const std::string& key, int otherwise) {
    return std::clamp(GetPrefInteger(key, otherwise), -kFarthest, kFarthest);
}

/// The middle of the screen without a stored position, on whatever screen or none.
QPoint StoredCorner(std::string_view prefix, QSize size) {
    const QSize screen = ScreenSize();
    const int left = (screen.width() - size.width()) / 2; // halves go towards zero
    const int top = (screen.height() - size.height()) / 2;
    return {StoredCoordinate(Key(prefix, "Left"), left), StoredCoordinate(Key(prefix, "Top"), top)};
}

} // namespace

QRect StoredPlace(std::string_view prefix, QSize size, int least_width) {
    const QSize stored(StoredSize(Key(prefix, "Width"), size.width(), least_width),
                       StoredSize(Key(prefix, "Height"), size.height()));
    return InsideSomeScreen({StoredCorner(prefix, size), stored});
}

QPoint StoredPosition(std::string_view prefix, QSize size) {
    return InsideSomeScreen({StoredCorner(prefix, size), size}).topLeft();
}

void StorePosition(std::string_view prefix, const QWidget& window) {
    SetPrefInteger(Key(prefix, "Left"), window.x());
    SetPrefInteger(Key(prefix, "Top"), window.y());
}

void StorePlace(std::string_view prefix, const QWidget& window, QSize size) {
    const bool full = window.isMaximized() || window.isFullScreen();
    const QSize chrome = window.size() - size;
    const QPoint place = full ? window.normalGeometry().topLeft() : window.pos();
    const QSize shown = full ? window.normalGeometry().size() - chrome : size;
    SetPrefInteger(Key(prefix, "Left"), place.x());
    SetPrefInteger(Key(prefix, "Top"), place.y());
    SetPrefInteger(Key(prefix, "Width"), shown.width());
    SetPrefInteger(Key(prefix, "Height"), shown.height());
}

} // namespace quoravel
