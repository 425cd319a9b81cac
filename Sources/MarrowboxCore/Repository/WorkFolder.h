#pragma once

#include "Repository/BackupRepository.h"

namespace marrowbox {

/// The folder that a run's downloads arrive in. It is removed with the object, however the run ends; that it
/// cannot be removed changes nothing.
class WorkFolder {
  public:
    WorkFolder(const BackupRepository& repository, const Uuid& id) : path_(repository.staging(id)) {}
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder();

    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

} // namespace marrowbox
