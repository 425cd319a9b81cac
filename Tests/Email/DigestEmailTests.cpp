#include "Email/EmailMessage.h"
#include "RunBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using test::failedRun;
using test::morning;
using test::successfulRun;
using testing::HasSubstr;
using testing::Not;

RunRecord later(RunRecord run, int hours) {
    run.startedAt = morning + hours * 3'600.0;
    return run;
}

EmailMessage digestOf(std::vector<RunRecord> runs) {
    return EmailMessage::digest(std::move(runs), "Family photos", test::britishFormats());
}

} // namespace

TEST(DigestEmail, sumsUpRunsInTheOrderOfTheirStart) {
    RunRecord second = later(successfulRun(), 2);
    second.summary = {.added = 1, .updated = 1, .removed = 9, .downloadedBytes = 1'800'000};
    const EmailMessage message = digestOf({second, successfulRun()});
    EXPECT_EQ(message.subject, "Marrowbox · Daily summary · Family photos");
    EXPECT_EQ(message.text, "Your files are backed up.\n"
                            "\n"
                            "Backup: Family photos\n"
                            "Snapshots in this summary: 2\n"
                            "Period: 21 Nov 2026, 10:01 – 21 Nov 2026, 12:01\n"
                            "Succeeded: 2\n"
                            "Needed attention: 0\n"
                            "New files: 13\n"
                            "Updated files: 4\n"
                            "Downloaded: 50 MB\n"
                            "\n"
                            "Marrowbox • A little peace of mind.\n");
    EXPECT_THAT(message.html, HasSubstr("color:#59754e;letter-spacing:1px\">DAILY SUMMARY</div>"));
    EXPECT_THAT(message.html, HasSubstr(">Every snapshot of this backup since the last summary.</p>"));
}

TEST(DigestEmail, listsTheRunsThatNeededAttention) {
    RunRecord cancelled = later(failedRun(), 2);
    cancelled.outcome = RunOutcome::cancelled;
    cancelled.detail.reset();
    const EmailMessage message = digestOf({cancelled, later(successfulRun(), 1), failedRun()});
    EXPECT_THAT(message.text, testing::StartsWith("2 snapshots needed attention.\n\n"));
    EXPECT_THAT(message.text, HasSubstr("\nSucceeded: 1\nNeeded attention: 2\nNew files: 12\n"));
    EXPECT_THAT(message.text, HasSubstr("\n\n21 Nov 2026, 10:01 · failed: The destination is not connected.\n"
                                        "21 Nov 2026, 12:01 · cancelled\n\nMarrowbox •"));
    EXPECT_THAT(message.html, HasSubstr("color:#9d6134;letter-spacing:1px\">ATTENTION NEEDED</div>"));
    EXPECT_THAT(message.html, HasSubstr("connected.<br>21 Nov 2026, 12:01 · cancelled</div>"));
    EXPECT_EQ(message.subject, "Marrowbox · Daily summary · Family photos");
}

TEST(DigestEmail, speaksOfOneSnapshotInTheSingular) {
    EXPECT_THAT(digestOf({failedRun()}).text, testing::StartsWith("1 snapshot needed attention.\n\n"));
}

TEST(DigestEmail, saysWhenNothingWasAddedOrUpdated) {
    RunRecord run = successfulRun();
    run.summary = {.removed = 5, .unchanged = 7};
    EXPECT_THAT(digestOf({run}).text, testing::StartsWith("Everything stayed up to date.\n\n"));
}

TEST(DigestEmail, sumsTheMissedSnapshotsOfThoseThatHaveAny) {
    RunRecord run = successfulRun();
    run.missedRuns = 1;
    EXPECT_THAT(digestOf({run, later(successfulRun(), 1)}).text,
                HasSubstr("\nDownloaded: 96.4 MB\nCatch-up: 1 scheduled snapshot missed while asleep or "
                          "offline\n\n"));
    EXPECT_THAT(digestOf({run, later(run, 1)}).text,
                HasSubstr("\nCatch-up: 2 scheduled snapshots missed while asleep or offline\n"));
    run.missedRuns = 0;
    EXPECT_THAT(digestOf({run}).text, Not(HasSubstr("Catch-up")));
}

TEST(DigestEmail, ofNoRunsHasZeroCountsAndNoPeriod) {
    EXPECT_EQ(digestOf({}).text, "Everything stayed up to date.\n"
                                 "\n"
                                 "Backup: Family photos\n"
                                 "Snapshots in this summary: 0\n"
                                 "Succeeded: 0\n"
                                 "Needed attention: 0\n"
                                 "New files: 0\n"
                                 "Updated files: 0\n"
                                 "Downloaded: 0 bytes\n"
                                 "\n"
                                 "Marrowbox • A little peace of mind.\n");
}

} // namespace marrowbox
