#include "Platform/Wording.h"

#include "StringLiterals.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>

namespace marrowbox {

namespace {

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool isInTheTable(const std::string& sentence) {
    return std::ranges::any_of(wordings(), [&](const Wording& wording) { return wording.macOS == sentence; });
}

} // namespace

TEST(Wording, givesEachSentenceOfTheTableInTheWordsOfEitherSystem) {
    for (const Wording& wording : wordings()) {
        EXPECT_EQ(worded(wording.macOS, OperatingSystem::macOS), wording.macOS);
        EXPECT_EQ(worded(wording.macOS, OperatingSystem::linux), wording.linux);
        // A sentence that was worded already stays as it is.
        EXPECT_EQ(worded(wording.linux, OperatingSystem::linux), wording.linux);
    }
}

TEST(Wording, holdsEachSentenceOnce) {
    std::set<std::string_view> macOS;
    std::set<std::string_view> linux;
    for (const Wording& wording : wordings()) {
        EXPECT_TRUE(macOS.insert(wording.macOS).second) << wording.macOS;
        EXPECT_TRUE(linux.insert(wording.linux).second) << wording.linux;
    }
}

TEST(Wording, namesNoPartOfAMacToPeopleAtALinuxDesktop) {
    constexpr auto macNouns = std::to_array<std::string_view>(
        {"Mac", "macOS", "Finder", "menu bar", "System Settings", "Homebrew"});
    for (const Wording& wording : wordings()) {
        bool namesAMac = false;
        for (const auto noun : macNouns) {
            namesAMac = namesAMac || wording.macOS.find(noun) != std::string_view::npos;
            EXPECT_EQ(wording.linux.find(noun), std::string_view::npos) << wording.linux;
        }
        EXPECT_TRUE(namesAMac) << "needs no place in the table: " << wording.macOS;
    }
}

TEST(Wording, leavesEveryOtherSentenceAsItIs) {
    EXPECT_EQ(worded("Choose an existing destination folder.", OperatingSystem::linux),
              "Choose an existing destination folder.");
}

TEST(Wording, knowsEverySentenceOfTheProgramThatNamesAPartOfAMac) {
    const std::regex macNouns(R"(\b(Mac|macOS|Finder|[Mm]enu bar|System Settings|Homebrew)\b)");
    const std::filesystem::path sources(MARROWBOX_SOURCES);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources)) {
        const auto extension = entry.path().extension();
        if (extension != ".cpp" && extension != ".h" && extension != ".qml")
            continue;
        ++files;
        if (entry.path().filename() == "Wording.cpp")
            continue;
        for (const std::string& literal : test::stringLiterals(contentOf(entry.path())))
            if (std::regex_search(literal, macNouns))
                EXPECT_TRUE(isInTheTable(literal)) << entry.path() << " says: " << literal;
    }
    EXPECT_GT(files, 50U);
}

} // namespace marrowbox
