#pragma once

#include "Models/SharedText.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace marrowbox {

/// The name of a stored object: SHA-256 as 64 lower-case hexadecimal characters. A text of any other form can
/// be held too, since a manifest may say anything; it is not valid and names no object. A valid hash takes 32
/// bytes and no memory of its own.
class ObjectHash {
  public:
    /// Takes any text as it stands.
    explicit ObjectHash(std::string_view text);
    /// From a raw SHA-256 of 32 bytes.
    static ObjectHash ofDigest(std::string_view raw);

    /// Exactly 64 characters, all of them from "0123456789abcdef".
    bool isValid() const noexcept { return value_.index() == 0; }
    /// The text as it was given.
    std::string text() const;
    /// Writes the 64 characters of a valid hash without allocating.
    void writeText(char* to) const noexcept;
    /// The digest's first byte; 0 for an invalid hash.
    std::uint8_t firstByte() const noexcept {
        const auto* bytes = std::get_if<0>(&value_);
        return bytes != nullptr ? bytes->front() : 0;
    }
    /// A number made of the digest's own bytes, good as a table's hash; for an invalid one of its text.
    std::size_t tableHash() const noexcept;

    friend bool operator==(const ObjectHash&, const ObjectHash&) = default;

  private:
    ObjectHash() = default;
    std::variant<std::array<std::uint8_t, 32>, SharedText> value_;
};

} // namespace marrowbox

template <>
struct std::hash<marrowbox::ObjectHash> {
    std::size_t operator()(const marrowbox::ObjectHash& hash) const noexcept { return hash.tableHash(); }
};
