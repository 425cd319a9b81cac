#include "SnapshotMount/MountRecords.h"

#include <boost/container_hash/hash.hpp>

namespace marrowbox {

namespace {

void writeEntry(JSONWriter& writer, const MountEntry& entry) {
    writer.open('{');
    writer.key(memberName("id"));
    writer.plainText(entry.id.text());
    writer.key(memberName("unitID"));
    writer.plainText(entry.unitID.text());
    writer.key(memberName("displayName"));
    writer.text(entry.displayName);
    writer.key(memberName("workingDirectory"));
    writer.text(entry.workingDirectory.text);
    writer.key(memberName("image"));
    writer.text(entry.image.text);
    if (entry.volume) {
        writer.key(memberName("volume"));
        writer.text(entry.volume->text);
    }
    writer.key(memberName("phase"));
    writer.plainText(enumerationName(entry.phase));
    writer.close('}');
}

} // namespace

std::string encodeMountRegistry(const MountRegistry& registry) {
    JSONWriter writer(JSONStyle::compact);
    writer.open('{');
    writer.key(memberName("version"));
    writer.integer(registry.version);
    writer.key(memberName("entries"));
    writer.open('[');
    for (const MountEntry& entry : registry.entries) {
        writer.element();
        writeEntry(writer, entry);
    }
    writer.close(']');
    writer.close('}');
    return writer.take();
}

std::string encodeMountMarker(const MountEntry& entry) {
    JSONWriter writer(JSONStyle::compact);
    writeEntry(writer, entry);
    return writer.take();
}

MountedSnapshot mountedFrom(const MountEntry& entry, const fs::path& mountPoint) {
    return {.id = entry.id,
            .unitID = entry.unitID,
            .displayName = entry.displayName,
            .volume = mountPoint,
            .workingDirectory = entry.workingDirectory.path()};
}

} // namespace marrowbox

std::size_t
std::hash<marrowbox::MountedSnapshot>::operator()(const marrowbox::MountedSnapshot& mounted) const noexcept {
    std::size_t seed = std::hash<marrowbox::Uuid>()(mounted.id);
    boost::hash_combine(seed, std::hash<marrowbox::Uuid>()(mounted.unitID));
    boost::hash_combine(seed, mounted.displayName);
    boost::hash_combine(seed, marrowbox::fs::hash_value(mounted.volume));
    boost::hash_combine(seed, marrowbox::fs::hash_value(mounted.workingDirectory));
    return seed;
}
