#pragma once

#include "Models/SharedText.h"

#include <boost/describe/class.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace marrowbox {

/// One file or folder as the source reports it.
struct SourceEntry {
    SharedText id;                 ///< The source's stable identifier of the item.
    SharedText path;               ///< Relative to the backed-up root, pieces separated by "/".
    SharedText version;            ///< The source's version marker of the item.
    SharedText mimeType;           ///< The source's media type.
    std::int64_t size = -1;        ///< Bytes; negative when the source gave no size.
    std::optional<SharedText> md5; ///< Hexadecimal text, when the source has one.
    bool isDirectory = false;

    /// The identity of the content for change detection. It leaves out the path, so a moved file keeps it.
    std::string fingerprint() const;
    /// Appends the fingerprint to a buffer.
    void appendFingerprint(std::string& to) const;
    /// True for a native document, which has no fixed bytes at the source and is converted on download.
    bool isExport() const;
    /// A table's hash over what the fingerprint covers, without building its text.
    std::size_t fingerprintHash() const;
    /// Whether two fingerprints are equal, without building their texts.
    bool hasFingerprintOf(const SourceEntry& other) const;

    friend bool operator==(const SourceEntry&, const SourceEntry&) = default;
};

BOOST_DESCRIBE_STRUCT(SourceEntry, (), (id, path, version, mimeType, size, md5, isDirectory))

} // namespace marrowbox

template <>
struct std::hash<marrowbox::SourceEntry> {
    std::size_t operator()(const marrowbox::SourceEntry& entry) const noexcept;
};
