#pragma once

#include "Models/BackupError.h"
#include "Models/Uuid.h"

#include <set>

namespace marrowbox {

/// Marks a snapshot as having an operation in progress, for as long as the object lives.
class ActiveSnapshot {
  public:
    /// Throws BackupError when another operation has it.
    ActiveSnapshot(std::set<Uuid>& active, const Uuid& id) : active_(active), id_(id) {
        if (!active_.insert(id).second)
            throw BackupError("This snapshot mount operation is already in progress.");
    }
    ActiveSnapshot(const ActiveSnapshot&) = delete;
    ActiveSnapshot& operator=(const ActiveSnapshot&) = delete;
    ~ActiveSnapshot() { active_.erase(id_); }

  private:
    std::set<Uuid>& active_;
    Uuid id_;
};

} // namespace marrowbox
