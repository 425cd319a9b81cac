#pragma once

#include "Models/RunRecord.h"
#include "Platform/Formats.h"

namespace marrowbox::test {

/// 2026-11-21 10:01:00 UTC.
inline constexpr Date morning{1795255260.0 - referenceDateSince1970};

/// What the tests' mails are written in: English as in Britain, and no summer time.
inline Formats britishFormats() {
    return Formats("UTC", "en_GB");
}

/// A run that brought something, from the morning on and for 125 seconds.
inline RunRecord successfulRun() {
    return {.id = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF"),
            .unitName = "Family photos",
            .accountEmail = "ada@example.com",
            .destination = "/media/ada/Archive/Marrowbox",
            .startedAt = morning,
            .endedAt = morning + 125,
            .outcome = RunOutcome::succeeded,
            .summary = {.added = 12,
                        .updated = 3,
                        .removed = 1,
                        .unchanged = 4211,
                        .exported = 2,
                        .downloadedBytes = 48'200'000},
            .notify = true};
}

inline RunRecord failedRun() {
    RunRecord run = successfulRun();
    run.outcome = RunOutcome::failed;
    run.summary = {};
    run.detail = "The destination is not connected.";
    return run;
}

} // namespace marrowbox::test
