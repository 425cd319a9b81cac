#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

namespace marrowbox {

/// The failure with the lowest index among those of many calls.
struct FirstFailure {
    std::size_t index = 0;
    std::exception_ptr failure;
};

/// Threads for work on many files, which alternates between the processor and waiting for storage. They begin
/// with the first work and end with the object. Where the machine has room for few or none, they are few, or
/// the caller's own does it all.
class ParallelWork {
  public:
    ParallelWork();
    ParallelWork(const ParallelWork&) = delete;
    ParallelWork& operator=(const ParallelWork&) = delete;
    ~ParallelWork();

    /// Calls work(0) to work(count - 1), in about this order, on several threads, and returns when all calls
    /// have returned. Every index below that of a failure was called; those behind it may be left out. One
    /// caller at a time.
    [[nodiscard]] std::optional<FirstFailure> forEach(std::size_t count,
                                                      const std::function<void(std::size_t)>& work);
    /// The same for light work on many items: calls work(begin, end) for piece after piece of a range. Of
    /// the failures, that of the piece with the lowest index is given.
    [[nodiscard]] std::optional<FirstFailure>
    forEachPiece(std::size_t count, const std::function<void(std::size_t, std::size_t)>& work);

  private:
    class Threads;
    std::unique_ptr<Threads> threads_;
};

} // namespace marrowbox
