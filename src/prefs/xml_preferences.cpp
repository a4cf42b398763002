#include "prefs/xml_preferences.h"

#include "platform/host.h"
#include "prefs/xml_dictionary.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace quoravel::XMLPreferences {

namespace {

namespace fs = std::filesystem;

DictionaryRef prefs;
std::optional<fs::path> prefFile;
bool file_is_bad = false; // it is there, it could not be loaded, and it has not been moved aside

void ErrorInitMsg() {
    host().MsgBox("Error Creating Preferences File!!!\n\n"
                  "You must call InitPrefFile() to initialize the preferences first!");
}

void ErrorSaveMsg() {
    host().MsgBox("Error Creating Preferences File!!!\n\n"
                  "You must call InitPrefFile to initialize the preferences first!");
}

bool NotInitialized() {
    if (prefs && prefFile)
        return false;
    ErrorInitMsg();
    return true;
}

bool RightType(const std::string& key, const Value& value) {
    const auto stored = prefs->Find(key);
    if (!stored || TypeOf(*stored) == TypeOf(value))
        return true;
    host().MsgBox("Preferences Error!\n\nThis Key does not match the assigned Type!\nKey: " + key);
    return false;
}

template<class T>
T GetPref(const std::string& key, const T& otherwise) {
    if (NotInitialized())
        return otherwise;
    const auto stored = prefs->Find(key);
    return stored && RightType(key, otherwise) ? std::get<T>(*stored) : otherwise;
}

void SetPref(const std::string& key, const Value& value) {
    if (!NotInitialized() && RightType(key, value))
        prefs->Set(key, value);
}

/// The child of that name in the preferences folder.
std::optional<fs::path> PreferencesChild(std::string_view name) {
    const auto folder = host().PreferencesFolder();
    return folder ? std::optional(*folder / name) : std::nullopt;
}

/// ".bad" beside the file, or the first free one of ".bad.2" to ".bad.9". Earlier ones may hold
/// settings that somebody made by hand, so only the last is ever replaced.
fs::path NameForBadFile() {
    constexpr int kMostBadFiles = 9;
    fs::path name = *prefFile;
    name += ".bad";
    const fs::path first = name;
    std::error_code ignored;
    for (int i = 2; i <= kMostBadFiles && fs::exists(fs::symlink_status(name, ignored)); ++i) {
        name = first;
        name += "." + std::to_string(i);
    }
    return name;
}

/// False if a file that could not be loaded is still in the way. It is moved and not copied: that
/// keeps even what cannot be read, however long, and leaves nothing half done.
bool BadFileIsAside() {
    if (!file_is_bad)
        return true;
    std::error_code error;
    fs::rename(*prefFile, NameForBadFile(), error);
    file_is_bad = static_cast<bool>(error) && error != std::errc::no_such_file_or_directory;
    return !file_is_bad;
}

} // namespace

void InitPrefFile(std::string_view name) {
    if (name.empty())
        return;
    const auto child = PreferencesChild(name);
    if (!child) {
        host().MsgBox("Error Creating Preferences File!!!\n\n"
                      "The FolderItem was NIL! <InitPrefFile>");
        return;
    }
    // Loading lets other events run, and none of them may save a store that is half full.
    const auto loaded = std::make_shared<Dictionary>();
    std::error_code ignored;
    file_is_bad = fs::exists(*child, ignored) && !XMLDictionary::LoadXML(loaded, *child);
    prefs = loaded;
    prefFile = child;
    if (file_is_bad)
        host().MsgBox("Error Parsing the Preference File!!\n\n"
                      "The FolderItem used may not be the correct type of file!");
}

void WritePrefFile() {
    if (NotInitialized())
        return;
    // Where the file cannot be moved aside, it stays and nothing is saved: losing the places of a
    // few windows is better than losing what somebody may still mend.
    if (!BadFileIsAside() || !XMLDictionary::SaveXML(prefs, *prefFile, false))
        ErrorSaveMsg();
}

std::string GetPrefString(const std::string& key, const std::string& otherwise) {
    return GetPref(key, otherwise);
}

std::int32_t GetPrefInteger(const std::string& key, std::int32_t otherwise) {
    return GetPref(key, otherwise);
}

bool GetPrefBoolean(const std::string& key, bool otherwise) {
    return GetPref(key, otherwise);
}

void SetPrefString(const std::string& key, const std::string& value) {
    SetPref(key, value);
}

void SetPrefInteger(const std::string& key, std::int32_t value) {
    SetPref(key, value);
}

void SetPrefBoolean(const std::string& key, bool value) {
    SetPref(key, value);
}

void ForgetPrefFile() {
    prefs.reset();
    prefFile.reset();
    file_is_bad = false;
}

} // namespace quoravel::XMLPreferences
