#include "Models/RunEmailStatus.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using Tone = RunEmailStatus::Tone;

RunEmailStatus statusOf(const RunRecord& run) {
    return RunEmailStatus::of(run, Formats("UTC", "en_GB"));
}

RunRecord finishedRun() {
    return {.outcome = RunOutcome::succeeded, .notify = true};
}

} // namespace

TEST(RunEmailStatus, saysWhenAnEmailWasSent) {
    RunRecord run = finishedRun();
    run.emailSent = true;
    run.emailSentAt = Date{14 * 3600 + 7 * 60};
    EXPECT_EQ(statusOf(run), (RunEmailStatus{"Email summary sent 14:07", "Emailed 14:07", Tone::sent}));
}

TEST(RunEmailStatus, saysThatAnEmailWasSentAtAnUnknownTime) {
    RunRecord run = finishedRun();
    run.emailSent = true;
    EXPECT_EQ(statusOf(run), (RunEmailStatus{"Email summary sent", "Emailed", Tone::sent}));
}

TEST(RunEmailStatus, readsAsSentEvenWithAnErrorAndWithoutNotify) {
    RunRecord run = finishedRun();
    run.emailSent = true;
    run.emailError = "late";
    run.notify = false;
    run.notificationPolicy = NotificationPolicy::off;
    EXPECT_EQ(statusOf(run).tone, Tone::sent);
}

TEST(RunEmailStatus, saysWhyThereIsNoEmail) {
    RunRecord run = finishedRun();
    run.notify = false;
    run.emailError = "not looked at";
    const RunEmailStatus wereOff{"No email — summaries were off", "No email", Tone::off};
    EXPECT_EQ(statusOf(run), wereOff);
    run.notificationPolicy = NotificationPolicy::daily;
    EXPECT_EQ(statusOf(run), wereOff);
    run.notificationPolicy = NotificationPolicy::off;
    EXPECT_EQ(statusOf(run),
              (RunEmailStatus{"No email — summaries are off for this backup", "No email", Tone::off}));
}

TEST(RunEmailStatus, namesTheLastFailure) {
    RunRecord run = finishedRun();
    run.emailError = "The service returned HTTP 500.";
    run.notificationPolicy = NotificationPolicy::daily;
    const RunEmailStatus failed{"Email summary failed: The service returned HTTP 500.", "Email failed",
                                Tone::problem};
    EXPECT_EQ(statusOf(run), failed);
    run.outcome = RunOutcome::running;
    EXPECT_EQ(statusOf(run), failed);
}

TEST(RunEmailStatus, waitsForTheEndOfARunningRun) {
    RunRecord run = finishedRun();
    run.outcome = RunOutcome::running;
    const RunEmailStatus expected{"Email summary sends when this snapshot finishes", "Email pending",
                                  Tone::pending};
    EXPECT_EQ(statusOf(run), expected);
    run.notificationPolicy = NotificationPolicy::daily;
    EXPECT_EQ(statusOf(run), expected);
}

TEST(RunEmailStatus, waitsForTheDailySummary) {
    RunRecord run = finishedRun();
    run.notificationPolicy = NotificationPolicy::daily;
    EXPECT_EQ(statusOf(run),
              (RunEmailStatus{"Waiting for the daily summary", "In the daily summary", Tone::pending}));
}

TEST(RunEmailStatus, isQueuedOtherwiseAlsoWithoutAPolicy) {
    RunRecord run = finishedRun();
    const RunEmailStatus queued{"Email summary queued", "Email queued", Tone::pending};
    EXPECT_EQ(statusOf(run), queued);
    run.notificationPolicy = NotificationPolicy::all;
    run.outcome = RunOutcome::failed;
    EXPECT_EQ(statusOf(run), queued);
}

} // namespace marrowbox
