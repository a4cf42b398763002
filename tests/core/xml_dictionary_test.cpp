#include "prefs/xml_dictionary.h"
#include "prefs/xml_tree.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"
#include "support/xml_values.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using namespace XMLDictionary;
using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::HasSubstr;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string kXmldictDoctype = "<!DOCTYPE xmldict PUBLIC \"-//Velmarsh//DTD XMLDICT 1.1//EN\" "
                                    "\"http://velmarsh.example/DTDs/XMLDictionary-1.1.dtd\">\n";
const std::string kPlistDoctype = "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
                                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

class XmlDictionary : public testing::Test {
  protected:
    /// The entries of an xmldict document, without what is the same in all of them.
    static std::string Entries(const DictionaryRef& dict) {
        const std::string text = ExportXMLString(dict, false);
        const std::size_t begin = text.find("\n\t");
        return begin == std::string::npos ? "" : text.substr(begin, text.rfind("\n</") - begin);
    }

    /// The entries that come back for those in an xmldict document.
    static std::string Again(const std::string& entries) {
        const auto dict = Loaded("<xmldict version='1.1'>" + entries + "</xmldict>");
        return dict ? Entries(dict) : "refused";
    }

    ScriptedHost host_;
};

MemoryBlockRef Block(std::size_t size) {
    return std::make_shared<MemoryBlock>(MemoryBlock{std::vector<std::uint8_t>(size, 0xFF)});
}

/// One of each type.
DictionaryRef EveryType() {
    return DictionaryOf({{"nil", Value()},
                         {"integer", -12},
                         {"real", 1.0},
                         {"date", Date(std::chrono::sys_days(2001y / 9 / 9) + 1h + 46min + 40s)},
                         {"string", "a < b"s},
                         {"dict", DictionaryOf({{"inner", 1}})},
                         {"data", Block(34)},
                         {"array", CollectionOf({true, CollectionOf({"deep"s})})},
                         {"file", std::filesystem::path("/tmp/x")},
                         {"object", OtherObject()},
                         {"false", false},
                         {"color", Colour{0xFF80}}});
}

TEST_F(XmlDictionary, TheOwnFormOfEveryType) {
    EXPECT_EQ(ExportXMLString(EveryType(), false),
              kDeclaration + kXmldictDoctype + R"(<xmldict version="1.1">
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
	</array>
	<key>file</key>
	<file>
	L3RtcC94
	</file>
	<key>object</key>
	<null/>
	<key>false</key>
	<false/>
	<key>color</key>
	<color>#FF80</color>
</xmldict>
)"s);
}

TEST_F(XmlDictionary, APropertyListSaysFalseForWhatItDoesNotKnow) {
    const auto dict =
        DictionaryOf({{"nil", Value()},
                      {"date", Date()},
                      {"data", Block(0)},
                      {"lists", CollectionOf({std::filesystem::path("/x"), Colour{1}})},
                      {"object", OtherObject()}});
    EXPECT_EQ(ExportXMLString(dict, true), kDeclaration + kPlistDoctype + R"(<plist version="1.0">
<dict>
	<key>nil</key>
	<false/>
	<key>date</key>
	<date>1970-01-01T00:00:00Z</date>
	<key>data</key>
	<data>
	</data>
	<key>lists</key>
	<array>
		<false/>
		<false/>
	</array>
	<key>object</key>
	<false/>
</dict>
</plist>
)"s);
}

TEST_F(XmlDictionary, EveryTypeComesBack) {
    const auto dict = EveryType();
    const auto own = Loaded(ExportXMLString(dict, false));
    ASSERT_TRUE(own);
    for (const char* key : {"nil", "integer", "real", "date", "string", "file", "false", "color"})
        EXPECT_EQ(StorageByKey(own, key), StorageByKey(dict, key)) << key;
    EXPECT_EQ(ExportXMLString(own, false), ExportXMLString(dict, false));

    const auto plist = Loaded(ExportXMLString(dict, true));
    ASSERT_TRUE(plist);
    EXPECT_EQ(StorageByKey(plist, "nil"), Value(false));
    EXPECT_EQ(std::get<MemoryBlockRef>(StorageByKey(plist, "data"))->bytes, Block(34)->bytes);
    EXPECT_EQ(ExportXMLString(plist, true), ExportXMLString(dict, true));
    EXPECT_FALSE(LoadXML(plist, XmlDocument()));
}

TEST_F(XmlDictionary, OtherReadersTakeThePropertyList) {
    ASSERT_EQ(std::system("command -v plistutil >/dev/null"), 0)
        << "this test needs plistutil (Debian package libplist-utils)";
    const TempFolder folder;
    const auto dict = EveryType();
    dict->Set("empty", Block(0));
    dict->Set("nothing", std::make_shared<Dictionary>());
    dict->Set("ends", "a\rb"s);
    ASSERT_TRUE(SaveXML(dict, folder.path() / "ours", true));
    const std::string command = "cd " + folder.path().string() +
                                " && plistutil -i ours -o binary -f bin"
                                " && plistutil -i binary -o theirs -f xml";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string binary = TextOf(folder.path() / "binary");
    EXPECT_EQ(binary.substr(0, 6), "bplist");
    EXPECT_THAT(binary, HasSubstr("a\rb"));

    const auto theirs = std::make_shared<Dictionary>();
    ASSERT_TRUE(LoadXML(theirs, folder.path() / "theirs"));
    EXPECT_EQ(StorageCount(theirs), StorageCount(dict));
    for (const char* key : {"integer", "real", "date", "string", "false"})
        EXPECT_EQ(StorageByKey(theirs, key), StorageByKey(dict, key)) << key;
    EXPECT_EQ(std::get<MemoryBlockRef>(StorageByKey(theirs, "data"))->bytes, Block(34)->bytes);
    EXPECT_EQ(StorageCount(StorageByKey(theirs, "array")), 2U);
}

TEST_F(XmlDictionary, ADictionaryThatHoldsItselfIsWrittenOnce) {
    const auto ring = DictionaryOf({{"a", 1}});
    ring->Set("me", ring);
    EXPECT_EQ(Entries(ring), "\n\t<key>a</key>\n\t<integer>1</integer>"
                             "\n\t<key>me</key>\n\t<dict>\n\t</dict>");
    ring->Set("me", Value()); // or it is never freed

    const auto shared = CollectionOf({1});
    EXPECT_EQ(Entries(DictionaryOf({{"a", shared}, {"b", shared}})),
              "\n\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t</array>"
              "\n\t<key>b</key>\n\t<array>\n\t</array>");
}

TEST_F(XmlDictionary, ElementsAreReadByNameWithoutRegardToCase) {
    using Row = std::tuple<const char*, Value>;
    const Row rows[] = {
        {"<INTEGER> 12.9 apples</INTEGER>", 12},
        {"<integer>-3e9</integer>", INT32_MIN},
        {"<Real>.25</Real>", 0.25},
        {"<string>a<![CDATA[<b>]]>&#99;</string>", "a<b>c"s},
        {"<string>a<b x='&amp;'>c</b><!-- d --><?e f?></string>",
         R"(a<b x="&amp;">c</b><!-- d --><?e f?>)"s},
        {"<string> \n </string>", " \n "s},
        {"<date>yesterday</date>", Value()},
        {"<False>yes</False>", false},
        {"<color>#1aB</color>", Colour{0x1AB}},
    };
    for (const auto& [element, value] : rows) {
        SCOPED_TRACE(element);
        const auto dict = Loaded("<xmldict><key>k</key>"s + element + "</xmldict>");
        ASSERT_TRUE(dict);
        EXPECT_EQ(StorageByKey(dict, "k"), value);
        EXPECT_EQ(StorageCount(dict), 1U);
    }
}

TEST_F(XmlDictionary, AValueNeedsItsKeyRightInFront) {
    const std::string b = "\n\t<key>b</key>\n\t<integer>2</integer>";
    const char* const good = "<key>b</key> text <!-- c --> <integer>2</integer>";
    for (const std::string bad :
         {"<integer>1</integer>", "<key>a</key><key>stray</key><integer>1</integer>",
          "<key>a</key><unknown>1</unknown><integer>1</integer>"})
        EXPECT_EQ(Again(bad + good), b) << bad;
    EXPECT_EQ(Again("<key>a</key>"s), "");
    EXPECT_EQ(Again("<key>b</key><array><integer>1</integer><key>in</key></array>"),
              "\n\t<key>b</key>\n\t<array>\n\t\t<integer>1</integer>\n\t</array>");
}

TEST_F(XmlDictionary, LoadingMergesDictionariesAndReplacesTheRest) {
    const auto inner = DictionaryOf({{"stays", 1}, {"changes", 1}});
    const auto dict = DictionaryOf({{"d", inner}, {"list", CollectionOf({1, 2})}, {"s", ""s}});
    const std::string text =
        "<xmldict><key>d</key><dict><key>changes</key><real>2</real></dict>"
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
    using Row = std::tuple<const char*, bool>;
    const Row rows[] = {
        {"<xmldict version='1.1'/>", true},
        {"<xmldict/>", true},
        {"<xmldict version='1.2'/>", false},
        {"<anything version='1.1 beta'/>", true},
        {"<anything version='2'/>", false},
        {"<plist version='1.0'><dict/></plist>", true},
        {"<plist> x <!-- y --> <dict/><array/></plist>", true},
        {"<plist version='1.1'><dict/></plist>", false},
        {"<plist/>", false},
        {"<plist><array/><dict/></plist>", false},
    };
    for (const auto& [text, taken] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Loaded(text) != nullptr, taken);
    }
}

TEST_F(XmlDictionary, OtherEncodingsAreRead) {
    const auto latin = Loaded("<?xml version='1.0' encoding='ISO-8859-1'?>"
                              "<x><key>k</key><string>\xFC</string></x>");
    ASSERT_TRUE(latin);
    EXPECT_EQ(StorageByKey(latin, "k"), Value("\xC3\xBC"s));
    const auto marked = Loaded("\xEF\xBB\xBF<x><key>k</key><true/></x>");
    ASSERT_TRUE(marked);
    EXPECT_EQ(StorageByKey(marked, "k"), Value(true));
}

TEST_F(XmlDictionary, SavingReplacesTheFileOnlyIfItHoldsSomethingElse) {
    const TempFolder folder;
    const auto file = folder.path() / "file";
    const auto dict = DictionaryOf({{"a", 1}});
    ASSERT_TRUE(SaveXML(dict, file, false));
    EXPECT_EQ(TextOf(file), ExportXMLString(dict, false));

    const std::filesystem::file_time_type long_ago{};
    std::filesystem::last_write_time(file, long_ago);
    EXPECT_TRUE(SaveXML(dict, file, false));
    EXPECT_EQ(std::filesystem::last_write_time(file), long_ago);
    EXPECT_TRUE(SaveXML(dict, file, true));
    EXPECT_EQ(TextOf(file), ExportXMLString(dict, true));

    EXPECT_FALSE(SaveXML(dict, folder.path() / "no" / "such folder", false));
    EXPECT_FALSE(LoadXML(dict, folder.path() / "missing"));
    EXPECT_FALSE(LoadXML(dict, folder.path()));
}

/// Time flies: every chance to let other events run is due.
class HastyHost : public ScriptedHost {
  public:
    std::chrono::nanoseconds Now() override { return now += 1s; }
};

TEST(XmlDictionaryEvents, OtherEventsRunWhileALongListIsWalked) {
    HastyHost hasty;
    const auto list = std::make_shared<Collection>();
    for (int i = 0; i < 100; ++i)
        list->Add(i);
    const std::string text = ExportXMLString(DictionaryOf({{"list", list}}), false);
    EXPECT_GE(hasty.pumps, 100);
    hasty.pumps = 0;
    ASSERT_TRUE(LoadXML(std::make_shared<Dictionary>(), std::string_view(text)));
    EXPECT_GE(hasty.pumps, 100);
}

} // namespace
} // namespace quoravel
