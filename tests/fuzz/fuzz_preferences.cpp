#include "fuzz/fuzz.h"
#include "prefs/xml_preferences.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <filesystem>
#include <string>

// Any file as the preferences that the program finds when it starts: it asks for all that its
// windows and options keep, stores it again and saves.

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using namespace XMLPreferences;

constexpr std::string_view kName = "fuzz.pref";

/// The keys, below `take`; a bad type is told in a box, and the rest goes on.
template<class Take>
void ForEachPlace(const Take& take) {
    for (const char* prefix : {"Main", "View", "CLI", "RX", "Trace"})
        for (const char* part : {"Left", "Top", "Width", "Height"})
            take(std::string(prefix) + part);
}

void UseAndSave(ScriptedHost& desktop) {
    InitPrefFile(kName);
    ForEachPlace([&](const std::string& key) {
        desktop.boxes.clear();
        const std::int32_t stored = GetPrefInteger(key, 77);
        Require(desktop.boxes.empty() || stored == 77, "of another type is as if not there");
        const bool kept = desktop.boxes.empty();
        SetPrefInteger(key, -5);
        Require(GetPrefInteger(key, 77) == (kept ? -5 : 77), "a place is kept unless in the way");
    });
    static_cast<void>(GetPrefBoolean("PlayWave", true));
    static_cast<void>(GetPrefString("PlayWave", ""));
    desktop.boxes.clear();
    WritePrefFile();
    Require(desktop.boxes.empty(), "preferences can always be saved");
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    static const TempFolder folder;
    ScriptedHost desktop;
    desktop.preferences_folder = folder.path();
    const std::filesystem::path file =
        folder.File(kName, std::span<const std::uint8_t>(data, size));
    UseAndSave(desktop);
    const std::string saved = TextOf(file);
    InitPrefFile(kName);
    WritePrefFile();
    Require(desktop.boxes.empty() && TextOf(file) == saved, "what was saved loads as it is");
    ForgetPrefFile();
    for (const std::string& name : folder.Names())
        std::filesystem::remove(folder.path() / name);
    return 0;
}
