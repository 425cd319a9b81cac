#include "SnapshotMount/FileURL.h"
#include "SnapshotMount/VolumeName.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

std::string nameOf(std::string_view unitName) {
    return volumeName(unitName, {.tm_min = 4, .tm_hour = 5, .tm_mday = 7, .tm_mon = 1});
}

} // namespace

TEST(VolumeName, isMadeOfTheUnitAndTheTimeOfCompletion) {
    EXPECT_EQ(nameOf("Papers"), "Marrowbox Papers 02-07 0504");
}

TEST(VolumeName, losesPunctuationBeforeItIsCut) {
    EXPECT_EQ(nameOf("A.B/C:D!E?F&G (H) é I_J-K L"), "Marrowbox ABCDEFG H  I_J 02-07 0504");
    EXPECT_EQ(nameOf("1234567890 23456"), "Marrowbox 1234567890 234 02-07 0504");
}

TEST(VolumeName, hasTwoBlanksForAUnitWithoutAUsableCharacter) {
    EXPECT_EQ(nameOf("…/文書"), "Marrowbox  02-07 0504");
    EXPECT_EQ(nameOf(""), "Marrowbox  02-07 0504");
}

TEST(VolumeName, takesTheTimeOfTheSystemsZone) {
    const std::time_t instant = 1'795'273'445; // some moment of 2026
    std::tm expected{};
    ::localtime_r(&instant, &expected);
    const std::tm fields = systemLocalTime()({instant - referenceDateSince1970 + 0.9});
    EXPECT_EQ(volumeName("A", fields), volumeName("A", expected));
    EXPECT_EQ(fields.tm_sec, expected.tm_sec);
}

TEST(VolumeName, takesTheZoneThatTheSystemHasNow) {
    const char* before = std::getenv("TZ");
    const std::string zone = before != nullptr ? before : "";
    ::setenv("TZ", "HERE0", 1);
    const int here = systemLocalTime()({0}).tm_hour;
    ::setenv("TZ", "THERE-5", 1);
    const int there = systemLocalTime()({0}).tm_hour;
    before != nullptr ? ::setenv("TZ", zone.c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
    EXPECT_EQ(here, 0);
    EXPECT_EQ(there, 5);
}

TEST(VolumeName, isMadeForADateBeyondEveryCalendar) {
    for (const double seconds : {1e300, -1e300}) {
        const std::tm fields = systemLocalTime()({seconds});
        EXPECT_TRUE(fields.tm_mday >= 1 && fields.tm_mday <= 31) << seconds;
    }
}

TEST(FileURL, escapesWhatAURLCannotHoldAndReadsItBack) {
    const fs::path path = "/a b/é%20?#[]/x;y\"\n\\z~-._";
    const FileURL url = FileURL::ofFile(path);
    EXPECT_EQ(url.text, "file:///a%20b/%C3%A9%2520%3F%23%5B%5D/x%3By%22%0A%5Cz~-._");
    EXPECT_EQ(url.path(), path);
    EXPECT_EQ(FileURL::ofFolder(path).path(), path);
    EXPECT_EQ(FileURL::ofFolder("/a").text, "file:///a/");
}

TEST(FileURL, givesEveryByteBack) {
    std::string name = "/";
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            name += static_cast<char>(byte);
    EXPECT_EQ(FileURL::ofFile(name).path(), name);
}

TEST(FileURL, isStandardizedAndAcceptsTheOwnHost) {
    EXPECT_EQ((FileURL{"file:///a/./b/../c//"}.path()), "/a/c");
    EXPECT_EQ((FileURL{"file://localhost/a"}.path()), "/a");
}

TEST(FileURL, thatNamesNoFileHereEqualsNoAbsolutePath) {
    for (const std::string text :
         {"/a", "a", "file:/a", "file://host/a", "http:///a", "file:///a?b", "file:///a#b", "file:///%",
          "file:///%1", "file:///%g0", "file:///%00", "file://localhosta/b"})
        EXPECT_FALSE(FileURL{text}.path().is_absolute()) << text;
}

} // namespace marrowbox
