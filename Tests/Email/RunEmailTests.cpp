#include "Email/EmailMessage.h"
#include "RunBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using test::britishFormats;
using test::failedRun;
using test::morning;
using test::successfulRun;
using testing::HasSubstr;
using testing::Not;

EmailMessage messageOf(const RunRecord& run) {
    return EmailMessage::of(run, britishFormats(), morning + 3'600);
}

} // namespace

TEST(RunEmail, tellsAllAboutASuccess) {
    const EmailMessage message = messageOf(successfulRun());
    EXPECT_EQ(message.subject, "Marrowbox · Snapshot complete · Family photos");
    EXPECT_EQ(message.text, "Your files are backed up.\n"
                            "\n"
                            "Backup: Family photos\n"
                            "Google account: ada@example.com\n"
                            "Destination: /media/ada/Archive/Marrowbox\n"
                            "Started: 21 Nov 2026, 10:01\n"
                            "Duration: 2m 5s\n"
                            "New files: 12\n"
                            "Updated files: 3\n"
                            "Removed from current view: 1\n"
                            "Unchanged files: 4211\n"
                            "Google documents exported: 2\n"
                            "Downloaded: 48.2 MB\n"
                            "\n"
                            "Marrowbox • A little peace of mind.\n");
}

TEST(RunEmail, hasTheFrameTheAccentAndTheIntroInItsHTML) {
    const std::string html = messageOf(successfulRun()).html;
    EXPECT_THAT(html, testing::StartsWith("<!doctype html><html><head><meta charset=\"utf-8\">"));
    EXPECT_THAT(html, HasSubstr("<div style=\"font-size:12px;color:#59754e;letter-spacing:1px\">BACKUP "
                                "COMPLETE</div>\n<h1 style="));
    EXPECT_THAT(html,
                HasSubstr(">A complete view of your files is saved. Earlier versions follow your chosen "
                          "history policy.</p>\n<table role="));
    EXPECT_THAT(html, HasSubstr("width:44%\">Downloaded</td><td style=\"padding:10px 0;color:#292f28;"
                                "font-size:13px;text-align:right;word-break:break-word\">48.2 MB</td></tr>"
                                "</table>\n</td></tr><tr><td style=\"padding:24px 8px;"));
    EXPECT_THAT(html, testing::EndsWith("</td></tr></table>\n</td></tr></table></body></html>"));
}

TEST(RunEmail, namesTheKindOfMachineThatItComesFrom) {
#ifdef __APPLE__
    EXPECT_THAT(messageOf(successfulRun()).html, HasSubstr("Sent by Marrowbox on your Mac.</td>"));
#else
    EXPECT_THAT(messageOf(successfulRun()).html, HasSubstr("Sent by Marrowbox on your computer.</td>"));
#endif
}

TEST(RunEmail, saysWhenNothingHadChanged) {
    RunRecord run = successfulRun();
    run.summary = {.unchanged = 4227, .exported = 2};
    EXPECT_THAT(messageOf(run).text, testing::StartsWith("Everything is up to date.\n\n"));
    run.summary.removed = 1;
    EXPECT_THAT(messageOf(run).text, testing::StartsWith("Your files are backed up.\n\n"));
}

TEST(RunEmail, takesARunWithoutAnEndToHaveLastedUntilNow) {
    RunRecord run = successfulRun();
    run.endedAt.reset();
    EXPECT_THAT(messageOf(run).text, HasSubstr("\nDuration: 60m 0s\n"));
}

TEST(RunEmail, writesDurationsInMinutesAndSeconds) {
    const std::vector<std::pair<double, std::string>> rows = {
        {125, "2m 5s"}, {45, "0m 45s"}, {0, "0m 0s"}, {59.99, "0m 59s"}, {60, "1m 0s"}, {7'384, "123m 4s"}};
    for (const auto& [seconds, text] : rows) {
        RunRecord run = successfulRun();
        run.endedAt = run.startedAt + seconds;
        EXPECT_THAT(messageOf(run).text, HasSubstr("\nDuration: " + text + "\n"));
    }
}

TEST(RunEmail, bearsAnyDatesThatARecordHolds) {
    RunRecord run = successfulRun();
    run.startedAt = Date{-1e300};
    run.endedAt = Date{1e300};
    EXPECT_THAT(messageOf(run).text, HasSubstr("\nDuration: "));
}

TEST(RunEmail, countsMissedSnapshotsBehindTheStart) {
    RunRecord run = successfulRun();
    run.missedRuns = 1;
    EXPECT_THAT(messageOf(run).text,
                HasSubstr("Started: 21 Nov 2026, 10:01\n"
                          "Catch-up: 1 scheduled snapshot missed while asleep or offline\n"
                          "Duration: 2m 5s\nNew files: 12\n"));
    run.missedRuns = 2;
    EXPECT_THAT(messageOf(run).text,
                HasSubstr("\nCatch-up: 2 scheduled snapshots missed while asleep or offline\n"));
}

TEST(RunEmail, asksForAttentionWithFiveRowsWhenARunFailed) {
    const EmailMessage message = messageOf(failedRun());
    EXPECT_EQ(message.subject, "Marrowbox · Snapshot failed · Family photos");
    EXPECT_EQ(message.text, "This snapshot needs attention.\n"
                            "\n"
                            "Backup: Family photos\n"
                            "Google account: ada@example.com\n"
                            "Destination: /media/ada/Archive/Marrowbox\n"
                            "Started: 21 Nov 2026, 10:01\n"
                            "Duration: 2m 5s\n"
                            "\n"
                            "The destination is not connected.\n"
                            "\n"
                            "Marrowbox • A little peace of mind.\n");
    EXPECT_THAT(message.html, HasSubstr("color:#9d6134;letter-spacing:1px\">ATTENTION NEEDED</div>"));
    EXPECT_THAT(message.html, HasSubstr(">Open Marrowbox to resolve the issue. Your previously completed "
                                        "snapshots are still available.</p>"));
    EXPECT_THAT(message.html,
                HasSubstr("</table><div style=\"margin-top:24px;padding:18px;background:#f4eee4;"
                          "border-radius:12px;font-size:14px;line-height:1.6;color:#5c4e37\">The "
                          "destination is not connected.</div>\n</td></tr>"));
}

TEST(RunEmail, dropsTheDurationWhenAFailureCaughtUp) {
    RunRecord run = failedRun();
    run.missedRuns = 3;
    const std::string text = messageOf(run).text;
    EXPECT_THAT(text, HasSubstr("\nCatch-up: 3 scheduled snapshots missed while asleep or offline\n\n"));
    EXPECT_THAT(text, Not(HasSubstr("Duration")));
}

TEST(RunEmail, asksForAttentionForEveryOutcomeButSuccess) {
    for (const auto& [outcome, name] :
         {std::pair{RunOutcome::cancelled, "cancelled"}, std::pair{RunOutcome::interrupted, "interrupted"},
          std::pair{RunOutcome::running, "running"}}) {
        RunRecord run = successfulRun();
        run.outcome = outcome;
        const EmailMessage message = messageOf(run);
        EXPECT_EQ(message.subject, std::string("Marrowbox · Snapshot ") + name + " · Family photos");
        EXPECT_THAT(message.html, HasSubstr(">ATTENTION NEEDED</div>"));
        EXPECT_THAT(message.text, Not(HasSubstr("New files")));
    }
}

TEST(RunEmail, escapesWhatItShowsInHTMLAlone) {
    RunRecord run = successfulRun();
    run.unitName = "Ada's \"files\"";
    run.destination = "/media/<b>&amp;";
    const EmailMessage message = messageOf(run);
    EXPECT_THAT(message.html, HasSubstr(">Ada&#39;s &quot;files&quot;</td>"));
    EXPECT_THAT(message.html, HasSubstr(">/media/&lt;b&gt;&amp;amp;</td>"));
    EXPECT_THAT(message.text, HasSubstr("\nBackup: Ada's \"files\"\n"));
    EXPECT_THAT(message.text, HasSubstr("\nDestination: /media/<b>&amp;\n"));
    EXPECT_EQ(message.subject, "Marrowbox · Snapshot complete · Ada's \"files\"");
}

TEST(RunEmail, breaksTheLinesOfADetailInHTML) {
    RunRecord run = failedRun();
    run.detail = "One <line>.\nAnd another.";
    const EmailMessage message = messageOf(run);
    EXPECT_THAT(message.html, HasSubstr(">One &lt;line&gt;.<br>And another.</div>"));
    EXPECT_THAT(message.text, HasSubstr("\n\nOne <line>.\nAnd another.\n\n"));
}

TEST(RunEmail, showsTheDetailOfASuccessToo) {
    RunRecord run = successfulRun();
    run.detail = "2 files were renamed.";
    EXPECT_THAT(messageOf(run).text,
                HasSubstr("\nDownloaded: 48.2 MB\n\n2 files were renamed.\n\nMarrowbox •"));
}

} // namespace marrowbox
