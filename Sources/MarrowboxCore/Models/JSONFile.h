#pragma once

#include "Models/JSONReader.h"
#include "Models/JSONWriter.h"
#include "Platform/PlainFile.h"

/// How records reach the disk. It takes no lock and mends nothing; a failure to read, decode, encode or write
/// passes through unchanged. Any thread.
namespace marrowbox::JSONFile {

/// Reads and decodes a whole file, through a link as well. A pipe, or what else is no file, is a failure and
/// never keeps the reader waiting.
template <typename Record>
Record read(const fs::path& path) {
    return decodeJSON<Record>(openRegularFile(path));
}

/// Replaces the file in one rename, pretty printed with sorted keys, mode 0600. Not synchronised: a caller
/// who needs that does it afterwards.
template <typename Record>
void write(const Record& record, const fs::path& path) {
    AtomicFile file(path);
    encodeJSON(record, JSONStyle::pretty, file.descriptor());
    file.publish();
}

/// The same, with the content on stable storage before the rename, so that a power cut leaves the old file or
/// the new one and never an empty one. The new name lasts once the folder is synchronised.
template <typename Record>
void writeDurably(const Record& record, const fs::path& path) {
    AtomicFile file(path);
    encodeJSON(record, JSONStyle::pretty, file.descriptor());
    synchronize(file.descriptor(), path);
    file.publish();
}

} // namespace marrowbox::JSONFile
