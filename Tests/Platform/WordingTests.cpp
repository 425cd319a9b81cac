#include "Platform/Wording.h"

#include <array>
#include <gtest/gtest.h>
#include <set>

namespace marrowbox {

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

} // namespace marrowbox
