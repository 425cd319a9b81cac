#pragma once

#include "Platform/Descriptor.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace marrowbox {

/// Looks ahead in a file that is read once from where it stands, with room for little more than the look.
class ByteWindow {
  public:
    /// The file must outlive the window.
    explicit ByteWindow(const Descriptor& file);

    /// The next bytes, fewer than the count only at the end of the file. Valid until the next call. Throws
    /// std::system_error.
    std::string_view next(std::size_t count) {
        if (end_ - begin_ < count)
            fetch(count);
        return {buffer_.data() + begin_, std::min(count, end_ - begin_)};
    }
    /// Goes on behind bytes that a look has shown.
    void skip(std::size_t count) { begin_ += count; }

  private:
    void fetch(std::size_t count);

    const Descriptor& file_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

} // namespace marrowbox
