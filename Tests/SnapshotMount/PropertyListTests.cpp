#include "SnapshotMount/PropertyList.h"

#include "Platform/Files.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

PropertyList parsed(const std::string& value) {
    return PropertyList::parse("<?xml version=\"1.0\"?><plist version=\"1.0\">" + value + "</plist>");
}

std::string textOf(const std::string& value) {
    const PropertyList list = parsed(value);
    EXPECT_NE(list.string(), nullptr) << value;
    return list.string() != nullptr ? *list.string() : "";
}

} // namespace

TEST(PropertyList, readsEveryKindOfValue) {
    const PropertyList list =
        parsed("<dict><key>t</key><string>text</string><key>n</key><integer>7</integer>"
               "<key>r</key><real>0.5</real><key>y</key><true/><key>f</key><false/>"
               "<key>d</key><date>2026-11-21T00:00:00Z</date><key>b</key><data>AAE=</data>"
               "<key>l</key><array><string>a</string><array/><dict/></array></dict>");
    ASSERT_NE(list.dictionary(), nullptr);
    EXPECT_EQ(list.dictionary()->size(), 8u);
    EXPECT_EQ(*list.member("t")->string(), "text");
    EXPECT_EQ(list.member("l")->list()->size(), 3u);
    for (const char* key : {"n", "r", "y", "f", "d", "b"}) {
        EXPECT_EQ(list.member(key)->string(), nullptr) << key;
        EXPECT_EQ(list.member(key)->list(), nullptr) << key;
        EXPECT_EQ(list.member(key)->dictionary(), nullptr) << key;
    }
    EXPECT_EQ(list.member("missing"), nullptr);
    EXPECT_EQ(list.member("t")->member("t"), nullptr);
}

TEST(PropertyList, undoesEscapesOfEveryKind) {
    EXPECT_EQ(textOf("<string>&lt;&gt;&amp;&quot;&apos;</string>"), "<>&\"'");
    EXPECT_EQ(textOf("<string>&#65;&#xe9;&#x2014;&#128512;</string>"), "Aé—😀");
    EXPECT_EQ(textOf("<string><![CDATA[a<b&amp;]]>c</string>"), "a<b&amp;c");
    EXPECT_EQ(textOf("<string> a<!-- no -->b\n</string>"), " ab\n");
    EXPECT_EQ(textOf("<string></string>"), "");
    EXPECT_EQ(textOf("<string/>"), "");
}

TEST(PropertyList, acceptsBlanksAndCommentsBetweenElements) {
    EXPECT_EQ(
        PropertyList::parse("<?xml version=\"1.0\"?>\n<!-- one --><!DOCTYPE plist>\n<plist>\n<!-- two -->"
                            "<string >x</string >\n</plist>\n<!-- three -->\n"),
        parsed("<string>x</string>"));
}

TEST(PropertyList, refusesWhatIsNoWholeList) {
    for (const std::string value : {"",
                                    "text",
                                    "<string>",
                                    "<string>a</key>",
                                    "<string>a</string><string>b</string>",
                                    "</string>",
                                    "<array><string>a</string>",
                                    "<dict><string>a</string></dict>",
                                    "<dict><key>a</key></dict>",
                                    "<dict><key>a</key><true/><key>a</key><false/></dict>",
                                    "<integer/>",
                                    "<real>",
                                    "<unknown/>",
                                    "<unknown>a</unknown>",
                                    "<string>&unknown;</string>",
                                    "<string>&#0;</string>",
                                    "<string>&#xD800;</string>",
                                    "<string>&#x110000;</string>",
                                    "<string>&#1x;</string>",
                                    "<string>&amp</string>",
                                    "<string>a<![CDATA[b</string>",
                                    "<string><b>x</b></string>",
                                    "< >",
                                    "</ >",
                                    "<true>yes</true>",
                                    "<!-- "})
        EXPECT_THROW(parsed(value), PropertyListError) << value;
}

TEST(PropertyList, refusesWhatStandsBeforeOrBehind) {
    const std::string good = "<plist><true/></plist>";
    EXPECT_NO_THROW(PropertyList::parse(good));
    for (const std::string& document :
         {"warning\n" + good, good + "warning", good + good, std::string("<true/>"), std::string("</plist>"),
          std::string("<plist/>"), std::string("<!DOCTYPE plist [<!ENTITY x \"y\">]>") + good,
          std::string("bplist00")})
        EXPECT_THROW(PropertyList::parse(document), PropertyListError) << document;
}

TEST(PropertyList, refusesADocumentThatIsNestedTooDeeply) {
    std::string deep;
    for (int depth = 0; depth < 100'000; ++depth)
        deep += "<array>";
    EXPECT_THROW(parsed(deep), PropertyListError);
}

TEST(PropertyList, cutAtAnyByteIsRefused) {
    std::string whole = readFile(fs::path(MARROWBOX_TEST_DATA) / "info-two-images.plist");
    whole.erase(whole.find_last_not_of('\n') + 1);
    EXPECT_NO_THROW(PropertyList::parse(whole));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW(PropertyList::parse(whole.substr(0, length)), PropertyListError) << length;
}

TEST(PropertyList, withAnyByteChangedIsRefusedOrReadAsWhatItSays) {
    const std::string whole = readFile(fs::path(MARROWBOX_TEST_DATA) / "attach-partitioned.plist");
    int refused = 0;
    for (std::size_t position = 0; position < whole.size(); ++position) {
        std::string changed = whole;
        changed[position] = static_cast<char>(changed[position] ^ 0x20);
        try {
            PropertyList::parse(changed);
        } catch (const PropertyListError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0);
}

} // namespace marrowbox
