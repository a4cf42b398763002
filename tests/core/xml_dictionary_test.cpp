#include "prefs/xml_dictionary.h"
#include "prefs/xml_tree.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <initializer_list>
#include <sstream>
#include <tuple>

namespace quoravel {
namespace {

using namespace XMLDictionary;
using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::HasSubstr;

/// What loading `text` into an empty dictionary gives, nothing if it is refused.
DictionaryRef Loaded(const std::string& text) {
    auto dict = std::make_shared<Dictionary>();
    return LoadXML(dict, std::string_view(text)) ? dict : nullptr;
}

DictionaryRef DictionaryOf(std::initializer_list<std::pair<const char*, Value>> entries) {
    auto dict = std::make_shared<Dictionary>();
    for (const auto& [key, value] : entries)
        dict->Set(key, value);
    return dict;
}

CollectionRef CollectionOf(std::initializer_list<Value> items) {
    auto collection = std::make_shared<Collection>();
    for (const Value& item : items)
        collection->Add(item);
    return collection;
}

MemoryBlockRef Block(std::size_t size) {
    return std::make_shared<MemoryBlock>(MemoryBlock{std::vector<std::uint8_t>(size, 0xFF)});
}

class XmlDictionary : public testing::Test {
  protected:
    /// One of each type.
    const DictionaryRef every_type =
        DictionaryOf({{"nil", Value()},
                      {"integer", -12},
                      {"real", 1.0},
                      {"date", Date(std::chrono::sys_days(2001y / 9 / 9) + 1h + 46min + 40s)},
                      {"string", "a < b"s},
                      {"dict", DictionaryOf({{"inner", 1}})},
                      {"data", Block(34)},
                      {"array", CollectionOf({true, CollectionOf({"deep"s}), Colour{1}})},
                      {"file", std::filesystem::path("/tmp/x")},
                      {"object", OtherObject()},
                      {"empty", Block(0)},
                      {"color", Colour{0xFF80}}});
    ScriptedHost host;
};

TEST_F(XmlDictionary, TheOwnFormOfEveryType) {
    EXPECT_EQ(ExportXMLString(every_type, false), R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE xmldict PUBLIC "-//Velmarsh//DTD XMLDICT 1.1//EN" )"
                                                  R"("http://velmarsh.example/DTDs/)"
                                                  R"(XMLDictionary-1.1.dtd">
<xmldict version="1.1">
	<key>nil</key>
	<null/>
	<key>integer</key>
	<integer>-12</integer>
	<key>real</key>
	<real>1.0</real>
	<key>date</key>
	<date>2001-09-09T01:46:40Z</date>
	<key>string</key>
	<string>a &lt; b</string>
	<key>dict</key>
	<dict>
		<key>inner</key>
		<integer>1</integer>
	</dict>
	<key>data</key>
	<data>
	/////////////////////////////////////////////
	w==
	</data>
	<key>array</key>
	<array>
		<true/>
		<array>
			<string>deep</string>
		</array>
		<color>#1</color>
	</array>
	<key>file</key>
	<file>
	L3RtcC94
	</file>
	<key>object</key>
	<null/>
	<key>empty</key>
	<data>
	</data>
	<key>color</key>
	<color>#FF80</color>
</xmldict>
)"s);
}

TEST_F(XmlDictionary, APropertyListSaysFalseForWhatItDoesNotKnow) {
    const auto dict = DictionaryOf(
        {{"nil", Value()}, {"date", Date()}, {"list", CollectionOf({Colour{1}, OtherObject()})}});
    EXPECT_EQ(ExportXMLString(dict, true), R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" )"
                                           R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>nil</key>
	<false/>
	<key>date</key>
	<date>1970-01-01T00:00:00Z</date>
	<key>list</key>
	<array>
		<false/>
		<false/>
	</array>
</dict>
</plist>
)"s);
}

TEST_F(XmlDictionary, EveryTypeComesBack) {
    const auto own = Loaded(ExportXMLString(every_type, false));
    ASSERT_TRUE(own);
    for (const char* key : {"nil", "integer", "real", "date", "string", "file", "color"})
        EXPECT_EQ(StorageByKey(own, key), StorageByKey(every_type, key)) << key;
    EXPECT_EQ(ExportXMLString(own, false), ExportXMLString(every_type, false));
    const auto plist = Loaded(ExportXMLString(every_type, true));
    ASSERT_TRUE(plist);
    EXPECT_EQ(std::get<MemoryBlockRef>(StorageByKey(plist, "data"))->bytes, Block(34)->bytes);
    EXPECT_EQ(ExportXMLString(plist, true), ExportXMLString(every_type, true));
    EXPECT_FALSE(LoadXML(plist, XmlDocument()));
}

TEST_F(XmlDictionary, ADictionaryThatHoldsItselfIsWrittenOnce) {
    const auto list = CollectionOf({1});
    const auto ring = DictionaryOf({{"a", list}, {"b", list}});
    ring->Set("me", ring);
    EXPECT_THAT(ExportXMLString(ring, false),
                HasSubstr("\n\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t</array>"
                          "\n\t<key>b</key>\n\t<array>\n\t</array>"
                          "\n\t<key>me</key>\n\t<dict>\n\t</dict>\n</"));
    ring->Set("me", Value()); // or it is never freed
}

TEST_F(XmlDictionary, ElementsAreReadByNameWithoutRegardToCase) {
    using Row = std::tuple<const char*, Value>;
    for (const auto& [element, value] :
         {Row{"<INTEGER> 12.9 apples</INTEGER>", 12}, Row{"<Real>.25</Real>", 0.25},
          Row{"<string>a<![CDATA[<b>]]>&#99;</string>", "a<b>c"s},
          Row{"<string>a<b x='&amp;'>c</b><!-- d --><?e f?></string>",
              R"(a<b x="&amp;">c</b><!-- d --><?e f?>)"s},
          Row{"<string> \n </string>", " \n "s}, Row{"<date>yesterday</date>", Value()},
          Row{"<False>yes</False>", false}}) {
        SCOPED_TRACE(element);
        const auto dict = Loaded("<xmldict><key>k</key>"s + element + "</xmldict>");
        ASSERT_TRUE(dict);
        EXPECT_EQ(StorageByKey(dict, "k"), value);
        EXPECT_EQ(StorageCount(dict), 1U);
    }
}

TEST_F(XmlDictionary, LoadingMergesDictionariesAndReplacesTheRest) {
    const auto inner = DictionaryOf({{"stays", 1}, {"changes", 1}});
    const auto dict = DictionaryOf({{"d", inner}, {"list", CollectionOf({1, 2})}, {"s", ""s}});
    const std::string text =
        "<xmldict><key>no</key><unknown/><real>1</real><key>no</key><key>no</key><real>1</real>"
        "<key>d</key> text "
        "<dict><key>changes</key><real>2</real></dict><real>with no key in front</real>"
        "<key>list</key><array/><key>s</key><dict/><key>s</key><dict><key>x</key><null/></dict>"
        "</xmldict>";
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(LoadXML(dict, std::string_view(text)));
        EXPECT_EQ(StorageByKey(dict, "d"), Value(inner));
        EXPECT_EQ(StorageByKey(inner, "stays"), Value(1));
        EXPECT_EQ(StorageByKey(inner, "changes"), Value(2.0));
        EXPECT_EQ(StorageCount(StorageByKey(dict, "list")), 0U);
        EXPECT_EQ(StorageCount(StorageByKey(dict, "s")), 1U);
        EXPECT_EQ(StorageCount(dict), 3U);
    }
}

TEST_F(XmlDictionary, RootAndVersionDecide) {
    for (const char* text :
         {"<xmldict/>", "<anything version='1.1 beta'/>", "<plist version='1.0'><dict/></plist>",
          "<plist> x <!-- y --> <dict/><array/></plist>"})
        EXPECT_TRUE(Loaded(text)) << text;
    for (const char* text :
         {"<xmldict version='1.2'/>", "<anything version='2'/>", "<plist/>",
          "<plist version='1.1'><dict/></plist>", "<plist><array/><dict/></plist>"})
        EXPECT_FALSE(Loaded(text)) << text;
}

TEST_F(XmlDictionary, OtherEventsRunWhileALongListIsWalked) {
    class HastyHost : public ScriptedHost { // every chance to let other events run is due
      public:
        std::chrono::nanoseconds Now() override { return now += 1s; }
    };

    HastyHost hasty;
    const auto list = std::make_shared<Collection>();
    for (int i = 0; i < 100; ++i)
        list->Add(i);
    const std::string text = ExportXMLString(DictionaryOf({{"list", list}}), false);
    EXPECT_GE(hasty.pumps, 100);
    hasty.pumps = 0;
    ASSERT_TRUE(Loaded(text));
    EXPECT_GE(hasty.pumps, 100);
}

// --- Files that somebody else has made.

using BadXml = XmlDictionary;

TEST_F(BadXml, AnythingNotWellFormedLeavesTheDictionaryAlone) {
    const std::string entry = "<key>a</key><integer>1</integer>";
    const std::string good = "<xmldict>" + entry + "</xmldict>";
    for (const std::string& text :
         {""s, "<xmldict>" + entry, good + "<xmldict/>", good + "x", good + "\0"s,
          "<xmldict>" + entry + "\xFF</xmldict>",
          "<!DOCTYPE xmldict PUBLIC 'x' 'http://velmarsh.example/x.dtd'><xmldict>" + entry +
              "&nbsp;</xmldict>",
          "<xmldict>" + entry + "&#0;</xmldict>",
          "<?xml version='1.0' encoding='EBCDIC'?>" + good}) {
        SCOPED_TRACE(text);
        const auto dict = DictionaryOf({{"a", 5}});
        EXPECT_FALSE(LoadXML(dict, std::string_view(text)));
        EXPECT_EQ(StorageByKey(dict, "a"), Value(5));
    }
}

TEST_F(BadXml, EntitiesNeitherFetchNorMultiply) {
    const TempFolder folder;
    const std::string secret = folder.File("secret", "fetched").string();
    EXPECT_FALSE(Loaded("<!DOCTYPE x [<!ENTITY e SYSTEM 'file://" + secret +
                        "'>]><x><key>k</key><string>&e;</string></x>"));
    EXPECT_FALSE(
        Loaded("<!DOCTYPE x [<!ENTITY % p SYSTEM 'file://" + secret + "'> %p; ]><x>&e;</x>"));
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

TEST_F(BadXml, NestingHasABoundThatBothFormsShare) {
    const auto nested = [](int levels) {
        std::string text = "<plist><dict>";
        for (int i = 1; i < levels; ++i)
            text += "<key>k</key><dict>";
        text += "<key>k</key><true/>";
        for (int i = 1; i < levels; ++i)
            text += "</dict>";
        return text + "</dict></plist>";
    };
    const auto deepest = Loaded(nested(kDeepestLevel));
    ASSERT_TRUE(deepest);
    for (const bool form : {false, true})
        EXPECT_EQ(ExportXMLString(Loaded(ExportXMLString(deepest, form)), form),
                  ExportXMLString(deepest, form));
    EXPECT_FALSE(Loaded(nested(kDeepestLevel + 1)));
    EXPECT_FALSE(Loaded(nested(100'000)));
    auto dict = DictionaryOf({{"innermost", 1}});
    for (int i = 0; i < 2 * kDeepestLevel; ++i)
        dict = DictionaryOf({{"k", dict}});
    const std::string text = ExportXMLString(dict, false);
    EXPECT_THAT(text, testing::Not(HasSubstr("innermost"))) << "storages too deep are left empty";
    ASSERT_TRUE(Loaded(text));
}

TEST_F(BadXml, AnEndlessTextIsRefusedAndALongOneTaken) {
    const auto document = [](std::size_t size) {
        return "<x><key>k</key><string>" + std::string(size, 'a') + "</string></x>";
    };
    EXPECT_TRUE(Loaded(document(kLongestDocument / 2)));
    EXPECT_FALSE(Loaded(document(kLongestDocument)));
    const TempFolder folder;
    const auto huge = folder.File("huge", document(1));
    std::filesystem::resize_file(huge, 10'000'000'000); // sparse
    EXPECT_FALSE(LoadXML(std::make_shared<Dictionary>(), huge));
}

} // namespace
} // namespace quoravel
