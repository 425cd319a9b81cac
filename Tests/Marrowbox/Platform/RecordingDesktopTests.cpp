#include "AppSupport/RecordingDesktop.h"
#include "Models/BackupError.h"
#include "Support/Coroutine.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>

namespace marrowbox::test {

using testing::ElementsAre;

namespace {

asio::awaitable<std::vector<std::optional<fs::path>>> chooseTwice(RecordingDesktop& desktop) {
    std::vector<std::optional<fs::path>> chosen;
    auto first = co_await desktop.chooseJSONFile("One");
    chosen.push_back(std::move(first));
    auto second = co_await desktop.chooseFolder("Two");
    chosen.push_back(std::move(second));
    co_return chosen;
}

} // namespace

TEST(RecordingDesktop, remembersActivitiesFromTheirBeginningToTheirEnd) {
    RecordingDesktop desktop;
    auto activity = desktop.beginActivity("Saving");
    EXPECT_THAT(desktop.activities(), ElementsAre("Saving"));
    activity.reset();
    EXPECT_TRUE(desktop.activities().empty());
    EXPECT_THAT(desktop.calls(), ElementsAre("beginActivity Saving", "endActivity Saving"));
}

TEST(RecordingDesktop, keepsAChooserOpenUntilItIsAnswered) {
    RecordingDesktop desktop;
    asio::io_context context;
    std::vector<std::optional<fs::path>> chosen;
    desktop.choose("/a/client.json");
    asio::co_spawn(context, chooseTwice(desktop),
                   [&](std::exception_ptr, auto all) { chosen = std::move(all); });
    context.poll();
    EXPECT_TRUE(desktop.isChoosing());
    EXPECT_TRUE(chosen.empty());
    desktop.choose(std::nullopt);
    context.run();
    EXPECT_FALSE(desktop.isChoosing());
    EXPECT_THAT(chosen, ElementsAre(std::optional<fs::path>("/a/client.json"), std::nullopt));
    EXPECT_THAT(desktop.calls(), ElementsAre("chooseJSONFile One", "chooseFolder Two"));
}

TEST(RecordingDesktop, leadsBookmarksWhereTheTestSays) {
    RecordingDesktop desktop;
    const auto bookmark = desktop.makeBookmark("/disk/backups");
    EXPECT_EQ(desktop.resolveBookmark(bookmark), (ResolvedBookmark{.path = "/disk/backups"}));
    desktop.resolutions[bookmark.bytes] = {.path = "/elsewhere", .isStale = true};
    EXPECT_EQ(desktop.resolveBookmark(bookmark), (ResolvedBookmark{.path = "/elsewhere", .isStale = true}));
    desktop.resolutionFailures[bookmark.bytes] = std::make_exception_ptr(BackupError("Gone."));
    EXPECT_EQ(thrown<BackupError>([&] { desktop.resolveBookmark(bookmark); }), "Gone.");
}

TEST(RecordingDesktop, playsTheMachine) {
    RecordingDesktop desktop;
    desktop.wake(); // nobody listens yet
    std::vector<std::string> heard;
    desktop.observe({.machineWoke = [&] { heard.emplace_back("woke"); },
                     .volumeAppeared = [&] { heard.emplace_back("appeared"); },
                     .volumeWentAway = [&] { heard.emplace_back("away"); }});
    desktop.makeVolumeAppear();
    desktop.takeVolumeAway();
    desktop.wake();
    EXPECT_THAT(heard, ElementsAre("appeared", "away", "woke"));
}

} // namespace marrowbox::test
