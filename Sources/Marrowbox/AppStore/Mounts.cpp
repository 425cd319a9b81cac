#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Platform/Cancellation.h"
#include "Platform/HeldFlag.h"

#include <algorithm>

namespace marrowbox {

namespace {

constexpr std::chrono::duration<double> reconcileDebounce{0.35};
constexpr std::chrono::duration<double> ejectSettlingTime{0.7};

using MountedByID = std::map<Uuid, SnapshotMount::Mounted>;

void add(MountedByID& known, const std::vector<SnapshotMount::Mounted>& found) {
    for (const SnapshotMount::Mounted& mounted : found)
        known.insert_or_assign(mounted.id, mounted);
}

} // namespace

void AppStore::explore(const Snapshot& snapshot) {
    const SyncUnit* const unit = state_.selectedUnit();
    if (!unit || *state_.isExploring)
        return;
    if (state_.mounted->contains(snapshot.id))
        return openMounted(snapshot.id);
    state_.isExploring.set(true);
    exploreTask_.emplace();
    spawn(mount(snapshot, *unit, exploreTask_->get_token()));
}

void AppStore::cancelExploring() {
    if (exploreTask_)
        exploreTask_->request_stop();
}

asio::awaitable<void> AppStore::mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop) {
    try {
        const fs::path folder = co_await destination(unit);
        const SnapshotMount::Mounted mounted =
            co_await mounts_.mount(std::move(snapshot), std::move(unit), folder, std::move(stop));
        state_.mounted.change([&](MountedByID& known) { known.insert_or_assign(mounted.id, mounted); });
        publishMountResult(std::nullopt);
        around_.desktop.openFolder(mounted.volume);
    } catch (const CancellationError&) { // the user who cancels needs no message
    } catch (const std::exception& failure) {
        publishMountResult(words(failure));
    }
    scheduleMountReconcile();
    exploreTask_.reset();
    state_.isExploring.set(false);
}

void AppStore::publishMountResult(std::optional<std::string> issue) {
    operationMountIssue_ = issue;
    state_.mountIssue.set(std::move(issue));
}

void AppStore::openMounted(const Uuid& id) {
    spawn(openValidated(id));
}

asio::awaitable<void> AppStore::openValidated(Uuid id) {
    const auto valid = co_await mounts_.validatedMounted(id, {});
    if (valid) {
        state_.mounted.change([&](MountedByID& known) { known.insert_or_assign(id, *valid); });
        around_.desktop.openFolder(valid->volume);
        co_return;
    }
    const SnapshotMount::Reconciliation found = co_await mounts_.reconcile({});
    const auto here = std::ranges::find(found.mounted, id, &SnapshotMount::Mounted::id);
    if (found.isAuthoritative)
        take(found);
    else if (here != found.mounted.end())
        state_.mounted.change([&](MountedByID& known) { known.insert_or_assign(id, *here); });
    if (here != found.mounted.end())
        around_.desktop.openFolder(here->volume);
    if (found.issue)
        state_.mountIssue.set(found.issue);
}

void AppStore::take(const SnapshotMount::Reconciliation& found) {
    state_.mounted.change([&](MountedByID& known) {
        // A partial answer proves nothing about what it does not name.
        if (found.isAuthoritative)
            known.clear();
        add(known, found.mounted);
    });
}

void AppStore::eject(const Uuid& id) {
    const auto known = state_.mounted->find(id);
    if (known != state_.mounted->end())
        spawn(unmount(known->second));
}

asio::awaitable<void> AppStore::unmount(SnapshotMount::Mounted mounted) {
    try {
        co_await mounts_.unmount(mounted, {});
        state_.mounted.change([&](MountedByID& known) { known.erase(mounted.id); });
        publishMountResult(std::nullopt);
    } catch (const std::exception& failure) {
        publishMountResult(words(failure));
    }
    co_await around_.wait(ejectSettlingTime, {});
    scheduleMountReconcile();
}

void AppStore::scheduleMountReconcile() {
    if (reconcileTask_)
        reconcileTask_->request_stop();
    reconcileTask_.emplace();
    spawnWeakly(requestReconcile(weak_from_this(), around_.wait, reconcileTask_->get_token()));
}

asio::awaitable<void> AppStore::requestReconcile(std::weak_ptr<AppStore> store, Wait wait,
                                                 std::stop_token stop) {
    co_await wait(reconcileDebounce, stop);
    throwIfCancelled(stop);
    const auto living = store.lock();
    if (!living)
        co_return;
    if (living->reconciling_) {
        living->reconcileQueued_ = true;
        co_return;
    }
    living->reconciling_ = true;
    living->spawn(living->reconcileMounts());
}

asio::awaitable<void> AppStore::reconcileMounts() {
    {
        const HeldFlag reconciling(reconciling_);
        const SnapshotMount::Reconciliation found = co_await mounts_.reconcile({});
        take(found);
        state_.mountIssue.set(operationMountIssue_ ? operationMountIssue_ : found.issue);
    }
    if (std::exchange(reconcileQueued_, false))
        scheduleMountReconcile();
}

} // namespace marrowbox
