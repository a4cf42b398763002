#include "fuzz/fuzz.h"
#include "prefs/xml_dictionary.h"
#include "support/scripted_host.h"

#include <string>

// Any text as a preferences file of either form.

namespace quoravel {

namespace {

/// What has been read once must be written so that it reads back the same.
void CheckRoundTrip(const DictionaryRef& dict, bool plist) {
    const std::string text = XMLDictionary::ExportXMLString(dict, plist);
    if (text.size() > XMLDictionary::kLongestDocument)
        return;
    const auto again = std::make_shared<Dictionary>();
    Require(XMLDictionary::LoadXML(again, std::string_view(text)), "what was written loads");
    Require(XMLDictionary::ExportXMLString(again, plist) == text, "and is the same as before");
}

void LoadAndCheck(std::string_view text) {
    const auto dict = std::make_shared<Dictionary>();
    if (XMLDictionary::LoadXML(dict, text)) {
        CheckRoundTrip(dict, false);
        CheckRoundTrip(dict, true);
    } else {
        Require(dict->Count() == 0, "what does not load changes nothing");
    }
}

} // namespace

} // namespace quoravel

/// Takes the text as a whole document, and as the entries of a document of either form.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static quoravel::ScriptedHost host;
    const std::string_view text = quoravel::AsText({data, size});
    quoravel::LoadAndCheck(text);
    quoravel::LoadAndCheck("<xmldict>" + std::string(text) + "</xmldict>");
    quoravel::LoadAndCheck("<plist><dict>" + std::string(text) + "</dict></plist>");
    return 0;
}
