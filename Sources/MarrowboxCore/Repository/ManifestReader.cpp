#include "Repository/ManifestReader.h"

#include "Models/JSONReader.h"
#include "Repository/FamiliarEntries.h"

#include <unistd.h>

namespace marrowbox {

namespace {

/// What stands before the entries; the member that comes first is a number.
constexpr std::string_view beginning = "{\n  \"completedAt\": ";
constexpr std::string_view opening = ",\n  \"entries\": [";
constexpr std::size_t longestNumber = 400;
/// Far more than the members behind the entries take.
constexpr std::size_t longestRest = 4096;

/// The text up to the first entry; empty when it is not in the form that this program writes.
std::string_view headOf(std::string_view text) {
    if (!text.starts_with(beginning))
        return {};
    const std::size_t numberEnd = text.find_first_not_of("0123456789+-.eE", beginning.size());
    if (numberEnd == std::string_view::npos || !text.substr(numberEnd).starts_with(opening))
        return {};
    return text.substr(0, numberEnd + opening.size());
}

} // namespace

Snapshot ManifestReader::read(const Descriptor& file) {
    if (!known_.empty() || !listing_.empty()) {
        auto familiar = readFamiliar(file);
        if (familiar)
            return std::move(*familiar);
        // What is no plain file cannot go back, and ends in the decoder's words all the same.
        ::lseek(file.number(), 0, SEEK_SET);
    }
    return decodeJSON<Snapshot>(file, &sharing_);
}

/// Absent for a text that has to be read in the ordinary way.
std::optional<Snapshot> ManifestReader::readFamiliar(const Descriptor& file) {
    ByteWindow window(file);
    std::string text(headOf(window.next(beginning.size() + longestNumber + opening.size())));
    if (text.empty())
        return std::nullopt;
    window.skip(text.size());
    FamiliarEntries entries(window, known_, listing_, sharing_);
    if (!entries.take())
        return std::nullopt;
    const std::string_view rest = window.next(longestRest);
    if (rest.size() == longestRest)
        return std::nullopt;
    text += rest;
    try {
        // The same text without its entries, so that everything about the other members is as it would be.
        auto snapshot = decodeJSON<Snapshot>(text);
        snapshot.entries = entries.taken();
        return snapshot;
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

} // namespace marrowbox
