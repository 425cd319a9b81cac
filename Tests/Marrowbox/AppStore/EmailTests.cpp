#include "StoreWorld.h"
#include "Web.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::mailedRun;
using test::StoreWorld;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// Anna, her unit, and this many finished runs that wait for their mail, newest first.
AppConfiguration unsentRuns(StoreWorld& world, int count) {
    AppConfiguration configuration = test::oneUnit(world);
    for (int index = 0; index < count; ++index)
        configuration.runs.push_back(
            mailedRun(configuration.units[0], world.time.now() - 3600 * (index + 1)));
    return configuration;
}

std::vector<std::optional<double>> secondsToNextAttempt(const StoreWorld& world) {
    std::vector<std::optional<double>> seconds;
    for (const RunRecord& run : world.configuration().runs)
        seconds.push_back(run.nextEmailAttempt ? std::optional(*run.nextEmailAttempt - world.time.now())
                                               : std::nullopt);
    return seconds;
}

} // namespace

TEST(Emails, goOutForEachFinishedRunAndAreWrittenDown) {
    StoreWorld world;
    world.startWith(unsentRuns(world, 2));
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
    EXPECT_THAT(world.mailRecipients(), Each("anna@example.org"));
    for (const RunRecord& run : world.configuration().runs) {
        EXPECT_TRUE(run.emailSent);
        EXPECT_EQ(run.emailSentAt, world.time.now());
    }
    EXPECT_EQ(world.written(), world.configuration());
    EXPECT_EQ(world.state().pendingEmails(), 0U);
    world.time.advance(3600);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
}

TEST(Emails, thatFailEachCountTheirOwnAttemptsAndBackOff) {
    StoreWorld world;
    AppConfiguration configuration = unsentRuns(world, 5);
    for (int index = 0; index < 5; ++index)
        configuration.runs[static_cast<std::size_t>(index)].emailAttempts = index;
    world.write(configuration);
    world.web = test::offline();
    world.start();
    EXPECT_THAT(world.requests, SizeIs(5));
    EXPECT_THAT(secondsToNextAttempt(world), ElementsAre(120, 240, 480, 960, 1920));
    for (std::size_t index = 0; index < 5; ++index) {
        EXPECT_EQ(world.configuration().runs[index].emailAttempts, static_cast<int>(index) + 1);
        EXPECT_EQ(world.configuration().runs[index].emailError, "The network is unreachable.");
    }
    EXPECT_EQ(world.written(), world.configuration());
    EXPECT_EQ(world.error(), "");
}

TEST(Emails, backOffToSixHoursAndAreNeverGivenUp) {
    StoreWorld world;
    AppConfiguration configuration = unsentRuns(world, 1);
    configuration.units[0].nextRun.reset();
    world.write(configuration);
    std::vector<Date> attempts;
    world.web = [&, fail = test::offline()](auto request, auto stop) {
        attempts.push_back(world.time.now());
        return fail(std::move(request), std::move(stop));
    };
    world.start();
    std::vector<double> delays;
    while (delays.size() < 12) {
        delays.push_back(*world.lastRun().nextEmailAttempt - attempts.back());
        const std::size_t made = attempts.size();
        world.time.advance(*world.lastRun().nextEmailAttempt - world.time.now() - 0.5);
        ASSERT_EQ(attempts.size(), made) << "too early";
        world.time.advance(31);
        ASSERT_EQ(attempts.size(), made + 1) << "the first tick after the delay tries again";
    }
    EXPECT_THAT(delays, ElementsAre(120, 240, 480, 960, 1920, 3840, 7680, 15360, 21600, 21600, 21600, 21600));
    world.web = {};
    world.time.advance(21600);
    EXPECT_TRUE(world.lastRun().emailSent);
    EXPECT_FALSE(world.lastRun().emailError);
    EXPECT_EQ(world.lastRun().emailAttempts, 13);
    EXPECT_THAT(world.mailSubjects(), SizeIs(14));
}

TEST(Emails, arePassedOverWithoutATraceWhileTheirAccountHasNoCredential) {
    StoreWorld world;
    const AppConfiguration configuration = unsentRuns(world, 2);
    world.write(configuration);
    world.removeCredential(test::anna());
    world.start();
    world.time.advance(600);
    EXPECT_THAT(world.requests, IsEmpty());
    EXPECT_EQ(world.configuration().runs, configuration.runs);
    EXPECT_EQ(world.state().pendingEmails(), 2U);
    world.addCredential(test::anna());
    world.time.advance(30);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
}

TEST(Emails, goByTheSettingsThatTheirRunsBeganWith) {
    StoreWorld world;
    AppConfiguration configuration = unsentRuns(world, 2);
    configuration.runs[0].emailSettings->recipient = "bert@example.org";
    configuration.runs[1].emailSettings.reset();
    configuration.email = test::mailToAnna();
    configuration.email.recipient = "carl@example.org";
    world.startWith(configuration);
    EXPECT_THAT(world.mailRecipients(), ElementsAre("bert@example.org", "carl@example.org"));
}

TEST(Emails, ofSettingsThatAreDisabledWaitInSilence) {
    StoreWorld world;
    AppConfiguration configuration = unsentRuns(world, 1);
    configuration.runs[0].emailSettings->provider = EmailProvider::disabled;
    configuration.email = test::mailToAnna();
    world.startWith(configuration);
    world.time.advance(300);
    EXPECT_THAT(world.requests, IsEmpty());
    EXPECT_EQ(world.configuration().runs, configuration.runs);
}

TEST(Emails, showWhatTheServiceSaid) {
    StoreWorld world;
    world.write(unsentRuns(world, 1));
    world.web = test::answering(403);
    world.start();
    EXPECT_EQ(world.lastRun().emailError,
              "Access was denied. Check account permissions and that the required Google API is enabled.");
}

TEST(Emails, ofARunWaitForAPassThatIsUnderWayAndGoOutWithTheNextTick) {
    StoreWorld world;
    world.write(unsentRuns(world, 1));
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    ASSERT_THAT(world.mailSubjects(), SizeIs(1));
    store.saveEmail(test::mailToAnna());
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_FALSE(*world.state().activeUnitID) << "its own pass did not begin";
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
    web.letGo();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(), SizeIs(1)) << "the list of a pass is fixed";
    world.time.advance(30);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
}

TEST(Emails, ofARunGoOutAtItsEnd) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_TRUE(world.lastRun().emailSent);
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Emails, goOutStrictlyOneAfterTheOther) {
    StoreWorld world;
    world.write(unsentRuns(world, 3));
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    store.tick();
    store.retryEmails();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
    web.letGo();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(), SizeIs(3));
}

TEST(Emails, areTriedAgainAtOnceWhenTheUserAsks) {
    StoreWorld world;
    world.write(unsentRuns(world, 2));
    world.web = test::offline();
    AppStore& store = world.start();
    world.web = {};
    store.retryEmails();
    EXPECT_THAT(secondsToNextAttempt(world), Each(std::nullopt));
    EXPECT_EQ(world.lastRun().emailAttempts, 1);
    EXPECT_EQ(world.lastRun().emailError, "The network is unreachable.");
    EXPECT_EQ(world.written(), world.configuration());
    world.time.settle();
    EXPECT_TRUE(world.lastRun().emailSent);
}

TEST(Emails, areAskedForAgainDuringAPassWithoutASecondOne) {
    StoreWorld world;
    AppConfiguration configuration = unsentRuns(world, 2);
    configuration.runs[1].nextEmailAttempt = world.time.now() + 5000;
    world.write(configuration);
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    store.retryEmails();
    web.letGo();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
    world.time.advance(30);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
}

TEST(Emails, areAskedForAgainAndWrittenDownAlsoWhenNoneWaits) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    const fs::path file = world.data / "Configuration.json";
    fs::remove(file);
    store.retryEmails();
    world.time.settle();
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(world.error(), "");
}

TEST(Emails, holdTheirRunWhileTheNetworkHangsAndLetItGoWhenTheUserCancels) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    configuration.email = test::mailToAnna();
    world.write(configuration);
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(*world.state().activeUnitID, world.unit().id);
    store.run(world.unit(1), 0);
    world.time.settle();
    EXPECT_THAT(world.configuration().runs, SizeIs(1));
    store.cancelBackup();
    world.time.settle();
    EXPECT_FALSE(*world.state().activeUnitID);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.lastRun().emailAttempts, 0) << "a mail that was called off did not fail";
    EXPECT_EQ(world.error(), "");
    web.letGo();
    world.time.advance(30);
    EXPECT_TRUE(world.lastRun().emailSent);
}

TEST(Emails, goOnWhenWhatWasSentCannotBeWrittenDown) {
    StoreWorld world;
    world.write(unsentRuns(world, 2));
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    world.start();
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    web.letGo();
    world.time.settle();
    EXPECT_NE(world.error(), "") << "what was sent could not be written down";
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
    EXPECT_TRUE(world.configuration().runs[1].emailSent);
}

} // namespace marrowbox
