#include "Repository/FamiliarEntries.h"

#include "Models/JSONReader.h"

#include <algorithm>
#include <charconv>

namespace marrowbox {

namespace {

constexpr std::string_view closing = "\n  ]";
constexpr std::string_view entryEnd = "\n    }";
constexpr std::string_view hashFrame = "{\n      \"objectHash\": \"";
constexpr std::size_t hashLength = 64;
/// More than all that stands around the written source of an entry.
constexpr std::size_t longestFrame = 256;
constexpr std::size_t longestOther = 1 << 20;
/// Each opens a level, and the decoder allows a text only so many.
constexpr int mostBrackets = 24;

/// What a writer that stands inside a manifest makes of a record; empty when it cannot be written.
template <typename Record>
std::string_view written(JSONWriter& writer, const Record& record) {
    writer.clear();
    try {
        writeJSON(writer, record);
        return writer.written();
    } catch (const JSONEncodingError&) {
        return {};
    }
}

bool eat(std::string_view& text, std::string_view part) {
    if (!text.starts_with(part))
        return false;
    text.remove_prefix(part.size());
    return true;
}

std::optional<ObjectHash> eatHash(std::string_view& text) {
    const ObjectHash hash(text.substr(0, hashLength));
    if (!hash.isValid())
        return std::nullopt;
    text.remove_prefix(hashLength);
    return hash;
}

/// A whole number that is not negative, as it is written.
std::optional<std::int64_t> eatNumber(std::string_view& text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto length = static_cast<std::size_t>(end - text.data());
    if (error != std::errc() || text.starts_with('-') || (text.starts_with('0') && length > 1))
        return std::nullopt;
    text.remove_prefix(length);
    return value;
}

void shareTexts(SourceEntry& entry, const SourceEntry& with) {
    const auto share = [](SharedText& text, const SharedText& other) {
        if (text == other)
            text = other; // the same text, in the place where the other lies
    };
    share(entry.id, with.id);
    share(entry.path, with.path);
    share(entry.version, with.version);
    share(entry.mimeType, with.mimeType);
    if (entry.md5 && with.md5)
        share(*entry.md5, *with.md5);
}

const SharedText& pathOf(const SourceEntry& entry) {
    return entry.path;
}
const SharedText& pathOf(const KnownEntries::Item& item) {
    return item.entry->source.path;
}

/// How much stands before a path.
template <typename Entry>
std::size_t countBefore(std::span<const Entry> entries, const SharedText& path) {
    std::size_t count = 0;
    while (count < entries.size() && pathOf(entries[count]) < path)
        ++count;
    return count;
}

/// Leaves out what stands before a path, and what stands at it, which is given.
template <typename Entry>
std::span<const Entry> takeAt(std::span<const Entry>& entries, const SharedText& path) {
    entries = entries.subspan(countBefore(entries, path));
    std::size_t count = 0;
    while (count < entries.size() && pathOf(entries[count]) == path)
        ++count;
    const auto found = entries.first(count);
    entries = entries.subspan(count);
    return found;
}

} // namespace

FamiliarEntries::FamiliarEntries(ByteWindow& text, std::span<const KnownEntries::Item> known,
                                 std::span<const SourceEntry> listing, JSONSharing& sharing)
    : text_(text), known_(known), listing_(listing), sharing_(sharing) {
}

bool FamiliarEntries::take(std::size_t expectedCount) {
    taken_.reserve(expectedCount);
    while (text_.next(closing.size()) != closing)
        if (!takeKnown() && !takeListed() && !takeOther())
            return false;
    return true;
}

/// What stands before the next entry.
std::string_view FamiliarEntries::separator() const {
    return taken_.empty() ? "\n    " : ",\n    ";
}

/// An entry whose text is that of a known one.
bool FamiliarEntries::takeKnown() {
    if (known_.empty())
        return false;
    const auto atPath = known_.first(known_.front().atPath);
    const std::size_t start = separator().size();
    std::size_t length = 0;
    std::uint64_t number = 0;
    for (const KnownEntries::Item& item : atPath) {
        if (item.textLength != length) {
            length = item.textLength;
            std::string_view text = text_.next(start + length);
            number = eat(text, separator()) && text.size() == length ? textNumber(text) : 0;
        }
        if (length == 0 || number != item.textNumber)
            continue;
        text_.skip(start + length);
        taken_.push_back(item.entry);
        known_ = known_.subspan(atPath.size());
        if (!listing_.empty())
            takeAt(listing_, item.entry->source.path);
        return true;
    }
    return false;
}

/// An entry of a listed item: only its object is not known.
bool FamiliarEntries::takeListed() {
    if (listing_.empty())
        return false;
    const SourceEntry& item = listing_.front();
    const std::string_view expected = written(sourceWriter_, item);
    const std::string_view ahead = text_.next(expected.size() + longestFrame);
    std::string_view text = ahead;
    if (!eat(text, separator()) || expected.empty())
        return false;
    SnapshotEntry entry;
    if (eat(text, hashFrame)) {
        entry.objectHash = eatHash(text);
        if (!entry.objectHash || !eat(text, "\""))
            return false;
    }
    if (!eat(text, entry.objectHash ? ",\n      \"source\": " : "{\n      \"source\": ") ||
        !eat(text, expected) || !eat(text, ",\n      \"storedSize\": "))
        return false;
    const auto storedSize = eatNumber(text);
    if (!storedSize || !eat(text, entryEnd))
        return false;
    entry.storedSize = *storedSize;
    entry.source = item;
    text_.skip(ahead.size() - text.size());
    takeFresh(std::move(entry), takeAt(known_, item.path));
    listing_ = listing_.subspan(1);
    return true;
}

/// An entry of any other content. It is parsed by itself, which is the same as in its place: a text that is
/// one whole value is one element of the list.
bool FamiliarEntries::takeOther() {
    const std::size_t start = separator().size();
    std::size_t length = 1024;
    std::size_t end = std::string_view::npos;
    for (; end == std::string_view::npos && length <= longestOther; length *= 2)
        end = text_.next(length).find(entryEnd, start);
    if (end == std::string_view::npos)
        return false;
    std::string_view text = text_.next(end + entryEnd.size());
    if (!eat(text, separator()) || std::ranges::count_if(text, [](char letter) {
                                       return letter == '{' || letter == '[';
                                   }) > mostBrackets)
        return false;
    try {
        auto entry = decodeJSON<SnapshotEntry>(text, &sharing_);
        text_.skip(end + entryEnd.size());
        hold(std::move(entry));
        return true;
    } catch (const JSONDecodingError&) {
        return false;
    }
}

/// Goes on behind a parsed entry's path. What is known there after all, all of it or its texts, is held once.
void FamiliarEntries::hold(SnapshotEntry entry) {
    const auto atPath = takeAt(known_, entry.source.path);
    const auto listed = takeAt(listing_, entry.source.path);
    const auto same =
        std::ranges::find_if(atPath, [&](const KnownEntries::Item& item) { return *item.entry == entry; });
    if (same != atPath.end()) {
        taken_.push_back(same->entry);
        return;
    }
    if (!listed.empty())
        shareTexts(entry.source, listed.front());
    takeFresh(sharing_.shared(std::move(entry)), atPath);
}

void FamiliarEntries::takeFresh(Shared<SnapshotEntry> entry, std::span<const KnownEntries::Item> atPath) {
    hasNewPath_ = hasNewPath_ || atPath.empty() ||
                  atPath.front().entry->source.isDirectory != entry->source.isDirectory;
    taken_.push_back(entry);
    fresh_.push_back(std::move(entry));
}

} // namespace marrowbox
