#pragma once

#include "Models/Uuid.h"

#include <QAbstractListModel>
#include <cstddef>
#include <vector>

namespace marrowbox {

/// A list whose rows are known by an identifier. A change of the list comes out as the fewest insertions and
/// removals, so that a view keeps its place and its selection; only a new order resets it.
class IdentifiedRows : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int count() const { return static_cast<int>(ids_.size()); }

  signals:
    void countChanged();

  protected:
    void setRows(std::vector<Uuid> ids);
    /// Tells that these roles of all rows may have changed; all roles when none is named.
    void announce(const QList<int>& roles = {});
    /// Null for an index of no row.
    const Uuid* idAt(const QModelIndex& index) const;

  private:
    void removeRowsBut(const std::vector<Uuid>& wanted);
    void insertMissing(const std::vector<Uuid>& wanted);

    std::vector<Uuid> ids_;
};

} // namespace marrowbox
