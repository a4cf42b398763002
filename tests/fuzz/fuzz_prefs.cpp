#include "fuzz/fuzz.h"
#include "platform/text.h"
#include "prefs/base64.h"
#include "prefs/value_text.h"
#include "prefs/xml_dictionary.h"
#include "prefs/xml_preferences.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

// Any bytes as a preferences file, as the values in it, and as the file that the program starts
// with.

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using namespace XMLPreferences;

/// What has been read once must be written so that it reads back the same.
void CheckDocument(const std::string& text) {
    const auto dict = std::make_shared<Dictionary>();
    if (!XMLDictionary::LoadXML(dict, std::string_view(text)))
        return Require(dict->Count() == 0, "what does not load changes nothing");
    for (const bool plist : {false, true}) {
        const std::string written = XMLDictionary::ExportXMLString(dict, plist);
        if (written.size() > XMLDictionary::kLongestDocument)
            continue;
        const auto again = std::make_shared<Dictionary>();
        Require(XMLDictionary::LoadXML(again, std::string_view(written)), "what was written loads");
        Require(XMLDictionary::ExportXMLString(again, plist) == written,
                "and is the same as before");
    }
}

void CheckNumber(std::string_view text) {
    const double value = Val(text);
    Require(std::isfinite(value), "a text is a finite number");
    const auto whole = static_cast<double>(IntegerFromText(text));
    Require(std::abs(value) >= 2147483647.0 || whole == std::trunc(value),
            "a whole number is the number without its fraction");
}

void CheckReal(double value) {
    const std::string text = RealText(value);
    Require(text.find_first_not_of("-.0123456789") == std::string::npos &&
                std::ranges::count(text, '.') == 1 && text.front() != '.' && text.back() != '.',
            "a written number has digits on both sides of a point");
    if (std::isfinite(value))
        Require(std::abs(Val(text) - value) <= 1e-15 * std::max(1.0, std::abs(value)),
                "a written number reads back");
}

void CheckDates(std::string_view text, std::int64_t seconds) {
    if (const auto date = DateFromText(text))
        Require(text.find(DateText(*date)) != std::string_view::npos, "a date reads one way");
    const Date date{std::chrono::seconds(seconds)};
    const auto again = DateFromText(DateText(date));
    Require(again.has_value(), "every written date is a date");
    Require(*again == date || DateText(date).starts_with("0000-01-01T00:00:00") ||
                DateText(date).starts_with("9999-12-31T23:59:59"),
            "and the same, up to the years that have four digits");
}

void CheckBase64(Bytes bytes) {
    Require(std::ranges::equal(DecodeBase64(EncodeBase64(bytes)), bytes),
            "written bytes read back");
    Require(DecodeBase64(AsText(bytes)).size() <= bytes.size() * 3 / 4,
            "a text holds no more than it can");
}

void CheckXmlText(std::string_view text) {
    const std::string xml = XmlText(text);
    const auto is_control = [](char c) {
        return c >= 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r';
    };
    Require(IsUtf8(xml) && XmlText(xml) == xml, "what a document can hold stays as it is");
    Require(std::ranges::none_of(xml, is_control), "no control code gets into a document");
}

/// A value of a bad type is told in a box, and the rest goes on.
void UsePlace(ScriptedHost& desktop, const std::string& key) {
    desktop.boxes.clear();
    const std::int32_t stored = GetPrefInteger(key, 77);
    const bool kept = desktop.boxes.empty();
    Require(kept || stored == 77, "of another type is as if not there");
    SetPrefInteger(key, -5);
    Require(GetPrefInteger(key, 77) == (kept ? -5 : 77), "a place is kept unless in the way");
}

} // namespace

/// As a whole document, and as the entries of a document of either form.
void fuzzers::xml(Bytes input) {
    static ScriptedHost host;
    const std::string text(AsText(input));
    CheckDocument(text);
    CheckDocument("<xmldict>" + text + "</xmldict>");
    CheckDocument("<plist><dict>" + text + "</dict></plist>");
}

/// As the text of each kind of value, and the bytes as values to be written.
void fuzzers::values(Bytes input) {
    const std::string_view text = AsText(input);
    std::int64_t number = 0;
    double real = 0;
    std::memcpy(&number, input.data(), std::min(input.size(), sizeof number));
    std::memcpy(&real, input.data(), std::min(input.size(), sizeof real));
    CheckNumber(text);
    CheckReal(real);
    CheckReal(Val(text));
    CheckDates(text, number);
    for (const Colour colour : {ColourFromText(text), Colour{static_cast<std::uint32_t>(number)}})
        Require(ColourFromText(ColourText(colour)) == colour, "a written colour reads back");
    CheckBase64(input);
    CheckXmlText(text);
}

/// The program asks for all that its windows and options keep, stores it again and saves.
void fuzzers::preferences(Bytes input) {
    constexpr std::string_view kName = "fuzz.pref";
    static const TempFolder folder;
    ScriptedHost desktop;
    desktop.preferences_folder = folder.path();
    const fs::path file = folder.File(kName, input);
    InitPrefFile(kName);
    for (const char* window : {"Main", "View", "CLI", "RX", "Trace"})
        for (const char* part : {"Left", "Top", "Width", "Height"})
            UsePlace(desktop, std::string(window) + part);
    static_cast<void>(GetPrefBoolean("PlayWave", true));
    static_cast<void>(GetPrefString("PlayWave", ""));
    desktop.boxes.clear();
    WritePrefFile();
    const std::string saved = TextOf(file);
    InitPrefFile(kName);
    WritePrefFile();
    Require(desktop.boxes.empty() && TextOf(file) == saved, "what was saved loads as it is");
    ForgetPrefFile();
    for (const std::string& name : folder.Names())
        fs::remove(folder.path() / name);
}

} // namespace quoravel
