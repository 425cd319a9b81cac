#include "EngineRun.h"
#include "Models/BackupError.h"
#include "Models/JSONType.h"
#include "Platform/Cancellation.h"
#include "Repository/LockBusyError.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string changed =
    "Google Drive changed while this snapshot was being made. Nothing was published; try "
    "again to capture a consistent folder listing.";

/// A run of forty files, which takes two batches.
void putFortyFiles(EngineRun& run) {
    for (int number = 10; number < 50; ++number)
        run.source->put(std::to_string(number), "content " + std::to_string(number));
}

bool isStored(const EngineRun& run, int number) {
    return fs::exists(run.repository.object("content " + std::to_string(number)));
}

/// Expects that a run is cancelled, that nothing was published and that the next run succeeds.
void expectCancelled(EngineRun& run) {
    EXPECT_THROW(run(), CancellationError);
    EXPECT_TRUE(fs::is_empty(run.repository / "Snapshots"));
    EXPECT_TRUE(fs::is_empty(run.repository / "Staging"));
    run.stop = std::stop_source();
    run.onProgress = nullptr;
    run.source->beforeInventory = nullptr;
    run.source->afterDownload = nullptr;
    EXPECT_NO_THROW(run());
}

} // namespace

TEST(RunFailure, doesNotAskTheSourceWhenTheRepositoryIsNotTheUnits) {
    EngineRun run;
    fs::remove(run.repository / "Repository.json");
    EXPECT_EQ(thrown<BackupError>([&] { run(); }), identityRefusal);
    EXPECT_EQ(run.source->inventories, 0);
    EXPECT_TRUE(run.progress.empty());
    EXPECT_FALSE(fs::exists(run.repository / ".lock"));
}

TEST(RunFailure, doesNotMakeARepositoryThatIsNotThere) {
    EngineRun run;
    fs::remove_all(run.repository.destination() / "Marrowbox");
    EXPECT_EQ(thrown<BackupError>([&] { run(); }), identityRefusal);
    EXPECT_TRUE(fs::is_empty(run.repository.destination()));
}

TEST(RunFailure, isBusyWhileAnotherJobHoldsTheLock) {
    EngineRun run;
    {
        const RepositoryLock lock = run.repository->lock();
        EXPECT_EQ(thrown<LockBusyError>([&] { run(); }), busyRefusal);
        EXPECT_EQ(run.source->inventories, 0);
        EXPECT_TRUE(run.progress.empty());
    }
    EXPECT_NO_THROW(run());
}

TEST(RunFailure, passesOnWhatTheListingThrows) {
    EngineRun run;
    run.source->beforeInventory = [](int, const fs::path&) {
        throw std::range_error("the source's own words");
    };
    EXPECT_EQ(thrown<std::range_error>([&] { run(); }), "the source's own words");
    EXPECT_NO_THROW(RepositoryLock(run.repository / ".lock", "busy"));
}

TEST(RunFailure, refusesAnUnsafeListingBeforeItReadsTheHistory) {
    EngineRun run;
    writeFile(run.repository / "Snapshots/stray.json", "{");
    run.source->put("a/../b", "content");
    EXPECT_EQ(run.refusal(), "Unsafe path in backup: a/../b");
    EXPECT_TRUE(run.source->batches.empty());
}

TEST(RunFailure, isStoppedByAnyBadManifestBeforeItDownloads) {
    EngineRun run;
    run.source->put("a", "content");
    run();
    run.source->put("b", "other");
    writeFile(run.repository / "Snapshots/stray.json", "{");
    EXPECT_THROW(run(), JSONDecodingError);
    EXPECT_EQ(run.source->batches.size(), 1u);
}

TEST(RunFailure, isStoppedByALinkAtAReusedObject) {
    EngineRun run;
    run.source->put("a", "content");
    run();
    const fs::path object = run.repository.object("content");
    fs::rename(object, run.repository / "moved");
    fs::create_symlink(run.repository / "moved", object);
    EXPECT_EQ(run.refusal(), linkRefusal);
}

TEST(RunFailure, keepsTheObjectsOfEarlierBatchesWhenADownloadFails) {
    EngineRun run;
    putFortyFiles(run);
    run.source->afterDownload = [](int batch, const fs::path&) {
        if (batch == 2)
            throw BackupError("The download failed.");
    };
    EXPECT_EQ(run.refusal(), "The download failed.");
    EXPECT_TRUE(isStored(run, 41));
    EXPECT_FALSE(isStored(run, 42));
}

TEST(RunFailure, refusesAListingThatLiesAboutASize) {
    EngineRun run;
    putFortyFiles(run);
    run.source->item("20").size = 1;
    EXPECT_EQ(run.refusal(), "Size verification failed for “20”.");
    EXPECT_TRUE(isStored(run, 19));
    EXPECT_FALSE(isStored(run, 21));
}

TEST(RunFailure, refusesAListingThatLiesAboutADigest) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->item("a").md5 = std::string(32, 'f');
    EXPECT_EQ(run.refusal(), "Checksum verification failed for “a”.");
}

TEST(RunFailure, refusesBytesThatWereCutOffOrAltered) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->deliver("a", "conten");
    EXPECT_EQ(run.refusal(), "Size verification failed for “a”.");
    run.source->deliver("a", "CONTENT");
    EXPECT_EQ(run.refusal(), "Checksum verification failed for “a”.");
}

TEST(RunFailure, isStoppedByADownloadThatNeverArrived) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->afterDownload = [](int, const fs::path& folder) { fs::remove(folder / "a"); };
    EXPECT_THROW(run(), std::system_error);
    EXPECT_TRUE(fs::is_empty(run.repository / "Snapshots"));
    EXPECT_TRUE(fs::is_empty(run.repository / "Staging"));
}

TEST(RunFailure, doesNotMendADamagedObject) {
    EngineRun run;
    run.source->put("a", "content");
    run();
    fs::resize_file(run.repository.object("content"), 3);
    EXPECT_EQ(run.refusal(), "An existing backup object is damaged. No snapshot was published.");
}

TEST(RunFailure, publishesNothingWhenTheSourceChangedMeanwhile) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call == 2)
            run.source->item("a").version = "2";
    };
    EXPECT_EQ(run.refusal(), changed) << "the version alone";
    EXPECT_TRUE(fs::exists(run.repository.object("content"))) << "for the next run";
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call == 4)
            run.source->put("b", "new");
    };
    EXPECT_EQ(run.refusal(), changed) << "one more";
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call == 6)
            run.source->remove("a");
    };
    EXPECT_EQ(run.refusal(), changed) << "one less";
}

TEST(RunFailure, publishesNothingWhenAnObjectWentAwayMeanwhile) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call == 2)
            fs::remove(run.repository.object("content"));
    };
    EXPECT_EQ(run.refusal(), "A backup file is missing. The snapshot was not published.");
}

TEST(RunFailure, publishesNothingWhenALinkWasPlantedMeanwhile) {
    EngineRun run;
    run.source->put("a", "content");
    const fs::path snapshots = run.repository / "Snapshots";
    const fs::path elsewhere = run.repository.destination() / "elsewhere";
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call != 2)
            return;
        fs::rename(snapshots, elsewhere);
        fs::create_directory_symlink(elsewhere, snapshots);
    };
    EXPECT_EQ(thrown<BackupError>([&] { run(); }), linkRefusal);
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST(RunFailure, passesOnWhatTheProgressThrows) {
    EngineRun run;
    run.onProgress = [](const std::string& text) {
        if (text == "Verifying the backup…")
            throw BackupError("No more progress.");
    };
    EXPECT_EQ(run.refusal(), "No more progress.");
}

TEST(RunFailure, isCancelledBeforeABatch) {
    EngineRun run;
    putFortyFiles(run);
    run.source->beforeInventory = [&](int, const fs::path&) { run.stop.request_stop(); };
    expectCancelled(run);
    EXPECT_EQ(run.source->batches.size(), 2u) << "none in the cancelled run";
}

TEST(RunFailure, isCancelledInsideTheSource) {
    EngineRun run;
    run.source->put("a", "content");
    run.onProgress = [&](const std::string& text) {
        if (text.starts_with("Downloading"))
            run.stop.request_stop();
    };
    expectCancelled(run);
}

TEST(RunFailure, isCancelledWhileFilesAreImported) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->afterDownload = [&](int, const fs::path&) { run.stop.request_stop(); };
    expectCancelled(run);
}

TEST(RunFailure, isCancelledAfterTheLastListing) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->beforeInventory = [&](int call, const fs::path&) {
        if (call == 2)
            run.stop.request_stop();
    };
    expectCancelled(run);
}

} // namespace marrowbox
