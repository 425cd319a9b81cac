#include "Platform/DataDirectory.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(DataDirectory, isTheOneThatTheVariableNames) {
    EXPECT_EQ(
        dataDirectory({{"MARROW_DATA_DIR", "/data"}, {"XDG_DATA_HOME", "/share"}, {"HOME", "/home/me"}}),
        "/data");
}

TEST(DataDirectory, isTheCurrentFolderWhenTheVariableIsEmpty) {
    EXPECT_EQ(dataDirectory({{"MARROW_DATA_DIR", ""}, {"HOME", "/home/me"}}) / "Credentials",
              std::filesystem::current_path() / "Credentials");
}

TEST(DataDirectory, startsFromTheCurrentFolderWhenTheVariableIsRelative) {
    EXPECT_EQ(dataDirectory({{"MARROW_DATA_DIR", "data"}}), std::filesystem::current_path() / "data");
}

TEST(DataDirectory, liesInTheDesktopsFolderForApplicationData) {
    EXPECT_EQ(dataDirectory({{"XDG_DATA_HOME", "/share"}, {"HOME", "/home/me"}}), "/share/Marrowbox");
    EXPECT_EQ(dataDirectory({{"HOME", "/home/me"}}), "/home/me/.local/share/Marrowbox");
}

TEST(DataDirectory, ignoresARelativeOrEmptyFolderOfTheDesktop) {
    EXPECT_EQ(dataDirectory({{"XDG_DATA_HOME", "share"}, {"HOME", "/home/me"}}),
              "/home/me/.local/share/Marrowbox");
    EXPECT_EQ(dataDirectory({{"XDG_DATA_HOME", ""}, {"HOME", "/home/me"}}),
              "/home/me/.local/share/Marrowbox");
}

TEST(DataDirectory, asksTheListOfUsersWithoutAHomeVariable) {
    const std::filesystem::path folder = dataDirectory({});
    EXPECT_TRUE(folder.is_absolute());
    EXPECT_TRUE(folder.string().ends_with("/.local/share/Marrowbox")) << folder;
}

} // namespace marrowbox
