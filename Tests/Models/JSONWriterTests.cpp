#include "Models/JSONWriter.h"

#include "Models/AppConfiguration.h"
#include "Models/JSONReader.h"

#include <bit>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace marrowbox {

namespace {

struct Moment {
    Date date;
};
BOOST_DESCRIBE_STRUCT(Moment, (), (date))

std::string written(double value) {
    return encodeJSON(Moment{{value}}, JSONStyle::compact);
}
std::string written(const std::string& text) {
    return encodeJSON(EmailSettings{.recipient = text}, JSONStyle::compact);
}

} // namespace

TEST(JSONWriter, writesDatesAsPlainDecimals) {
    EXPECT_EQ(written(0), R"({"date":0})");
    EXPECT_EQ(written(796953600.5), R"({"date":796953600.5})");
    EXPECT_EQ(written(1e21), R"({"date":1000000000000000000000})");
    EXPECT_EQ(written(1e-7), R"({"date":0.0000001})");
}

TEST(JSONWriter, writesDatesThatReadBackToTheSameDouble) {
    std::mt19937_64 random(7);
    int tried = 0;
    while (tried < 20'000) {
        const double value = std::bit_cast<double>(random());
        if (!std::isfinite(value) || !std::isnormal(value))
            continue;
        ++tried;
        const std::string text = written(value);
        EXPECT_EQ(text.find_first_of("eE", 8), std::string::npos) << text;
        EXPECT_EQ(decodeJSON<Moment>(text).date.secondsSinceReference, value) << text;
    }
    for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::min(), -0.0})
        EXPECT_EQ(decodeJSON<Moment>(written(value)).date.secondsSinceReference, value);
}

TEST(JSONWriter, refusesNumbersThatAreNotFinite) {
    EXPECT_THROW(written(std::numeric_limits<double>::quiet_NaN()), JSONEncodingError);
    EXPECT_THROW(written(std::numeric_limits<double>::infinity()), JSONEncodingError);
}

TEST(JSONWriter, escapesWhatMustBeAndNoSlash) {
    EXPECT_EQ(written("a/b\"c\\d\b\f\n\r\t\x01\x1F\x7F"
                      "é€😀"),
              R"({"accountID":"","provider":"disabled","recipient":"a/b\"c\\d\b\f\n\r\t\u0001\u001f)"
              "\x7F"
              R"(é€😀"})");
}

TEST(JSONWriter, givesBackEveryByteAtEveryPlaceOfAWord) {
    for (int byte = 0; byte < 128; ++byte)
        for (std::size_t place = 0; place < 17; ++place) {
            std::string text(17, 'x');
            text[place] = static_cast<char>(byte);
            EXPECT_EQ(decodeJSON<EmailSettings>(written(text)).recipient, text) << byte << " at " << place;
        }
}

TEST(JSONWriter, refusesTextsThatAreNotUTF8) {
    for (const char* bytes :
         {"\xFF", "\xC0\xAF", "\xE2\x82", "\xED\xA0\x80", "\xF4\x90\x80\x80", "abcdefg\x80"})
        EXPECT_THROW(written(std::string(bytes)), JSONEncodingError);
}

TEST(JSONWriter, leavesOutOptionalFieldsWithoutAValue) {
    EXPECT_EQ(encodeJSON(DriveLocation{.id = "root", .name = "My Drive"}, JSONStyle::compact),
              R"({"id":"root","name":"My Drive"})");
}

TEST(JSONWriter, writesAllTopLevelKeysOfAConfiguration) {
    EXPECT_EQ(encodeJSON(AppConfiguration(), JSONStyle::pretty), R"({
  "accounts": [],
  "email": {
    "accountID": "",
    "provider": "disabled",
    "recipient": ""
  },
  "runs": [],
  "schemaVersion": 1,
  "units": [],
  "usesImportedClient": false
})");
}

TEST(JSONWriter, writesAHashOfAWrongFormAsItStands) {
    EXPECT_EQ(encodeJSON(SnapshotEntry{.objectHash = ObjectHash("A\"")}, JSONStyle::compact).substr(0, 22),
              R"({"objectHash":"A\"","s)");
}

} // namespace marrowbox
