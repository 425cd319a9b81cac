#include "Marrowbox/AppStore/AppStore.h"

#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"
#include "Platform/HeldFlag.h"

#include <boost/asio/co_spawn.hpp>
#include <fcntl.h>

namespace marrowbox {

namespace {

/// Runs work on the store to its end, with the store alive throughout.
asio::awaitable<void> keeping(std::shared_ptr<AppStore> store, asio::awaitable<void> work) {
    co_await std::move(work);
}

GoogleSignIn::Surroundings signInSurroundings(const AppSurroundings& around) {
    Desktop& desktop = around.desktop;
    return {.executor = around.main,
            .http = around.http,
            .clock = around.clock,
            .wait = around.wait,
            .openBrowser = [&desktop](const std::string& address) { return desktop.openPage(address); }};
}

} // namespace

std::shared_ptr<AppStore> AppStore::start(AppSurroundings surroundings) {
    const auto store = std::make_shared<AppStore>(Start{}, std::move(surroundings));
    store->bringUp();
    return store;
}

AppStore::AppStore(Start, AppSurroundings surroundings)
    : around_(std::move(surroundings)), dataDirectory_(marrowbox::dataDirectory(around_.environment)),
      credentials_(credentialDirectory(around_.environment)), engine_(around_.pool, around_.clock),
      mounts_(around_.pool, dataDirectory_ / "MountedSnapshots", around_.mountMachine),
      googleSignIn_(signInSurroundings(around_)) {
}

void AppStore::dismissError() {
    state_.errorMessage.set(std::nullopt);
}

void AppStore::showSettings(bool shown) {
    state_.showSettings.set(shown);
}

void AppStore::showSettingsTab(int tab) {
    state_.settingsTab.set(tab);
}

void AppStore::showNewUnit(bool shown) {
    state_.showNewUnit.set(shown);
}

void AppStore::requireWritable() const {
    if (!configurationIsReadable_)
        throw BackupError(
            "Configuration could not be loaded. It has been preserved; automatic backups are paused.");
}

void AppStore::persist() {
    requireWritable();
    const fs::path file = dataDirectory_ / "Configuration.json";
    // Who lets go of a file that has lost its name waits until the file system has freed what it held, longer
    // than the writing takes. While it is open here that is not the rename, but the close on the pool.
    Descriptor replaced(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    JSONFile::writeDurably(*state_.configuration, file);
    letGoOn(around_.pool, std::move(replaced));
    synchronizeNames();
}

void AppStore::synchronizeNames() {
    if (std::exchange(isSynchronizing_, true))
        synchronizesAgain_ = true;
    else
        spawn(waitForTheDisk());
}

asio::awaitable<void> AppStore::waitForTheDisk() {
    // Until the disk has the new name, a power cut brings the old file back, whole. That may wait for the
    // pool; the content may not, since a name without content would be all that is left.
    const HeldFlag synchronizing(isSynchronizing_);
    do {
        synchronizesAgain_ = false;
        co_await onExecutor(around_.pool, [folder = dataDirectory_] { synchronizeFolder(folder); });
    } while (synchronizesAgain_);
}

void AppStore::persistOrReport() {
    try {
        persist();
    } catch (const std::exception& failure) {
        report(failure);
    }
}

void AppStore::report(const std::exception& failure) {
    state_.errorMessage.set(words(failure));
}

void AppStore::spawn(asio::awaitable<void> work) {
    asio::co_spawn(around_.main, keeping(shared_from_this(), std::move(work)),
                   [weak = weak_from_this()](std::exception_ptr thrown) {
                       const auto store = weak.lock();
                       if (!thrown || !store)
                           return;
                       try {
                           std::rethrow_exception(thrown);
                       } catch (const CancellationError&) { // whoever cancelled knows
                       } catch (const std::exception& failure) {
                           store->report(failure);
                       }
                   });
}

void AppStore::spawnWeakly(asio::awaitable<void> work) {
    asio::co_spawn(around_.main, std::move(work), [](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const CancellationError&) { // a wait that was cancelled has nothing left to do
        }
    });
}

} // namespace marrowbox
