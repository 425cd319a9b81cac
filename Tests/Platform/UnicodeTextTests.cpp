#include "Platform/UnicodeText.h"
#include "Support/Spread.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <vector>

namespace marrowbox {

namespace {

/// The rule itself, on whole texts of UTF-16: compose, then lower-case with no locale.
std::string keyByTheBook(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* composition = icu::Normalizer2::getNFCInstance(status);
    const auto wide = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    icu::UnicodeString key = composition->normalize(wide, status);
    EXPECT_TRUE(U_SUCCESS(status));
    std::string bytes;
    key.toLower(icu::Locale::getRoot()).toUTF8String(bytes);
    return bytes;
}

std::string utf8(char32_t scalar) {
    std::string bytes;
    icu::UnicodeString(static_cast<UChar32>(scalar)).toUTF8String(bytes);
    return bytes;
}

bool isSurrogate(char32_t scalar) {
    return scalar >= 0xD800 && scalar < 0xE000;
}

std::vector<std::pair<char32_t, std::string>> scalars(std::string_view text) {
    std::vector<std::pair<char32_t, std::string>> seen;
    forEachScalar(text, [&](char32_t scalar, std::string_view bytes) { seen.emplace_back(scalar, bytes); });
    return seen;
}

using Seen = std::vector<std::pair<char32_t, std::string>>;

} // namespace

TEST(CollisionKey, isTheSameForEveryAsciiCharacterWithAndWithoutTheFastPath) {
    for (int byte = 0; byte < 0x80; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        ASSERT_EQ(collisionKey(text), keyByTheBook(text)) << byte;
        // A letter that is not ASCII takes the whole text off the fast path and changes nothing else.
        ASSERT_EQ(collisionKey(text + "é"), keyByTheBook(text) + "é") << byte;
    }
}

TEST(CollisionKey, isTheSameForRandomTextsWithAndWithoutTheFastPath) {
    std::mt19937 random(1);
    for (int round = 0; round < 20'000; ++round) {
        std::string ascii(random() % 100, '\0');
        for (char& byte : ascii)
            byte = static_cast<char>(random() % 0x80);
        ASSERT_EQ(collisionKey(ascii), keyByTheBook(ascii));
        ASSERT_EQ(collisionKey(ascii + "/é"), keyByTheBook(ascii) + "/é");
    }
}

TEST(CollisionKey, followsTheRuleForRandomMixedTexts) {
    constexpr std::array<const char*, 18> parts = {"a",      "Z",  "/",  "é", "É", "e\u0301", "\u0301\u0327",
                                                   "Σ",      "Ο",  ".",  "İ", "ẞ", "Å",       "\u1100\u1161",
                                                   "\u212B", "가", "🎉", "𐐀"};
    std::mt19937 random(2);
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (auto more = random() % 12; more > 0; --more)
            text += parts[random() % parts.size()];
        ASSERT_EQ(collisionKey(text), keyByTheBook(text)) << text;
    }
}

TEST(CollisionKey, followsTheRuleForEveryScalar) {
    for (char32_t scalar = 0; scalar <= 0x10FFFF; scalar += test::stepOfManyCases()) {
        if (isSurrogate(scalar))
            continue;
        const std::string text = utf8(scalar);
        ASSERT_EQ(collisionKey(text), keyByTheBook(text)) << std::hex << static_cast<std::uint32_t>(scalar);
    }
}

TEST(CollisionKey, neverReachesAcrossASlash) {
    std::mt19937 random(3);
    const auto piece = [&] {
        std::string text;
        for (auto more = 1 + random() % 3; more > 0; --more) {
            const auto scalar = static_cast<char32_t>(random() % 0x3000);
            text += utf8(scalar == '/' ? 'x' : scalar);
        }
        return text;
    };
    for (int round = 0; round < 50'000; ++round) {
        const std::string left = piece();
        const std::string right = piece();
        ASSERT_EQ(collisionKey(left + "/" + right), collisionKey(left) + "/" + collisionKey(right));
    }
}

TEST(CollisionKey, composesBeforeItLowers) {
    EXPECT_EQ(collisionKey("ZU\u0308RICH"), "z\u00FCrich");
    EXPECT_EQ(collisionKey("I\u0307"), collisionKey("İ"));
    EXPECT_EQ(collisionKey("İ"), "i\u0307");
    EXPECT_EQ(collisionKey("\u212B"), "å");
}

TEST(CollisionKey, isThatOfNoLocale) {
    EXPECT_EQ(collisionKey("TITLE IIÌ"), "title iiì");
}

TEST(CollisionKey, keepsInvalidBytesAsTheyAre) {
    EXPECT_EQ(collisionKey("A\xFF"), "a\xFF");
    EXPECT_NE(collisionKey("A\xFE"), collisionKey("A\xFF"));
    EXPECT_EQ(collisionKey("É\xE2\x82/É\xC3"), "é\xE2\x82/é\xC3");
    EXPECT_EQ(collisionKey("\xED\xA0\x80Z"), "\xED\xA0\x80z");
}

TEST(CollisionKey, isAppendedToWhatIsThere) {
    std::string buffer = "KEEP ";
    appendCollisionKey("ABC", buffer);
    appendCollisionKey("É", buffer);
    EXPECT_EQ(buffer, "KEEP abcé");
}

TEST(UnicodeText, knowsAscii) {
    EXPECT_TRUE(isAscii(""));
    EXPECT_TRUE(isAscii(std::string(1000, '\x7F')));
    EXPECT_FALSE(isAscii(std::string(1000, 'a') + "\x80"));
    EXPECT_FALSE(isAscii("é"));
}

TEST(UnicodeText, readsScalarsWithTheirBytes) {
    EXPECT_EQ(scalars(""), Seen{});
    EXPECT_EQ(scalars("aé€🎉"), (Seen{{'a', "a"}, {U'é', "é"}, {U'€', "€"}, {U'🎉', "🎉"}}));
    EXPECT_EQ(scalars(std::string_view("\0b", 2)), (Seen{{0, std::string(1, '\0')}, {'b', "b"}}));
}

TEST(UnicodeText, countsEachInvalidByteByItself) {
    EXPECT_EQ(scalars("\x80z"), (Seen{{0xFFFD, "\x80"}, {'z', "z"}}));
    EXPECT_EQ(scalars("\xE2\x82z"), (Seen{{0xFFFD, "\xE2"}, {0xFFFD, "\x82"}, {'z', "z"}}));
    EXPECT_EQ(scalars("\xC0\xAF"), (Seen{{0xFFFD, "\xC0"}, {0xFFFD, "\xAF"}}));
    EXPECT_EQ(scalars("\xF0\x9F\x8E"), (Seen{{0xFFFD, "\xF0"}, {0xFFFD, "\x9F"}, {0xFFFD, "\x8E"}}));
}

TEST(UnicodeText, knowsControlAndFormatCharacters) {
    for (const char32_t control :
         U"\u0001\t\n\u001F\u007F\u0080\u009F\u00AD\u200B\u200E\u202E\u2066\uFEFF\U000E0001")
        EXPECT_TRUE(isControlCharacter(control)) << static_cast<std::uint32_t>(control);
    // Letters, blanks, marks, separators, private and unassigned ones are other categories.
    constexpr std::u32string_view others = U" A\u00A0\u0301\u2028\u2029\uE000\uFFFF\u0378\U0010FFFF";
    for (const char32_t other : others)
        EXPECT_FALSE(isControlCharacter(other)) << static_cast<std::uint32_t>(other);
    EXPECT_FALSE(isControlCharacter(0xD800));
    EXPECT_FALSE(isControlCharacter(0xFFFFFFFF));
}

TEST(NameOrder, readsNumbersInNames) {
    const NameOrder order("en");
    EXPECT_LT(order.compare("file 9", "file 10"), 0);
    EXPECT_GT(order.compare("file 10", "file 9"), 0);
    EXPECT_LT(order.compare("file 9.txt", "file 09a.txt"), 0);
    EXPECT_LT(order.compare("2 a", "10 a"), 0);
}

TEST(NameOrder, ignoresCaseButNotAccents) {
    const NameOrder order("en");
    EXPECT_EQ(order.compare("Report", "REPORT"), 0);
    EXPECT_LT(order.compare("apple", "Banana"), 0);
    EXPECT_GT(order.compare("banana", "Apple"), 0);
    EXPECT_LT(order.compare("resume", "résumé"), 0);
    EXPECT_LT(order.compare("résumé", "resumes"), 0);
    EXPECT_EQ(order.compare("re\u0301sume\u0301", "résumé"), 0);
}

TEST(NameOrder, followsTheLanguage) {
    EXPECT_LT(NameOrder("de").compare("ä", "z"), 0);
    EXPECT_GT(NameOrder("sv").compare("ä", "z"), 0);
}

TEST(NameOrder, isForPeopleInTheCLocaleToo) {
    const NameOrder order; // tests run in the C locale or in a person's
    EXPECT_LT(order.compare("apple", "Banana"), 0);
    EXPECT_LT(order.compare("file 9", "file 10"), 0);
    EXPECT_EQ(NameOrder("en_US_POSIX").compare("apple", "Apple"), NameOrder("en").compare("apple", "Apple"));
}

TEST(NameOrder, sortsAFolder) {
    std::vector<std::string> names = {"file 10", "File 9",  "Zebra", "äpfel", "apfel",
                                      "file 1",  ".hidden", "_x",    ""};
    const NameOrder order("de_DE");
    std::ranges::sort(names,
                      [&](const auto& left, const auto& right) { return order.compare(left, right) < 0; });
    EXPECT_EQ(names, (std::vector<std::string>{"", "_x", ".hidden", "apfel", "äpfel", "file 1", "File 9",
                                               "file 10", "Zebra"}));
}

TEST(PathExtension, isThePartBehindTheLastDot) {
    struct {
        const char* name;
        const char* extension;
        const char* stem;
    } constexpr rows[] = {{"a.txt", "txt", "a"},
                          {"a.tar.gz", "gz", "a.tar"},
                          {"a", "", "a"},
                          {"", "", ""},
                          {".hidden", "", ".hidden"},
                          {".hidden.txt", "txt", ".hidden"},
                          {"a.", "", "a."},
                          {".", "", "."},
                          {"..", "", ".."},
                          {"a..", "", "a.."},
                          {"a..b", "b", "a."},
                          {"..b", "b", "."},
                          {"a.b c", "", "a.b c"},
                          {"Mr. Smith", "", "Mr. Smith"},
                          {"a b.c", "c", "a b"},
                          {"ä.ö", "ö", "ä"},
                          {"a.b c.d", "d", "a.b c"},
                          {"a. ", "", "a. "},
                          {"REPORT.TXT", "TXT", "REPORT"}};
    for (const auto& row : rows) {
        EXPECT_EQ(pathExtension(row.name), row.extension) << row.name;
        EXPECT_EQ(withoutPathExtension(row.name), row.stem) << row.name;
    }
}

TEST(ValidText, leavesValidTextsAsTheyAre) {
    for (const std::string text : {"", "plain", "Bücher 日本語 🗄️", "a\nb"})
        EXPECT_EQ(validText(text), text);
    const std::string zero("a\0b", 3);
    EXPECT_EQ(validText(zero), zero);
}

TEST(ValidText, replacesEachByteThatIsNotUTF8) {
    EXPECT_EQ(validText("B\xFC"
                        "cher"),
              "B\uFFFD"
              "cher");
    EXPECT_EQ(validText("\xE2\x82"), "\uFFFD\uFFFD") << "the beginning of a scalar";
    EXPECT_EQ(validText("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD") << "half of a pair";
    EXPECT_EQ(validText("ü\xFFü"), "ü\uFFFDü");
}

} // namespace marrowbox
