#pragma once

#include "Platform/Descriptor.h"

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

namespace marrowbox {

/// Writes filled buffers to the end of a file on a thread of its own, in their order, while its owner fills
/// the next: what is written takes the longer of the two and not their sum. The system begins at once to
/// bring each buffer to its storage. Where no thread can be had, its owner's writes. For one thread to use;
/// the file must stay open meanwhile.
class FollowingWriter {
  public:
    FollowingWriter(const Descriptor& file, std::size_t bufferSize);
    FollowingWriter(const FollowingWriter&) = delete;
    FollowingWriter& operator=(const FollowingWriter&) = delete;
    /// Ends without what was handed over and not yet begun.
    ~FollowingWriter();

    /// Hands over the first bytes of a buffer, of the given size at least, and gives back another; waits
    /// while the one handed over before is still to be begun. Throws what went wrong with an earlier one.
    std::unique_ptr<char[]> exchange(std::unique_ptr<char[]> buffer, std::size_t count);
    /// Waits until all is in the file. Throws what went wrong; nothing may be handed over afterwards.
    void finish();

  private:
    struct Filled {
        std::unique_ptr<char[]> bytes;
        std::size_t count = 0;
    };
    void follow() noexcept;
    void write(std::string_view bytes);
    void end(std::unique_lock<std::mutex> lock);

    const Descriptor& file_;
    std::size_t bufferSize_;
    std::size_t written_ = 0; ///< Of the thread that writes.
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Filled> next_;
    std::vector<std::unique_ptr<char[]>> spares_;
    bool isEnding_ = false;
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace marrowbox
