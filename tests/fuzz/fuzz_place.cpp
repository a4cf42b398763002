#include "fuzz/fuzz.h"
#include "platform/qt/place.h"
#include "prefs/xml_preferences.h"
#include "shell/frmPlace.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <array>
#include <string>

// The places of windows as any preferences file tells them: two bytes of the input are the size
// that the window would have, then come the types and texts of its four values.

namespace quoravel {

namespace {

constexpr std::string_view kName = "fuzz.pref";

std::string PreferencesOf(Input& input) {
    constexpr std::array<std::string_view, 3> kTypes{"integer", "real", "string"};
    std::string text = "<xmldict>";
    for (const std::string_view part : {"Left", "Top", "Width", "Height"}) {
        const std::string type(kTypes[input.Number(kTypes.size())]);
        text.append("<key>Main").append(part).append("</key><" + type + ">");
        text.append(input.Text(32)).append("</" + type + ">");
    }
    return text + "</xmldict>";
}

/// Enough of the title bar is on a screen to take hold of the window there.
void CheckReachable(const QRect& window) {
    const QRect title(window.topLeft(), QSize(window.width(), 24));
    const auto screens = QGuiApplication::screens();
    Require(std::ranges::any_of(screens,
                                [&](const QScreen* screen) {
                                    const QRect seen = title & screen->availableGeometry();
                                    return seen.width() >= 64 && seen.height() >= 12;
                                }),
            "a window can be reached");
}

} // namespace

void fuzzers::place(Bytes bytes) {
    static const bool without_a_screen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static std::array<char*, 1> arguments{};
    static int count = 0;
    static const QGuiApplication application(count, arguments.data());
    static const TempFolder folder;
    Require(without_a_screen, "the desktop is one of memory");
    ScriptedHost desktop;
    desktop.preferences_folder = folder.path();
    Input input(bytes);
    const QSize proposed(64 + 8 * static_cast<int>(input.Number()),
                         64 + 8 * static_cast<int>(input.Number()));
    folder.File(kName, PreferencesOf(input));
    XMLPreferences::InitPrefFile(kName);
    const QRect place = StoredPlace("Main", proposed);
    Require(place.width() >= kLeastWindowSize && place.height() >= kLeastWindowSize &&
                place.width() <= ScreenSize().width() && place.height() <= ScreenSize().height(),
            "a window has a size that fits the screen");
    CheckReachable(place);
    CheckReachable({StoredPosition("Main", QSize(300, 150)), QSize(300, 150)});
    XMLPreferences::ForgetPrefFile();
}

} // namespace quoravel
