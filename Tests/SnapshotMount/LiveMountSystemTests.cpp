#include "SnapshotMount/SnapshotMountSystem.h"
#include "Support/Coroutine.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(LiveMountSystem, listsWholeCommandsWhateverTheUsersShellSays) {
    const std::string mark = "a mark at the end of a long command";
    // Two commands, so that the shell stays, and its own line is in the list.
    const std::string script = "/bin/ps -axo command=; : " + std::string(200, 'x') + mark;
    const std::map<std::string, std::string> settings{
        {"COLUMNS", "40"}, {"CMD_ENV", "hp"}, {"PS_PERSONALITY", "hp"}};
    for (const auto& [setting, value] : settings) {
        auto surroundings = ProcessSurroundings::ofThisProcess();
        surroundings.environment.insert_or_assign(setting, value);
        LiveMountSystem machine(std::move(surroundings));
        const auto answer = test::await(machine.run("/bin/sh", {"-c", script}, {}, {}));
        EXPECT_EQ(answer.status, 0) << setting;
        EXPECT_NE(answer.output.find(mark), std::string::npos) << setting;
    }
}

} // namespace marrowbox
