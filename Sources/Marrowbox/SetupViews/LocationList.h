#pragma once

#include "Models/DriveLocation.h"

#include <QAbstractListModel>
#include <QString>
#include <vector>

namespace marrowbox {

/// The symbol of a place in a list: a folder, or a shared drive as a whole.
QString locationSymbol(const DriveLocation& location);

/// The places in Drive that can be opened next, for a list on the screen. Main thread.
class LocationList : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role { NameRole = Qt::UserRole, SymbolRole };

    using QAbstractListModel::QAbstractListModel;

    void set(std::vector<DriveLocation> locations);
    const DriveLocation& at(int row) const { return locations_.at(static_cast<std::size_t>(row)); }
    const std::vector<DriveLocation>& all() const { return locations_; }
    bool has(int row) const { return row >= 0 && row < rowCount(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  private:
    std::vector<DriveLocation> locations_;
};

} // namespace marrowbox
