#include "Repository/FamiliarEntries.h"

#include "Repository/WrittenManifest.h"

#include <algorithm>
#include <charconv>

namespace marrowbox {

using WrittenManifest::closing;
using WrittenManifest::entryEnd;

namespace {

constexpr std::string_view hashFrame = "{\n      \"objectHash\": \"";
constexpr std::size_t hashLength = 64;
/// More than all that stands around the written source of an entry.
constexpr std::size_t longestFrame = 256;
constexpr std::size_t longestOtherEntry = 1 << 20;

JSONWriter writerAt(int depth) {
    JSONWriter writer(JSONStyle::pretty);
    for (int level = 0; level < depth; ++level)
        writer.open('{');
    writer.clear();
    return writer;
}

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
const SharedText& pathOf(const Shared<SnapshotEntry>& entry) {
    return entry->source.path;
}

/// Leaves out what stands up to a path and at it.
template <typename Entry>
std::span<const Entry> behind(std::span<const Entry> entries, const SharedText& path) {
    std::size_t passed = 0;
    while (passed < entries.size() && pathOf(entries[passed]) <= path)
        ++passed;
    return entries.subspan(passed);
}

} // namespace

FamiliarEntries::FamiliarEntries(ByteWindow& text, std::span<const Shared<SnapshotEntry>> known,
                                 std::span<const SourceEntry> listing, JSONSharing& sharing)
    : text_(text), known_(known), listing_(listing), sharing_(sharing), entryWriter_(writerAt(2)),
      sourceWriter_(writerAt(3)) {
    taken_.reserve(std::max(known.size(), listing.size()));
}

bool FamiliarEntries::take() {
    while (text_.next(closing.size()) != closing)
        if (!takeKnown() && !takeListed() && !takeOther())
            return false;
    return true;
}

/// What stands before the next entry.
std::string_view FamiliarEntries::separator() const {
    return WrittenManifest::separator(taken_.empty());
}

/// Of those that are known at one path, the object tells which one it can be.
bool FamiliarEntries::takeKnown() {
    if (known_.empty())
        return false;
    const SharedText& path = known_.front()->source.path;
    const std::optional<ObjectHash> object = nextObject();
    for (const Shared<SnapshotEntry>& entry : known_) {
        if (entry->source.path != path)
            return false;
        if (entry->objectHash != object || !isNext(*entry))
            continue;
        taken_.push_back(entry);
        listing_ = behind(listing_, path);
        known_ = behind(known_, path);
        return true;
    }
    return false;
}

/// The object that the next entry names; absent when it names none.
std::optional<ObjectHash> FamiliarEntries::nextObject() {
    std::string_view text = text_.next(longestFrame);
    if (!eat(text, separator()) || !eat(text, hashFrame))
        return std::nullopt;
    return eatHash(text);
}

/// Goes on behind an entry when it is the next one.
bool FamiliarEntries::isNext(const SnapshotEntry& entry) {
    const std::string_view expected = written(entryWriter_, entry);
    std::string_view text = text_.next(separator().size() + expected.size());
    if (!eat(text, separator()) || expected.empty() || text != expected)
        return false;
    text_.skip(separator().size() + expected.size());
    return true;
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
    taken_.emplace_back(std::move(entry));
    listing_ = listing_.subspan(1);
    known_ = behind(known_, item.path);
    return true;
}

/// An entry of any other content. It is parsed by itself, which is the same as in its place: a text that is
/// one whole value is one element of the list.
bool FamiliarEntries::takeOther() {
    const std::size_t start = separator().size();
    std::size_t length = 1024;
    std::size_t end = std::string_view::npos;
    for (; end == std::string_view::npos && length <= longestOtherEntry; length *= 2)
        end = text_.next(length).find(entryEnd, start);
    if (end == std::string_view::npos)
        return false;
    std::string_view text = text_.next(end + entryEnd.size());
    if (!eat(text, separator()))
        return false;
    auto entry = WrittenManifest::entryOf(text, sharing_);
    if (!entry)
        return false;
    text_.skip(end + entryEnd.size());
    taken_.push_back(held(std::move(*entry)));
    return true;
}

/// Goes on behind a parsed entry's path. What is known there after all, all of it or its texts, is held once.
Shared<SnapshotEntry> FamiliarEntries::held(SnapshotEntry entry) {
    const auto passedEntries = known_;
    known_ = behind(known_, entry.source.path);
    for (const auto& known : passedEntries.first(passedEntries.size() - known_.size()))
        if (*known == entry)
            return known;
    const auto passedItems = listing_;
    listing_ = behind(listing_, entry.source.path);
    const std::size_t count = passedItems.size() - listing_.size();
    if (count > 0 && passedItems[count - 1].path == entry.source.path)
        shareTexts(entry.source, passedItems[count - 1]);
    return sharing_.shared(std::move(entry));
}

} // namespace marrowbox
