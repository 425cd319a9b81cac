#include "Support/SnapshotBuilder.h"

#include "Platform/Digest.h"

namespace marrowbox::test {

namespace {

std::string md5(std::string_view content) {
    Digest digest = Digest::md5();
    digest.update(content);
    return hexadecimal(digest.finish());
}

} // namespace

SnapshotEntry file(std::string_view path, std::string_view content) {
    const auto size = static_cast<std::int64_t>(content.size());
    return {.source = {.id = "id-" + hexadecimal(sha256(path)).substr(0, 28),
                       .path = path,
                       .version = "1",
                       .mimeType = "application/octet-stream",
                       .size = size,
                       .md5 = SharedText(md5(content))},
            .objectHash = ObjectHash::ofDigest(sha256(content)),
            .storedSize = size};
}

SnapshotEntry folder(std::string_view path) {
    return {.source = {.id = "folder-" + hexadecimal(sha256(path)).substr(0, 26),
                       .path = path,
                       .version = "directory",
                       .mimeType = "application/vnd.google-apps.folder",
                       .size = 0,
                       .isDirectory = true}};
}

Snapshot snapshotOfManyKinds() {
    Snapshot snapshot;
    snapshot.id = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF");
    snapshot.unitID = *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210");
    snapshot.startedAt = {796953600.125};
    snapshot.completedAt = {796953661.75};
    snapshot.entries = {folder("a"), file("a/“quoted” \\ \n é 😀.txt", "content"), file("b", "")};
    SnapshotEntry document = file("c.docx", "export");
    document.source.mimeType = "application/vnd.google-apps.document";
    document.source.size = -1;
    document.source.md5.reset();
    snapshot.entries.emplace_back(document);
    snapshot.summary = {.added = 3, .exported = 1, .downloadedBytes = 13};
    return snapshot;
}

} // namespace marrowbox::test
