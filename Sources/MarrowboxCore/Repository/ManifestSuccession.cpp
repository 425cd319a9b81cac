#include "Repository/ManifestSuccession.h"

#include "Repository/WrittenManifest.h"

#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace marrowbox {

namespace {

constexpr std::int64_t largestFile = 32 << 20;
/// What changed from manifest to manifest is kept as well, until it is this much.
constexpr std::size_t mostText = 64 << 20;
constexpr std::size_t longestOther = 1 << 20;

bool hasModerateSize(const Descriptor& file) {
    struct stat status{};
    return ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= largestFile;
}

/// How far the texts are asked for ahead of their use. They lie where they first came, so that no processor
/// can tell by itself which one comes next.
constexpr std::size_t lookahead = 6;

void prefetch(std::string_view text) {
    constexpr std::size_t cacheLine = 64;
    for (std::size_t place = 0; place < text.size(); place += cacheLine)
        __builtin_prefetch(text.data() + place);
}

bool isSameItem(const SnapshotEntry& left, const SnapshotEntry& right) {
    return left.source.path == right.source.path && left.source.isDirectory == right.source.isDirectory;
}

} // namespace

std::optional<ManifestSuccession::Reading> ManifestSuccession::read(const Descriptor& file) {
    std::swap(before_, taken_);
    taken_.clear();
    next_ = 0;
    if (textSize_ > mostText) {
        before_.clear();
        texts_.release();
        textSize_ = 0;
    }
    Reading reading;
    ByteWindow window(file);
    if (hasModerateSize(file) && take(window, reading)) {
        for (const Known& known : taken_)
            reading.entries.push_back(known.entry);
        return reading;
    }
    taken_.clear();
    ::lseek(file.number(), 0, SEEK_SET);
    return std::nullopt;
}

bool ManifestSuccession::take(ByteWindow& window, Reading& reading) {
    const std::string head(WrittenManifest::headOf(window.next(WrittenManifest::longestHead)));
    if (head.empty())
        return false;
    window.skip(head.size());
    taken_.reserve(before_.size());
    reading.hasSameItems = !before_.empty();
    while (window.next(WrittenManifest::closing.size()) != WrittenManifest::closing) {
        reading.hasSameItems = reading.hasSameItems && next_ == taken_.size();
        if (!takeExpected(window) && !takeOther(window, reading))
            return false;
    }
    reading.hasSameItems = reading.hasSameItems && taken_.size() == before_.size();
    auto record = WrittenManifest::withoutEntries(head, window.next(WrittenManifest::longestRest));
    if (record)
        reading.record = std::move(*record);
    return record.has_value();
}

bool ManifestSuccession::takeExpected(ByteWindow& window) {
    if (next_ == before_.size())
        return false;
    if (next_ + lookahead < before_.size())
        prefetch(before_[next_ + lookahead].text);
    const Known& expected = before_[next_];
    const std::string_view separator = WrittenManifest::separator(taken_.empty());
    const std::size_t length = separator.size() + expected.text.size();
    const std::string_view ahead = window.next(length);
    if (ahead.size() < length || !ahead.starts_with(separator) || !ahead.ends_with(expected.text))
        return false;
    window.skip(length);
    taken_.push_back(expected);
    ++next_;
    return true;
}

/// Takes an entry that is not the expected one. Both manifests are in the order of paths, so that the one at
/// its path, if there is any, is passed now.
bool ManifestSuccession::takeOther(ByteWindow& window, Reading& reading) {
    const std::string_view separator = WrittenManifest::separator(taken_.empty());
    std::size_t end = std::string_view::npos;
    for (std::size_t length = 1024; end == std::string_view::npos && length <= longestOther; length *= 2)
        end = window.next(length).find(WrittenManifest::entryEnd, separator.size());
    if (end == std::string_view::npos)
        return false;
    const std::string_view ahead = window.next(end + WrittenManifest::entryEnd.size());
    if (!ahead.starts_with(separator))
        return false;
    const std::string_view text = ahead.substr(separator.size());
    auto entry = WrittenManifest::entryOf(text, sharing_);
    if (!entry)
        return false;
    held_.push_back(sharing_.shared(std::move(*entry)));
    const SnapshotEntry& taken = *held_.back();
    const std::size_t place = taken_.size();
    reading.others.push_back(place);
    reading.hasSameItems =
        reading.hasSameItems && place < before_.size() && isSameItem(*before_[place].entry, taken);
    taken_.push_back({kept(text), &taken});
    window.skip(ahead.size());
    while (next_ < before_.size() && before_[next_].entry->source.path <= taken.source.path)
        ++next_;
    return true;
}

std::string_view ManifestSuccession::kept(std::string_view text) {
    auto* bytes = static_cast<char*>(texts_.allocate(text.size(), 1));
    std::memcpy(bytes, text.data(), text.size());
    textSize_ += text.size();
    return {bytes, text.size()};
}

} // namespace marrowbox
