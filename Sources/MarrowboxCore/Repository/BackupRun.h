#pragma once

#include "Models/Snapshot.h"
#include "Platform/Clock.h"
#include "Repository/BackupEngine.h"
#include "Repository/BackupRepository.h"
#include "Repository/BackupSource.h"

#include <memory>
#include <stop_token>

namespace marrowbox {

/// What a run is asked to do.
struct RunOrder {
    BackupRepository repository;
    std::shared_ptr<BackupSource> source;
    Progress progress;
    Clock clock;
    std::stop_token stop;
};

/// One run from validation to the published snapshot, on the awaiting executor.
asio::awaitable<Snapshot> runBackup(RunOrder order);

} // namespace marrowbox
