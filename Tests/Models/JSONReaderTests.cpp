#include "Models/JSONReader.h"

#include "Models/AppConfiguration.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox {

namespace {

std::string refusal(std::string_view text) {
    return test::thrown<JSONDecodingError>([&] { decodeJSON<SourceEntry>(text); });
}

std::string summaryWith(const std::string& added) {
    return R"({"added":)" + added +
           R"(,"updated":0,"removed":0,"unchanged":0,"exported":0,"downloadedBytes":0})";
}

struct Numbers {
    double number = 0;
    std::map<std::string, ByteString> values;
};
BOOST_DESCRIBE_STRUCT(Numbers, (), (number, values))

double readNumber(const std::string& text) {
    return decodeJSON<Numbers>(R"({"number":)" + text + R"(,"values":{}})").number;
}

} // namespace

TEST(JSONReader, takesKeysInAnyOrderAndIgnoresOthers) {
    const auto entry = decodeJSON<SourceEntry>(
        R"({"version":"7","path":"a\/b","extra":{"deep":[1,{"x":null}]},"id":"1","size":-1,"mimeType":"t","isDirectory":true})");
    EXPECT_EQ(entry,
              (SourceEntry{.id = "1", .path = "a/b", .version = "7", .mimeType = "t", .isDirectory = true}));
}

TEST(JSONReader, treatsNullAndAbsenceOfAnOptionalAlike) {
    const auto entry = decodeJSON<SourceEntry>(
        R"({"version":"7","path":"a","id":"1","size":1,"mimeType":"t","isDirectory":false,"md5":null})");
    EXPECT_FALSE(entry.md5);
}

TEST(JSONReader, namesAMissingKey) {
    EXPECT_EQ(refusal(R"({"version":"7","path":"a","size":1,"mimeType":"t","isDirectory":false})"),
              "“id” is missing.");
}

TEST(JSONReader, namesTheValueOfTheWrongType) {
    EXPECT_EQ(refusal(R"({"size":"1"})"), "“size” should be a whole number.");
    EXPECT_EQ(refusal(R"({"id":1})"), "“id” should be a text.");
    EXPECT_EQ(refusal(R"({"id":null})"), "“id” should be a text.");
    EXPECT_EQ(refusal(R"({"md5":5})"), "“md5” should be a text.");
    EXPECT_EQ(refusal(R"({"isDirectory":0})"), "“isDirectory” should be true or false.");
    EXPECT_EQ(refusal(R"({"size":{}})"), "“size” should be a whole number.");
    EXPECT_EQ(refusal(R"([])"), "The file should be an object.");
    EXPECT_EQ(test::thrown<JSONDecodingError>(
                  [] { decodeJSON<AppConfiguration>(R"({"units":[{"source":{"name":1}}]})"); }),
              "“units[0].source.name” should be a text.");
}

TEST(JSONReader, neverQuotesAValue) {
    EXPECT_EQ(refusal(R"({"size":"secret"})").find("secret"), std::string::npos);
}

TEST(JSONReader, refusesAKeyThatStandsTwice) {
    EXPECT_EQ(refusal(R"({"id":"1","id":"2"})"), "The key “id” stands twice in one object.");
    EXPECT_THROW(decodeJSON<Numbers>(R"({"number":1,"values":{"a":"","a":""}})"), JSONDecodingError);
}

TEST(JSONReader, refusesWhatIsNotJSON) {
    for (const std::string_view text :
         {"", " ", "{", "{}x", "{}{}", "nul", "{\"a\":1,}", "[1,]", "{'a':1}", "// c\n{}", "{\"a\":01}",
          "{\"a\":+1}", "{\"a\":.5}", "{\"a\":NaN}", "{\"a\":\"\t\"}", "{\"a\":\"\\x\"}", "\xEF\xBB\xBF{}"})
        EXPECT_THROW(decodeJSON<AppConfiguration>(text), JSONDecodingError) << text;
}

TEST(JSONReader, refusesTextsThatAreNotUTF8) {
    for (const std::string_view bytes :
         {"\xFF", "\xC0\xAF", "\xE2\x82", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\x80"})
        EXPECT_THROW(decodeJSON<SourceEntry>(R"({"id":")" + std::string(bytes) + R"("})"), JSONDecodingError);
}

TEST(JSONReader, readsEveryEscape) {
    const auto values =
        decodeJSON<EmailSettings>(R"({"recipient":"\"\\\/\b\f\n\r\t\u0041\u00e9\u20ac\ud83d\ude00\u0000"})");
    EXPECT_EQ(values.recipient, std::string("\"\\/\b\f\n\r\tA\u00e9\u20ac\U0001F600\0", 19));
}

TEST(JSONReader, refusesHalfASurrogatePair) {
    EXPECT_THROW(decodeJSON<EmailSettings>(R"({"recipient":"\ud83d"})"), JSONDecodingError);
    EXPECT_THROW(decodeJSON<EmailSettings>(R"({"recipient":"\ude00"})"), JSONDecodingError);
}

TEST(JSONReader, takesWholeNumbersOnlyWhereOneIsWanted) {
    EXPECT_EQ(decodeJSON<RunSummary>(summaryWith("9223372036854775807")).added,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(decodeJSON<RunSummary>(summaryWith("-9223372036854775808")).added,
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(decodeJSON<RunSummary>(summaryWith("1e3")).added, 1000);
    EXPECT_EQ(decodeJSON<RunSummary>(summaryWith("2.0")).added, 2);
    for (const char* wrong : {"9223372036854775808", "1.5", "1e300", "true", "\"1\"", "null"})
        EXPECT_THROW(decodeJSON<RunSummary>(summaryWith(wrong)), JSONDecodingError) << wrong;
}

TEST(JSONReader, readsTheNearestDouble) {
    EXPECT_EQ(readNumber("0.1"), 0.1);
    EXPECT_EQ(readNumber("796953600.123456717"), 796953600.123456717);
    EXPECT_EQ(readNumber("2.2250738585072011e-308"), 2.2250738585072011e-308);
    EXPECT_EQ(readNumber("123456789012345678901234567890"), 123456789012345678901234567890.0);
    EXPECT_TRUE(std::signbit(readNumber("-0")));
    EXPECT_THROW(readNumber("1e400"), JSONDecodingError);
}

TEST(JSONReader, readsBytesFromTheOneSpellingOfBase64) {
    const auto read = [](const std::string& text) {
        return decodeJSON<Numbers>(R"({"number":0,"values":{"k":")" + text + R"("}})").values.at("k").bytes;
    };
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read("AP8="), std::string("\0\xFF", 2));
    for (const char* wrong : {"AP8", "AP8=\\n", " AP8=", "AP9=", "A===", "AP-_"})
        EXPECT_THROW(read(wrong), JSONDecodingError) << wrong;
}

TEST(JSONReader, refusesDeepNestingInsteadOfOverflowing) {
    EXPECT_THROW(decodeJSON<AppConfiguration>(R"({"x":)" + std::string(100'000, '[')), JSONDecodingError);
}

} // namespace marrowbox
