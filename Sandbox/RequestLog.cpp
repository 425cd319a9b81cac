#include "Sandbox/RequestLog.h"

#include <algorithm>

namespace marrowbox::sandbox {

std::vector<RecordedRequest> RequestLog::all() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<RecordedRequest> RequestLog::matching(const RequestMatch& match) const {
    const std::lock_guard lock(mutex_);
    std::vector<RecordedRequest> found;
    std::copy_if(requests_.begin(), requests_.end(), std::back_inserter(found), match);
    return found;
}

std::size_t RequestLog::count(const RequestMatch& match) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count_if(requests_.begin(), requests_.end(), match));
}

std::vector<std::string> RequestLog::lines() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> lines;
    for (const RecordedRequest& request : requests_)
        lines.push_back(request.method + " " + request.path);
    return lines;
}

void RequestLog::clear() {
    const std::lock_guard lock(mutex_);
    cleared_ += requests_.size();
    requests_.clear();
}

bool RequestLog::waitFor(const RequestMatch& match, std::size_t count, std::chrono::seconds limit) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] {
        return static_cast<std::size_t>(std::count_if(requests_.begin(), requests_.end(), match)) >= count;
    });
}

bool RequestLog::waitForClosedConnections(std::size_t count, std::chrono::seconds limit) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return closedConnections_ >= count; });
}

std::size_t RequestLog::connectionCount() const {
    const std::lock_guard lock(mutex_);
    return connections_;
}

std::vector<std::string> RequestLog::refusedHosts() const {
    const std::lock_guard lock(mutex_);
    return refusedHosts_;
}

std::size_t RequestLog::begin(RecordedRequest request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
    changed_.notify_all();
    return cleared_ + requests_.size() - 1;
}

void RequestLog::finish(std::size_t token, unsigned status) {
    const std::lock_guard lock(mutex_);
    if (token >= cleared_)
        requests_[token - cleared_].status = status;
    changed_.notify_all();
}

std::size_t RequestLog::connectionOpened() {
    const std::lock_guard lock(mutex_);
    return ++connections_;
}

void RequestLog::connectionClosed() {
    const std::lock_guard lock(mutex_);
    ++closedConnections_;
    changed_.notify_all();
}

void RequestLog::hostRefused(std::string host) {
    const std::lock_guard lock(mutex_);
    refusedHosts_.push_back(std::move(host));
}

} // namespace marrowbox::sandbox
