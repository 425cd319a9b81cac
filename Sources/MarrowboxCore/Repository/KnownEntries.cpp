#include "Repository/KnownEntries.h"

#include "Models/BackupError.h"
#include "Models/BackupPaths.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace marrowbox {

namespace {

std::uint64_t eightBytes(const char* from) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, sizeof value);
    return value;
}

/// The 128 bits of a product, brought together.
std::uint64_t folded(std::uint64_t left, std::uint64_t right) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::uint64_t firstKey = 0x9E3779B97F4A7C15;
constexpr std::uint64_t secondKey = 0xD1B54A32D192ED03;

const SharedText& pathOf(const KnownEntries::Item& item) {
    return item.entry->source.path;
}

} // namespace

std::uint64_t textNumber(std::string_view text) {
    std::uint64_t first = text.size();
    std::uint64_t second = firstKey;
    for (; text.size() > 32; text.remove_prefix(32)) {
        const char* at = text.data();
        first = folded(eightBytes(at) ^ firstKey, eightBytes(at + 8) ^ first);
        second = folded(eightBytes(at + 16) ^ secondKey, eightBytes(at + 24) ^ second);
    }
    char rest[32] = {};
    text.copy(rest, text.size());
    first = folded(eightBytes(rest) ^ firstKey, eightBytes(rest + 8) ^ first);
    second = folded(eightBytes(rest + 16) ^ secondKey, eightBytes(rest + 24) ^ second);
    return folded(first ^ secondKey, second ^ firstKey);
}

KnownEntries::Item KnownEntries::item(const Shared<SnapshotEntry>& entry) {
    Item item{.entry = entry};
    writer_.clear();
    try {
        writeJSON(writer_, *entry);
        item.textLength = static_cast<std::uint32_t>(writer_.written().size());
        item.textNumber = textNumber(writer_.written());
    } catch (const JSONEncodingError&) {
        item.textLength = 0;
    }
    return item;
}

void KnownEntries::clear() {
    items_.clear();
    isJudged_ = fitTogether_ = true;
}

void KnownEntries::add(std::span<const Shared<SnapshotEntry>> entries) {
    const auto path = [](const auto& entry) -> const SharedText& { return entry->source.path; };
    if (!std::ranges::is_sorted(entries, {}, path))
        return;
    std::vector<Item> added;
    added.reserve(entries.size());
    for (const auto& entry : entries)
        added.push_back(item(entry));
    auto end = static_cast<std::ptrdiff_t>(items_.size());
    items_.insert(items_.end(), added.begin(), added.end());
    // From the back, in place. Few are added to many: a search for each place is less work than a look at
    // every item.
    auto to = items_.end();
    for (; !added.empty(); added.pop_back()) {
        const auto from = items_.begin() + end;
        const auto place =
            std::upper_bound(items_.begin(), from, pathOf(added.back()),
                             [](const SharedText& left, const Item& right) { return left < pathOf(right); });
        to = std::move_backward(place, from, to) - 1;
        *to = std::move(added.back());
        end = place - items_.begin();
        count(to, end);
    }
}

/// Tells an item, and those at its path that end before the given position, how many they are.
void KnownEntries::count(std::vector<Item>::iterator added, std::ptrdiff_t end) {
    const auto isAtItsPath = [&](const Item& other) { return pathOf(other) == pathOf(*added); };
    const auto next = added + 1;
    const bool hasNext = next != items_.end() && isAtItsPath(*next);
    added->atPath = hasNext ? next->atPath + 1 : 1;
    std::uint32_t atPath = added->atPath;
    const auto first = items_.begin() + end;
    auto other = first;
    for (; other != items_.begin() && isAtItsPath(*(other - 1)); --other)
        (other - 1)->atPath = ++atPath;
    const bool isPathKnown = other != first;
    if (!isPathKnown || other->entry->source.isDirectory != added->entry->source.isDirectory)
        isJudged_ = false;
}

bool KnownEntries::fitTogether() {
    if (!isJudged_)
        fitTogether_ = judge();
    isJudged_ = true;
    return fitTogether_;
}

/// One item for each path stands for all of them where they are all folders or all files; and what fits
/// together still does when some of it is left out.
bool KnownEntries::judge() const {
    std::vector<Shared<SnapshotEntry>> onePerPath;
    for (std::size_t index = 0; index < items_.size(); index += items_[index].atPath) {
        onePerPath.push_back(items_[index].entry);
        for (const Item& other : items().subspan(index, items_[index].atPath))
            if (other.entry->source.isDirectory != items_[index].entry->source.isDirectory)
                return false;
    }
    try {
        BackupPaths::validateEntries(onePerPath);
        return true;
    } catch (const BackupError&) {
        return false;
    }
}

} // namespace marrowbox
