#include "Marrowbox/SetupViews/LocationList.h"

namespace marrowbox {

QString locationSymbol(const DriveLocation& location) {
    return location.sharedDriveID == location.id ? QStringLiteral("person.2.crop.square.stack")
                                                 : QStringLiteral("folder");
}

void LocationList::set(std::vector<DriveLocation> locations) {
    beginResetModel();
    locations_ = std::move(locations);
    endResetModel();
}

int LocationList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(locations_.size());
}

QVariant LocationList::data(const QModelIndex& index, int role) const {
    if (!has(index.row()))
        return {};
    switch (role) {
    case NameRole:
        return QString::fromStdString(at(index.row()).name);
    case SymbolRole:
        return locationSymbol(at(index.row()));
    default:
        return {};
    }
}

QHash<int, QByteArray> LocationList::roleNames() const {
    return {{NameRole, "name"}, {SymbolRole, "symbol"}};
}

} // namespace marrowbox
