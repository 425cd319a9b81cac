#pragma once

#include "Sandbox/DriveItem.h"
#include "Sandbox/FieldMask.h"

#include <string>

namespace marrowbox::sandbox {

/// Writes items as JSON with the members that a mask wants. Made once a request.
class ItemRendering {
  public:
    /// The prefix is where items stand in the answer: "" or "files/".
    ItemRendering(const FieldMask& mask, const std::string& prefix);

    void append(std::string& to, const DriveItem& item) const;

  private:
    bool kind_, id_, name_, mimeType_, version_, modifiedTime_, createdTime_, size_, md5Checksum_, trashed_,
        driveId_, capabilities_, parents_, exportLinks_, webViewLink_;
};

} // namespace marrowbox::sandbox
