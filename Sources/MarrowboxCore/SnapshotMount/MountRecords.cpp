#include "SnapshotMount/MountRecords.h"

#include <boost/container_hash/hash.hpp>

namespace marrowbox {

namespace {

void writeEntry(JSONWriter& writer, const MountEntry& entry) {
    writer.open('{');
    writer.key("\"id\"");
    writer.plainText(entry.id.text());
    writer.key("\"unitID\"");
    writer.plainText(entry.unitID.text());
    writer.key("\"displayName\"");
    writer.text(entry.displayName);
    writer.key("\"workingDirectory\"");
    writer.text(entry.workingDirectory.text);
    writer.key("\"image\"");
    writer.text(entry.image.text);
    if (entry.volume) {
        writer.key("\"volume\"");
        writer.text(entry.volume->text);
    }
    writer.key("\"phase\"");
    writer.plainText(enumerationName(entry.phase));
    writer.close('}');
}

} // namespace

std::string encodeMountRegistry(const MountRegistry& registry) {
    JSONWriter writer(JSONStyle::compact);
    writer.open('{');
    writer.key("\"version\"");
    writer.integer(registry.version);
    writer.key("\"entries\"");
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
