#include "Marrowbox/ContentView/IdentifiedRows.h"

#include <algorithm>
#include <unordered_set>

namespace marrowbox {

namespace {

using IDs = std::vector<Uuid>;
using IDSet = std::unordered_set<Uuid>;

IDSet setOf(const IDs& ids) {
    return {ids.begin(), ids.end()};
}

/// Those of the ids that are in the set, in their order.
IDs common(const IDs& ids, const IDSet& set) {
    IDs found;
    std::ranges::copy_if(ids, std::back_inserter(found), [&](const Uuid& id) { return set.contains(id); });
    return found;
}

/// Whether one list becomes the other by leaving some out and putting some in.
bool keepsOrder(const IDs& before, const IDs& after) {
    const IDSet old = setOf(before);
    const IDSet fresh = setOf(after);
    const IDs kept = common(before, fresh);
    return fresh.size() == after.size() && !kept.empty() && kept == common(after, old);
}

std::ptrdiff_t offset(std::size_t row) {
    return static_cast<std::ptrdiff_t>(row);
}

} // namespace

int IdentifiedRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

const Uuid* IdentifiedRows::idAt(const QModelIndex& index) const {
    const auto row = static_cast<std::size_t>(index.row());
    return index.isValid() && row < ids_.size() ? &ids_[row] : nullptr;
}

void IdentifiedRows::announce(const QList<int>& roles) {
    if (!ids_.empty())
        emit dataChanged(index(0), index(count() - 1), roles);
}

void IdentifiedRows::setRows(IDs ids) {
    if (ids == ids_)
        return;
    const int before = count();
    if (keepsOrder(ids_, ids)) {
        removeRowsBut(ids);
        insertMissing(ids);
    } else {
        beginResetModel();
        ids_ = std::move(ids);
        endResetModel();
    }
    if (count() != before)
        emit countChanged();
}

void IdentifiedRows::removeRowsBut(const IDs& wanted) {
    const IDSet keep = setOf(wanted);
    for (std::size_t end = ids_.size(); end > 0;) {
        std::size_t first = end;
        while (first > 0 && !keep.contains(ids_[first - 1]))
            --first;
        if (first == end) {
            --end;
            continue;
        }
        beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
        ids_.erase(ids_.begin() + offset(first), ids_.begin() + offset(end));
        endRemoveRows();
        end = first;
    }
}

void IdentifiedRows::insertMissing(const IDs& wanted) {
    const IDSet known = setOf(ids_);
    for (std::size_t row = 0; row < wanted.size();) {
        std::size_t end = row;
        while (end < wanted.size() && !known.contains(wanted[end]))
            ++end;
        if (end == row) {
            ++row;
            continue;
        }
        beginInsertRows({}, static_cast<int>(row), static_cast<int>(end) - 1);
        ids_.insert(ids_.begin() + offset(row), wanted.begin() + offset(row), wanted.begin() + offset(end));
        endInsertRows();
        row = end;
    }
}

} // namespace marrowbox
