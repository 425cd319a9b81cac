#include "Email/EmailMessage.h"

#include "Email/EmailTemplate.h"
#include "Models/EmailAddress.h"
#include "Models/JSONRules.h"

#include <algorithm>
#include <utility>

namespace marrowbox {

namespace {

/// "1 snapshot", "2 snapshots".
std::string counted(std::int64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string catchUp(std::int64_t missed) {
    return counted(missed, "scheduled snapshot") + " missed while asleep or offline";
}

/// Whole minutes and seconds. Bounded, since a record may hold any two dates.
std::string duration(double seconds) {
    constexpr double longest = 1e15;
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, -longest, longest));
    return std::to_string(whole / 60) + "m " + std::to_string(whole % 60) + "s";
}

std::vector<EmailRow> rowsOf(const RunRecord& run, const Formats& formats, Date now) {
    const RunSummary& summary = run.summary;
    std::vector<EmailRow> rows = {
        {"Backup", run.unitName},
        {"Google account", run.accountEmail},
        {"Destination", run.destination},
        {"Started", formats.dateAndTime(run.startedAt)},
        {"Duration", duration(run.endedAt.value_or(now) - run.startedAt)},
        {"New files", std::to_string(summary.added)},
        {"Updated files", std::to_string(summary.updated)},
        {"Removed from current view", std::to_string(summary.removed)},
        {"Unchanged files", std::to_string(summary.unchanged)},
        {"Google documents exported", std::to_string(summary.exported)},
        {"Downloaded", formats.byteCount(summary.downloadedBytes)},
    };
    if (run.missedRuns)
        rows.insert(rows.begin() + 4, {"Catch-up", catchUp(*run.missedRuns)});
    return rows;
}

EmailTemplate successTemplate(const RunRecord& run, std::vector<EmailRow> rows) {
    return {.eyebrow = "BACKUP COMPLETE",
            .title = run.summary.changed() != 0 ? "Your files are backed up." : "Everything is up to date.",
            .intro = "A complete view of your files is saved. Earlier versions follow your chosen history "
                     "policy.",
            .rows = std::move(rows),
            .detail = run.detail,
            .success = true};
}

EmailTemplate attentionTemplate(const RunRecord& run, std::vector<EmailRow> rows) {
    constexpr std::size_t worthShowing = 5; // the counts say nothing about a run that did not finish
    rows.resize(worthShowing);
    return {.eyebrow = "ATTENTION NEEDED",
            .title = "This snapshot needs attention.",
            .intro = "Open Marrowbox to resolve the issue. Your previously completed snapshots are still "
                     "available.",
            .rows = std::move(rows),
            .detail = run.detail};
}

/// What several runs come to.
struct DigestTotals {
    std::int64_t succeeded = 0;
    std::int64_t failed = 0;
    std::int64_t added = 0;
    std::int64_t updated = 0;
    std::int64_t downloadedBytes = 0;
    std::int64_t missedRuns = 0;
};

DigestTotals totalsOf(const std::vector<RunRecord>& runs) {
    DigestTotals totals;
    for (const RunRecord& run : runs) {
        ++(run.outcome == RunOutcome::succeeded ? totals.succeeded : totals.failed);
        totals.added += run.summary.added;
        totals.updated += run.summary.updated;
        totals.downloadedBytes += run.summary.downloadedBytes;
        totals.missedRuns += run.missedRuns.value_or(0);
    }
    return totals;
}

std::vector<EmailRow> digestRows(const std::vector<RunRecord>& sorted, const DigestTotals& totals,
                                 const std::string& unitName, const Formats& formats) {
    std::vector<EmailRow> rows = {{"Backup", unitName},
                                  {"Snapshots in this summary", std::to_string(sorted.size())}};
    if (!sorted.empty())
        rows.push_back({"Period", formats.dateAndTime(sorted.front().startedAt) + " – " +
                                      formats.dateAndTime(sorted.back().startedAt)});
    rows.push_back({"Succeeded", std::to_string(totals.succeeded)});
    rows.push_back({"Needed attention", std::to_string(totals.failed)});
    rows.push_back({"New files", std::to_string(totals.added)});
    rows.push_back({"Updated files", std::to_string(totals.updated)});
    rows.push_back({"Downloaded", formats.byteCount(totals.downloadedBytes)});
    if (totals.missedRuns >= 1)
        rows.push_back({"Catch-up", catchUp(totals.missedRuns)});
    return rows;
}

/// One line a run that did not succeed; absent when all did.
std::optional<std::string> failureLines(const std::vector<RunRecord>& sorted, const Formats& formats) {
    std::optional<std::string> lines;
    for (const RunRecord& run : sorted) {
        if (run.outcome == RunOutcome::succeeded)
            continue;
        lines = lines ? *lines + "\n" : "";
        *lines += formats.dateAndTime(run.startedAt) + " · " + std::string(enumerationName(run.outcome));
        if (run.detail)
            *lines += ": " + *run.detail;
    }
    return lines;
}

std::string digestTitle(const DigestTotals& totals) {
    if (totals.failed > 0)
        return counted(totals.failed, "snapshot") + " needed attention.";
    return totals.added + totals.updated != 0 ? "Your files are backed up." : "Everything stayed up to date.";
}

EmailMessage composed(std::string subject, const EmailTemplate& content) {
    return {.subject = std::move(subject), .text = content.text(), .html = content.html()};
}

} // namespace

EmailMessage EmailMessage::of(const RunRecord& run, const Formats& formats, Date now) {
    const bool success = run.outcome == RunOutcome::succeeded;
    const std::string outcome(success ? "complete" : enumerationName(run.outcome));
    std::vector<EmailRow> rows = rowsOf(run, formats, now);
    return composed("Marrowbox · Snapshot " + outcome + " · " + run.unitName,
                    success ? successTemplate(run, std::move(rows))
                            : attentionTemplate(run, std::move(rows)));
}

EmailMessage EmailMessage::digest(std::vector<RunRecord> runs, const std::string& unitName,
                                  const Formats& formats) {
    std::ranges::sort(runs, {}, [](const RunRecord& run) { return std::pair(run.startedAt, run.id); });
    const DigestTotals totals = totalsOf(runs);
    return composed("Marrowbox · Daily summary · " + unitName,
                    {.eyebrow = totals.failed > 0 ? "ATTENTION NEEDED" : "DAILY SUMMARY",
                     .title = digestTitle(totals),
                     .intro = "Every snapshot of this backup since the last summary.",
                     .rows = digestRows(runs, totals, unitName, formats),
                     .detail = failureLines(runs, formats),
                     .success = totals.failed == 0});
}

std::string EmailMessage::escape(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char byte : text) {
        switch (byte) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += byte;
        }
    }
    return escaped;
}

bool EmailMessage::validAddress(std::string_view text) {
    return isEmailAddress(text);
}

} // namespace marrowbox
