#include "Models/ObjectHash.h"

#include "Platform/Digest.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string digits = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

} // namespace

TEST(ObjectHash, isTheTextOfADigest) {
    const auto hash = ObjectHash::ofDigest(sha256(""));
    EXPECT_TRUE(hash.isValid());
    EXPECT_EQ(hash.text(), digits);
    EXPECT_EQ(hash, ObjectHash(digits));
}

TEST(ObjectHash, writesItsTextIntoABuffer) {
    std::string text(64, '?');
    ObjectHash(digits).writeText(text.data());
    EXPECT_EQ(text, digits);
}

TEST(ObjectHash, readsEveryDigitAtEveryPlace) {
    for (std::size_t place = 0; place < 64; ++place)
        for (const char digit : std::string_view("0123456789abcdef")) {
            std::string text = digits;
            text[place] = digit;
            ASSERT_TRUE(ObjectHash(text).isValid());
            ASSERT_EQ(ObjectHash(text).text(), text);
        }
}

TEST(ObjectHash, isInvalidWithAnyOtherByteAtAnyPlace) {
    for (std::size_t place = 0; place < 64; ++place)
        for (int byte = 0; byte < 256; ++byte) {
            std::string text = digits;
            text[place] = static_cast<char>(byte);
            const bool isDigit =
                std::string_view("0123456789abcdef").find(text[place]) != std::string_view::npos;
            ASSERT_EQ(ObjectHash(text).isValid(), isDigit) << place << " " << byte;
            ASSERT_EQ(ObjectHash(text).text(), text);
        }
}

TEST(ObjectHash, keepsAnInvalidTextAsItStands) {
    for (const std::string& text : {std::string(), std::string("../x"), digits.substr(1), digits + "0",
                                    std::string("E3B0") + digits.substr(4)}) {
        const ObjectHash hash(text);
        EXPECT_FALSE(hash.isValid()) << text;
        EXPECT_EQ(hash.text(), text);
        EXPECT_EQ(hash, ObjectHash(text));
        EXPECT_EQ(hash.tableHash(), ObjectHash(text).tableHash());
    }
}

TEST(ObjectHash, differsWhenOneDigitDoes) {
    std::string other = digits;
    other.back() = '6';
    EXPECT_NE(ObjectHash(digits), ObjectHash(other));
    EXPECT_NE(ObjectHash(digits), ObjectHash("x"));
    EXPECT_NE(ObjectHash(digits).tableHash(), ObjectHash::ofDigest(sha256("a")).tableHash());
}

TEST(ObjectHash, refusesADigestOfAnotherLength) {
    EXPECT_THROW(ObjectHash::ofDigest("short"), std::invalid_argument);
}

} // namespace marrowbox
