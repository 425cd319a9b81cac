#include "Platform/Formats.h"

#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

namespace marrowbox {

namespace {

/// 2026-11-21 10:01:00 UTC.
constexpr Date november{1795255260.0 - referenceDateSince1970};

/// Some locales set a no-break space between number and unit; which one changes with the locale data.
std::string withPlainBlanks(std::string text) {
    for (const std::string blank : {"\u202F", "\u00A0"})
        for (auto at = text.find(blank); at != std::string::npos; at = text.find(blank))
            text.replace(at, blank.size(), " ");
    return text;
}

} // namespace

TEST(Formats, writeADateWithItsTimeAsTheLocaleDoes) {
    EXPECT_EQ(Formats("UTC", "en_US").dateAndTime(november), "Nov 21, 2026, 10:01\u00A0AM");
    EXPECT_EQ(Formats("UTC", "en_GB").dateAndTime(november), "21 Nov 2026, 10:01");
    EXPECT_EQ(Formats("UTC", "de_DE").dateAndTime(november), "21. Nov. 2026, 10:01");
    EXPECT_EQ(Formats("UTC", "ja_JP").dateAndTime(november), "2026年11月21日 10:01");
}

TEST(Formats, writeATimeAloneAsTheLocaleDoes) {
    EXPECT_EQ(Formats("UTC", "en_US").time(november), "10:01\u00A0AM");
    EXPECT_EQ(Formats("UTC", "sv_SE").time(november), "10:01");
}

TEST(Formats, followTheTimeZoneOverTheDateLineAndSummerTime) {
    EXPECT_EQ(Formats("Pacific/Kiritimati", "en_GB").dateAndTime(november), "22 Nov 2026, 00:01");
    EXPECT_EQ(Formats("Europe/Berlin", "en_GB").time(november), "11:01");
    EXPECT_EQ(Formats("Europe/Berlin", "en_GB").time(november - 100 * 86'400.0), "12:01");
}

TEST(Formats, refuseAZoneThatNobodyKnows) {
    EXPECT_THROW(Formats("Europe/Atlantis", "en_US"), std::invalid_argument);
}

TEST(Formats, writeSizesInPowersOfAThousand) {
    const Formats formats("UTC", "en_US");
    const std::vector<std::pair<std::int64_t, std::string>> rows = {
        {0, "0 bytes"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1'000, "1 kB"},
        {1'499, "1 kB"},
        {1'500, "2 kB"},
        {999'499, "999 kB"},
        {1'000'000, "1 MB"},
        {1'540'000, "1.5 MB"},
        {999'949'999, "999.9 MB"},
        {1'000'000'000, "1 GB"},
        {1'234'567'890, "1.23 GB"},
        {1'200'000'000, "1.2 GB"},
        {2'500'000'000'000, "2.5 TB"},
        {3'000'000'000'000'000, "3 PB"},
        {-1'500'000, "-1.5 MB"},
    };
    for (const auto& [bytes, text] : rows)
        EXPECT_EQ(formats.byteCount(bytes), text) << bytes;
}

TEST(Formats, neverShowAThousandOfAUnit) {
    const Formats formats("UTC", "en_US");
    EXPECT_EQ(formats.byteCount(999'500), "1 MB");
    EXPECT_EQ(formats.byteCount(999'999), "1 MB");
    EXPECT_EQ(formats.byteCount(999'950'000), "1 GB");
    EXPECT_EQ(formats.byteCount(999'995'000'000), "1 TB");
    EXPECT_EQ(formats.byteCount(999'994'999'999), "999.99 GB");
}

TEST(Formats, writeTheLargestAndTheSmallestSize) {
    const Formats formats("UTC", "en_US");
    EXPECT_EQ(formats.byteCount(std::numeric_limits<std::int64_t>::max()), "9,223.37 PB");
    EXPECT_EQ(formats.byteCount(std::numeric_limits<std::int64_t>::min()), "-9,223.37 PB");
}

TEST(Formats, writeSizesAsTheLocaleDoes) {
    EXPECT_EQ(withPlainBlanks(Formats("UTC", "de_DE").byteCount(1'500'000)), "1,5 MB");
    EXPECT_EQ(withPlainBlanks(Formats("UTC", "fr_FR").byteCount(1'500'000)), "1,5 Mo");
}

TEST(Formats, writeDatesFarFromOurs) {
    const Formats formats("Europe/Berlin", "en_US");
    for (const double seconds : {0.0, -1e11, 1e11, 1e300, -1e300})
        EXPECT_FALSE(formats.dateAndTime(Date{seconds}).empty()) << seconds;
}

TEST(Formats, serveSeveralThreadsAtOnce) {
    const Formats formats("UTC", "en_GB");
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([formats] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_EQ(formats.dateAndTime(november), "21 Nov 2026, 10:01");
                EXPECT_EQ(formats.byteCount(1'500'000), "1.5 MB");
            }
        });
}

TEST(Formats, ofTheUserAreAtHand) {
    EXPECT_FALSE(Formats::current().dateAndTime(november).empty());
}

} // namespace marrowbox
