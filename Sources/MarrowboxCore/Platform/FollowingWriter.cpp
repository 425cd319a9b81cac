#include "Platform/FollowingWriter.h"

#include "Platform/Files.h"

#include <system_error>

namespace marrowbox {

namespace {

/// Beside the buffer that its owner fills, and those that are handed over or being written.
constexpr std::size_t mostSpares = 2;

} // namespace

FollowingWriter::FollowingWriter(const Descriptor& file, std::size_t bufferSize)
    : file_(file), bufferSize_(bufferSize) {
    spares_.reserve(mostSpares); // the thread could not tell anybody that there is no memory
    try {
        thread_ = std::thread([this] { follow(); });
    } catch (const std::system_error&) { // a machine without room for a thread can still write
    }
}

FollowingWriter::~FollowingWriter() {
    std::unique_lock lock(mutex_);
    next_.reset();
    end(std::move(lock));
}

std::unique_ptr<char[]> FollowingWriter::exchange(std::unique_ptr<char[]> buffer, std::size_t count) {
    if (!thread_.joinable()) {
        write({buffer.get(), count});
        return buffer;
    }
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
            write({filled.bytes.get(), filled.count});
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

void FollowingWriter::write(std::string_view bytes) {
    writeAll(file_, bytes);
    startWriting(file_, written_, bytes.size());
    written_ += bytes.size();
}

} // namespace marrowbox
