#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <memory>
#include <unordered_map>
#include <vector>

namespace marrowbox {

/// The run records of the selected unit, found once for all rows that ask. What is given out is good until
/// the store's configuration or selection changes again. Main thread.
class UnitRuns : public QObject {
    Q_OBJECT

  public:
    explicit UnitRuns(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    const std::vector<const RunRecord*>& newestFirst() const;
    /// Null when the unit has none.
    const RunRecord* last() const;
    /// Null when there is no such run of the unit.
    const RunRecord* withID(const Uuid& id) const;
    /// The run that produced a snapshot; null when its record is gone.
    const RunRecord* ofSnapshot(const Uuid& id) const;

  private:
    void find() const;

    std::shared_ptr<AppStore> store_;
    mutable bool isStale_ = true;
    mutable std::vector<const RunRecord*> newestFirst_;
    mutable std::unordered_map<Uuid, const RunRecord*> byID_;
    mutable std::unordered_map<Uuid, const RunRecord*> bySnapshot_;
};

} // namespace marrowbox
