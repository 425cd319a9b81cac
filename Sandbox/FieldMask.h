#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::sandbox {

/// The "fields" parameter: which members of an answer are wanted, such as "nextPageToken,files(id,name)".
class FieldMask {
  public:
    /// Malformed text wants what could be read of it.
    explicit FieldMask(std::string_view text);

    /// Whether a member is wanted, by its path from the top, such as "files/id".
    bool wants(std::string_view path) const;

  private:
    std::vector<std::string> paths_;
};

} // namespace marrowbox::sandbox
