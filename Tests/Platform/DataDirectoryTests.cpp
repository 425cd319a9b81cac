#include "Platform/DataDirectory.h"

#include "Platform/Files.h"
#include "Support/ScratchFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

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

TEST(DataDirectory, needsNoCurrentFolderWhenTheVariableNamesAWholePath) {
    const Descriptor before = openFile(".", O_RDONLY | O_DIRECTORY, 0);
    {
        const test::ScratchFolder gone;
        ASSERT_EQ(::chdir(gone.path().c_str()), 0);
    }
    EXPECT_EQ(dataDirectory({{"MARROW_DATA_DIR", "/data"}}), "/data");
    EXPECT_ANY_THROW(dataDirectory({{"MARROW_DATA_DIR", "data"}}));
    ASSERT_EQ(::fchdir(before.number()), 0);
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
