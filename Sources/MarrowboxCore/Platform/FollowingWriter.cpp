#include "Platform/FollowingWriter.h"

#include "Platform/Files.h"

namespace marrowbox {

FollowingWriter::FollowingWriter(const Descriptor& file, std::size_t bufferSize)
    : file_(file), bufferSize_(bufferSize), thread_([this] { follow(); }) {
}

FollowingWriter::~FollowingWriter() {
    std::unique_lock lock(mutex_);
    next_.reset();
    end(std::move(lock));
}

std::unique_ptr<char[]> FollowingWriter::exchange(std::unique_ptr<char[]> buffer, std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !next_ || failure_; });
    if (failure_)
        std::rethrow_exception(failure_);
    next_ = Filled{std::move(buffer), count};
    changed_.notify_all();
    if (spares_.empty())
        return std::make_unique_for_overwrite<char[]>(bufferSize_);
    auto spare = std::move(spares_.back());
    spares_.pop_back();
    return spare;
}

void FollowingWriter::finish() {
    end(std::unique_lock(mutex_));
    if (failure_)
        std::rethrow_exception(failure_);
}

void FollowingWriter::end(std::unique_lock<std::mutex> lock) {
    isEnding_ = true;
    lock.unlock();
    changed_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

void FollowingWriter::follow() noexcept {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return next_ || isEnding_; });
        if (!next_)
            return;
        Filled filled = std::move(*next_);
        next_.reset();
        changed_.notify_all();
        lock.unlock();
        std::exception_ptr failure;
        try {
            write(filled);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        spares_.push_back(std::move(filled.bytes));
        if (failure) {
            failure_ = std::move(failure);
            changed_.notify_all();
            return;
        }
    }
}

void FollowingWriter::write(const Filled& filled) {
    writeAll(file_, {filled.bytes.get(), filled.count});
    startWriting(file_, written_, filled.count);
    written_ += filled.count;
}

} // namespace marrowbox
