#include "prefs/xml_dictionary.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "support/xml_values.h"

#include <gmock/gmock.h>
#include <sstream>
#include <tuple>

namespace quoravel {
namespace {

using namespace XMLDictionary;
using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

const std::string kDeclaration = "<?xml version='1.0'?>";
const std::string kDoctype = "<!DOCTYPE xmldict PUBLIC 'x' 'http://velmarsh.example/x.dtd'>";

class BadXml : public testing::Test {
    ScriptedHost host_;
};

TEST_F(BadXml, AnythingNotWellFormedLeavesTheDictionaryAlone) {
    const std::string entry = "<key>a</key><integer>1</integer>";
    const std::string good = "<xmldict>" + entry + "</xmldict>";

    using Row = std::tuple<const char*, std::string>;
    const Row rows[] = {
        {"nothing", ""},
        {"no end", "<xmldict>" + entry},
        {"two roots", good + "<xmldict/>"},
        {"text behind the root", good + "x"},
        {"NUL behind the root", good + "\0"s},
        {"no UTF-8", "<xmldict>" + entry + "\xFF</xmldict>"},
        {"unknown entity", "<xmldict>" + entry + "&nbsp;</xmldict>"},
        {"unknown entity that a DTD may know", kDoctype + "<xmldict>" + entry + "&nbsp;</xmldict>"},
        {"reference to NUL", "<xmldict>" + entry + "&#0;</xmldict>"},
        {"unknown encoding", "<?xml version='1.0' encoding='EBCDIC'?>" + good},
    };
    for (const auto& [what, text] : rows) {
        SCOPED_TRACE(what);
        const auto dict = DictionaryOf({{"a", 5}});
        EXPECT_FALSE(LoadXML(dict, std::string_view(text)));
        EXPECT_EQ(StorageByKey(dict, "a"), Value(5));
    }
}

TEST_F(BadXml, EntitiesNeitherFetchNorMultiply) {
    const TempFolder folder;
    const auto secret = folder.File("secret", "fetched");
    EXPECT_FALSE(Loaded("<!DOCTYPE x [<!ENTITY e SYSTEM 'file://" + secret.string() +
                        "'>]><x><key>k</key><string>&e;</string></x>"));
    EXPECT_FALSE(Loaded("<!DOCTYPE x [<!ENTITY % p SYSTEM 'file://" + secret.string() +
                        "'> %p; ]><x>&e;</x>"));

    std::ostringstream bomb;
    bomb << "<!DOCTYPE x [<!ENTITY e0 '<null/><null/>'>";
    for (int i = 1; i <= 40; ++i)
        bomb << "<!ENTITY e" << i << " '&e" << i - 1 << ";&e" << i - 1 << ";'>";
    EXPECT_FALSE(Loaded(bomb.str() + "]><x><key>k</key><array>&e40;</array></x>"));

    const auto harmless = Loaded("<!DOCTYPE x [<!ENTITY e 'entity'>]>"
                                 "<x><key>k</key><string>an &e;</string></x>");
    ASSERT_TRUE(harmless);
    EXPECT_EQ(StorageByKey(harmless, "k"), Value("an entity"s));
}

/// `levels` dictionaries in one another, as a document of either form.
std::string Nested(int levels, bool plist) {
    std::string begin;
    std::string end;
    for (int i = 1; i < levels; ++i) {
        begin += "<key>k</key><dict>";
        end += "</dict>";
    }
    begin += "<key>k</key><true/>";
    return plist ? "<plist><dict>" + begin + end + "</dict></plist>"
                 : "<xmldict>" + begin + end + "</xmldict>";
}

TEST_F(BadXml, NestingHasABoundThatBothFormsShare) {
    for (const bool plist : {false, true}) {
        SCOPED_TRACE(plist);
        const auto deepest = Loaded(Nested(kDeepestLevel, plist));
        ASSERT_TRUE(deepest);
        for (const bool form : {false, true})
            EXPECT_EQ(ExportXMLString(Loaded(ExportXMLString(deepest, form)), form),
                      ExportXMLString(deepest, form));
        EXPECT_FALSE(Loaded(Nested(kDeepestLevel + 1, plist)));
    }
    EXPECT_FALSE(Loaded("<x>" + Nested(100'000, false)));
}

TEST_F(BadXml, StoragesNestedTooDeepAreWrittenEmpty) {
    auto dict = DictionaryOf({{"innermost", 1}});
    for (int i = 0; i < 2 * kDeepestLevel; ++i)
        dict = DictionaryOf({{"k", dict}});
    const std::string text = ExportXMLString(dict, false);
    EXPECT_THAT(text, Not(HasSubstr("innermost")));
    ASSERT_TRUE(Loaded(text));
    EXPECT_EQ(ExportXMLString(Loaded(text), false), text);
}

TEST_F(BadXml, AnEndlessTextIsRefusedAndALongOneTaken) {
    const auto document = [](std::size_t size) {
        return "<x><key>k</key><string>" + std::string(size, 'a') + "</string></x>";
    };
    ASSERT_TRUE(Loaded(document(kLongestDocument / 2)));
    EXPECT_FALSE(Loaded(document(kLongestDocument)));
    EXPECT_FALSE(Loaded(document(100'000'000)));
    const TempFolder folder;
    const auto huge = folder.File("huge", document(1));
    std::filesystem::resize_file(huge, 10'000'000'000); // sparse
    EXPECT_FALSE(LoadXML(std::make_shared<Dictionary>(), huge));
}

} // namespace
} // namespace quoravel
