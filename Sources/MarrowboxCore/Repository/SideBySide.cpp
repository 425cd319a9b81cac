#include "Repository/SideBySide.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace marrowbox {

namespace {

/// Chunks in a ring, filled in order and taken in order by each of two takers.
class ChunkRing {
  public:
    ChunkRing(const ChunkSource& source, std::size_t chunkSize) : source_(source), chunkSize_(chunkSize) {
        for (auto& chunk : chunks_)
            chunk.bytes = std::make_unique_for_overwrite<char[]>(chunkSize);
    }

    /// Gives every chunk to one of the takers, until the end or a failure of either.
    void serve(std::size_t taker, const ChunkTaker& take) noexcept {
        try {
            while (const auto chunk = next(taker)) {
                take(*chunk);
                advance(taker);
            }
        } catch (...) {
            fail(std::current_exception());
        }
    }

    void rethrowFailure() const {
        if (failure_)
            std::rethrow_exception(failure_);
    }

  private:
    struct Chunk {
        std::unique_ptr<char[]> bytes;
        std::size_t size = 0;
    };

    std::uint64_t slowest() const { return std::min(taken_[0], taken_[1]); }
    bool canRead() const { return !isReading_ && !hasEnded_ && filled_ - slowest() < chunks_.size(); }

    std::optional<std::string_view> next(std::size_t taker) {
        std::unique_lock lock(mutex_);
        while (true) {
            changed_.wait(lock,
                          [&] { return failure_ || taken_[taker] < filled_ || hasEnded_ || canRead(); });
            if (failure_)
                return std::nullopt;
            if (taken_[taker] < filled_)
                return view(taken_[taker]);
            if (hasEnded_)
                return std::nullopt;
            read(lock);
        }
    }

    /// Fills the next chunk without holding the lock.
    void read(std::unique_lock<std::mutex>& lock) {
        isReading_ = true;
        Chunk& chunk = chunks_[filled_ % chunks_.size()];
        lock.unlock();
        const std::size_t size = source_({chunk.bytes.get(), chunkSize_});
        lock.lock();
        isReading_ = false;
        chunk.size = size;
        hasEnded_ = size == 0;
        if (!hasEnded_)
            ++filled_;
        changed_.notify_all();
    }

    std::string_view view(std::uint64_t position) const {
        const Chunk& chunk = chunks_[position % chunks_.size()];
        return {chunk.bytes.get(), chunk.size};
    }

    void advance(std::size_t taker) {
        const std::scoped_lock lock(mutex_);
        ++taken_[taker];
        changed_.notify_all();
    }

    void fail(std::exception_ptr failure) {
        const std::scoped_lock lock(mutex_);
        if (!failure_)
            failure_ = std::move(failure);
        changed_.notify_all();
    }

    const ChunkSource& source_;
    const std::size_t chunkSize_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Chunk, 4> chunks_;
    std::uint64_t filled_ = 0;
    std::array<std::uint64_t, 2> taken_{};
    bool isReading_ = false;
    bool hasEnded_ = false;
    std::exception_ptr failure_;
};

} // namespace

void readForTwo(const ChunkSource& source, std::size_t chunkSize, const ChunkTaker& first,
                const ChunkTaker& second) {
    ChunkRing ring(source, chunkSize);
    {
        const std::jthread other([&] { ring.serve(1, second); });
        ring.serve(0, first);
    }
    ring.rethrowFailure();
}

} // namespace marrowbox
