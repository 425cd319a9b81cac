#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace marrowbox::sandbox {

/// The bytes of a file: given, or computed from a seed, so that a file of any size needs no memory. A small
/// value; any thread.
class Content {
  public:
    /// No bytes.
    Content() = default;
    /// Exactly these bytes.
    Content(std::string bytes);
    Content(const char* text) : Content(std::string(text)) {}
    /// Bytes without repetition that depend on the seed alone; a longer content of one seed begins with the
    /// shorter one.
    static Content pattern(std::uint64_t seed, std::int64_t size);

    std::int64_t size() const { return size_; }
    /// Fills the span from this offset on; both lie inside the content.
    void read(std::int64_t offset, std::span<char> into) const;
    /// All the bytes.
    std::string bytes() const;
    /// Lower-case hexadecimal MD5 of the bytes, computed by every call.
    std::string md5() const;

  private:
    std::int64_t size_ = 0;
    std::uint64_t seed_ = 0;
    std::shared_ptr<const std::string> given_; // absent for a pattern
};

} // namespace marrowbox::sandbox
