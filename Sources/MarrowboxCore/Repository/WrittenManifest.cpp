#include "Repository/WrittenManifest.h"

#include "Models/JSONReader.h"

#include <algorithm>
#include <charconv>

namespace marrowbox::WrittenManifest {

namespace {

/// What stands before the entries; the member that comes first is a number.
constexpr std::string_view beginning = "{\n  \"completedAt\": ";
constexpr std::string_view opening = ",\n  \"entries\": [";
/// Each opens a level, and the decoder allows a text only so many.
constexpr int mostBrackets = 24;

bool isBracket(char letter) {
    return letter == '{' || letter == '[';
}

} // namespace

std::string_view headOf(std::string_view text) {
    if (!text.starts_with(beginning))
        return {};
    const std::size_t numberEnd = text.find_first_not_of("0123456789+-.eE", beginning.size());
    if (numberEnd == std::string_view::npos || !text.substr(numberEnd).starts_with(opening))
        return {};
    return text.substr(0, numberEnd + opening.size());
}

double dateIn(std::string_view head) {
    double date = 0;
    if (head.starts_with(beginning))
        std::from_chars(head.data() + beginning.size(), head.data() + head.size(), date);
    return date;
}

std::optional<SnapshotEntry> entryOf(std::string_view text, JSONSharing& sharing) {
    if (std::ranges::count_if(text, isBracket) > mostBrackets)
        return std::nullopt;
    try {
        return decodeJSON<SnapshotEntry>(text, &sharing);
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

std::optional<Snapshot> withoutEntries(std::string_view head, std::string_view rest) {
    if (rest.size() >= longestRest)
        return std::nullopt;
    try {
        return decodeJSON<Snapshot>(std::string(head).append(rest));
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

} // namespace marrowbox::WrittenManifest
