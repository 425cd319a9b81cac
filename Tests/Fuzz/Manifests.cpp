// The manifest of a snapshot, as whoever may write to the destination leaves it. However much of it is known
// beforehand, it says what the ordinary reading of its text says, or is refused as that refuses it.
#include "Models/JSONReader.h"
#include "Models/JSONWriter.h"
#include "Platform/Files.h"
#include "Repository/ManifestReader.h"
#include "Repository/ManifestSuccession.h"
#include "Require.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace marrowbox;

Descriptor fileOf(std::string_view text) {
    Descriptor file(::memfd_create("manifest", MFD_CLOEXEC));
    fuzz::require(static_cast<bool>(file));
    writeAll(file, text);
    ::lseek(file.number(), 0, SEEK_SET);
    return file;
}

std::string textOf(const Snapshot& snapshot) {
    return encodeJSON(snapshot, JSONStyle::pretty);
}

/// The snapshot before: it is that of the seed "written".
const Snapshot& known() {
    static const Snapshot snapshot =
        decodeJSON<Snapshot>(openFile(fs::path(MARROWBOX_FUZZ_CORPUS) / "written", O_RDONLY));
    return snapshot;
}

std::vector<SourceEntry> listing() {
    std::vector<SourceEntry> items;
    for (const auto& entry : known().entries)
        items.push_back(entry->source);
    return items;
}

/// What a reading gives, written again; absent when it is refused.
template <typename Read>
std::optional<std::string> said(Read read) {
    try {
        return textOf(read());
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

Snapshot whole(const ManifestSuccession::Reading& reading) {
    Snapshot snapshot = reading.record;
    for (const SnapshotEntry* entry : reading.entries)
        snapshot.entries.emplace_back(*entry);
    return snapshot;
}

bool hasSameItems(const Snapshot& left, const Snapshot& right) {
    return std::ranges::equal(left.entries, right.entries, [](const auto& one, const auto& other) {
        return one->source.path == other->source.path && one->source.isDirectory == other->source.isDirectory;
    });
}

/// Once by itself, once behind the snapshot before, and the latter once more behind it.
void readInSuccession(std::string_view text, const std::optional<std::string>& plain) {
    ManifestSuccession succession;
    const std::string before = textOf(known());
    for (const std::string_view next : {text, std::string_view(before), text, std::string_view(before)}) {
        const auto reading = succession.read(fileOf(next));
        if (!reading)
            continue;
        const Snapshot snapshot = whole(*reading);
        fuzz::require(textOf(snapshot) == (next == before ? before : plain));
    }
    ManifestSuccession second;
    fuzz::require(second.read(fileOf(before)).has_value());
    const auto reading = second.read(fileOf(text));
    if (reading && reading->hasSameItems)
        fuzz::require(hasSameItems(whole(*reading), known()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    const std::string_view text(bytes, count);
    const auto plain = said([&] { return decodeJSON<Snapshot>(text); });
    const std::vector<SourceEntry> items = listing();
    for (const bool hasListing : {false, true})
        for (const bool hasEntries : {false, true}) {
            ManifestReader reader(hasListing ? std::span<const SourceEntry>(items)
                                             : std::span<const SourceEntry>());
            if (hasEntries)
                reader.expect(known().entries);
            fuzz::require(said([&] { return reader.read(fileOf(text)); }) == plain);
        }
    readInSuccession(text, plain);
    return 0;
}
