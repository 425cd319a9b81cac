#include "Repository/ManifestReader.h"

#include "Models/JSONReader.h"
#include "Repository/FamiliarEntries.h"
#include "Repository/WrittenManifest.h"

#include <unistd.h>

namespace marrowbox {

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
    const std::string head(WrittenManifest::headOf(window.next(WrittenManifest::longestHead)));
    if (head.empty())
        return std::nullopt;
    window.skip(head.size());
    FamiliarEntries entries(window, known_, listing_, sharing_);
    if (!entries.take())
        return std::nullopt;
    auto snapshot = WrittenManifest::withoutEntries(head, window.next(WrittenManifest::longestRest));
    if (snapshot)
        snapshot->entries = entries.taken();
    return snapshot;
}

} // namespace marrowbox
