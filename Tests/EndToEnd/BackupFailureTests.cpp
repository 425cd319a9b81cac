#include "GoogleBackup.h"
#include "Platform/Cancellation.h"
#include "Sandbox/Fault.h"
#include "Sandbox/RequestMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace sandbox;
using test::GoogleBackup;

constexpr auto batchFailed = "rclone could not download this batch (exit 1). Check connectivity, download "
                             "permissions, and Google export limits. Earlier backups are safe.";

/// A backup of three files that has run once, with the second file changed since.
struct ChangedBackup : testing::Test {
    ChangedBackup() {
        backup.drive.addFile(backup.folder, "first", "one");
        changed = backup.drive.addFile(backup.folder, "second", "two");
        backup.drive.addFile(backup.folder, "third", "three");
        backup.run();
        backup.drive.replaceContent(changed, Content::pattern(1, 200'000));
    }

    /// Runs with the faults that are injected.
    void expectRunSucceeds() {
        const auto snapshot = backup.run();
        backup.expectHolds(snapshot, {"first", "second", "third"});
        EXPECT_EQ(snapshot.summary, (RunSummary{0, 1, 0, 2, 0, 200'000}));
        backup.expectSettled(2);
    }

    /// Proves that nothing of a failed run stands in the way of the next one.
    void expectNextRunSucceeds() {
        backup.sandbox.clearFaults();
        expectRunSucceeds();
    }

    GoogleBackup backup;
    std::string changed;
};

TEST_F(ChangedBackup, endsWhenTheDownloadIsRefused) {
    backup.sandbox.inject(Fault::on(media(changed)).refuseDownload().always());
    EXPECT_EQ(backup.refusal(), batchFailed);
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, endsBeforeDownloadingWhenTheListingForbidsIt) {
    backup.drive.update(changed, [](DriveItem& item) { item.canDownload = false; });
    EXPECT_EQ(backup.refusal(),
              "Google does not permit downloading “second”. Ask its owner to allow downloads.");
    EXPECT_EQ(backup.rcloneCalls(), 1U); // of the first run
}

TEST_F(ChangedBackup, endsWhenTheBodyIsCorrupted) {
    backup.sandbox.inject(Fault::on(media(changed)).flipByte(100'000).always());
    EXPECT_EQ(backup.refusal(), batchFailed);
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, endsWhenTheBodyIsShort) {
    backup.sandbox.inject(Fault::on(media(changed)).shortenBodyTo(150'000).always());
    EXPECT_EQ(backup.refusal(), batchFailed);
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, endsWhenTheAccountLosesItsAccessInMidRun) {
    backup.sandbox.inject(
        Fault::on(metadata(changed)).run([this] { backup.sandbox.identity().revokeEverything(); }));
    EXPECT_EQ(backup.refusal(), batchFailed);
    backup.connect(std::chrono::hours(1));
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, goesOnAfterOneBrokenConnection) {
    backup.sandbox.inject(Fault::on(media(changed)).cutAfterBodyBytes(100'000));
    expectRunSucceeds();
    EXPECT_EQ(backup.sandbox.requests().count(media(changed)),
              3U); // the first run's, the broken one, the whole
}

TEST_F(ChangedBackup, goesOnWhenTheServiceIsBusyForAWhile) {
    backup.sandbox.inject(Fault::on(media(changed)).answer(429).reason("rateLimitExceeded"));
    backup.sandbox.inject(Fault::on(metadata(changed)).answer(503));
    expectRunSucceeds();
    EXPECT_EQ(backup.sandbox.requests().count(media(changed)), 3U);
    EXPECT_EQ(backup.sandbox.requests().count(metadata(changed)), 3U);
}

TEST_F(ChangedBackup, publishesNothingWhenTheSourceChangesInMidRun) {
    backup.sandbox.inject(Fault::on(listing(backup.folder)).nth(2).run([this] {
        backup.drive.replaceContent(changed, "changed once more");
    }));
    EXPECT_EQ(backup.refusal(),
              "Google Drive changed while this snapshot was being made. Nothing was published; "
              "try again to capture a consistent folder listing.");
    const auto snapshot = backup.run();
    backup.expectHolds(snapshot, {"first", "second", "third"});
    backup.expectSettled(2);
}

TEST_F(ChangedBackup, endsRcloneAndLeavesNothingWhenCancelledWhileItDownloads) {
    backup.sandbox.inject(Fault::on(media(changed)).stallAfterBodyBytes(100'000));
    backup.sandbox.requests().clear();
    std::stop_source stop;
    auto run = backup.start(stop.get_token());
    ASSERT_TRUE(backup.sandbox.requests().waitFor(media(changed), 1));
    stop.request_stop();
    EXPECT_THROW(run.get(), CancellationError);
    backup.expectSettled(1);
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, leavesNothingWhenCancelledWhileItLists) {
    backup.sandbox.inject(Fault::on(listing(backup.folder)).stallAfterBodyBytes(10));
    backup.sandbox.requests().clear();
    std::stop_source stop;
    auto run = backup.start(stop.get_token());
    ASSERT_TRUE(backup.sandbox.requests().waitFor(listing(backup.folder), 1));
    stop.request_stop();
    EXPECT_THROW(run.get(), CancellationError);
    backup.expectSettled(1);
    expectNextRunSucceeds();
}

TEST_F(ChangedBackup, keepsTheFirstBatchesObjectsWhenALaterOneFails) {
    std::vector<std::string> paths{"first", "second", "third"};
    std::string last;
    for (int number = 10; number < 50; ++number) {
        paths.push_back("z" + std::to_string(number));
        last = backup.drive.addFile(backup.folder, paths.back(), "content of " + paths.back());
    }
    backup.sandbox.inject(Fault::on(media(last)).refuseDownload().always());
    EXPECT_EQ(backup.refusal(), batchFailed);
    backup.sandbox.clearFaults();
    backup.expectHolds(backup.run(), paths);
    backup.expectSettled(2);
}

} // namespace

} // namespace marrowbox
