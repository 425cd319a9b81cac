#pragma once

#include <string>

namespace marrowbox {

/// Bytes without meaning as text; Base64 in JSON.
struct ByteString {
    std::string bytes;

    friend bool operator==(const ByteString&, const ByteString&) = default;
};

} // namespace marrowbox
