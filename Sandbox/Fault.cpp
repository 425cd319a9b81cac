#include "Sandbox/Fault.h"

#include <limits>

namespace marrowbox::sandbox {

namespace {

/// Puts a member first into a JSON object, or replaces it there.
std::string withFirstMember(std::string object, const std::string& member) {
    const std::size_t brace = object.find('{');
    if (brace != std::string::npos)
        object.insert(brace + 1, member + ",");
    return object;
}

template <typename Value>
void takeOver(std::optional<Value>& mine, const std::optional<Value>& other) {
    if (other)
        mine = other;
}

} // namespace

void FaultEffects::add(const FaultEffects& other) {
    hooks.insert(hooks.end(), other.hooks.begin(), other.hooks.end());
    bodyEdits.insert(bodyEdits.end(), other.bodyEdits.begin(), other.bodyEdits.end());
    headers.insert(headers.end(), other.headers.begin(), other.headers.end());
    latency += other.latency;
    cutsBeforeAnswer = cutsBeforeAnswer || other.cutsBeforeAnswer;
    chunked = chunked || other.chunked;
    if (!other.reason.empty())
        reason = other.reason;
    takeOver(status, other.status);
    takeOver(body, other.body);
    takeOver(shortenedTo, other.shortenedTo);
    takeOver(flippedByte, other.flippedByte);
    takeOver(cutAfter, other.cutAfter);
    takeOver(stallAfter, other.stallAfter);
}

Fault Fault::on(RequestMatch match) {
    Fault fault;
    fault.match_ = std::move(match);
    return fault;
}

Fault& Fault::nth(int number) {
    first_ = number;
    return *this;
}

Fault& Fault::times(int count) {
    count_ = count;
    return *this;
}

Fault& Fault::always() {
    return times(std::numeric_limits<int>::max());
}

Fault& Fault::answer(unsigned status) {
    effects_.status = status;
    return *this;
}

Fault& Fault::reason(std::string reason) {
    effects_.reason = std::move(reason);
    return *this;
}

Fault& Fault::retryAfter(std::string value) {
    return header("Retry-After", std::move(value));
}

Fault& Fault::header(std::string name, std::string value) {
    effects_.headers.emplace_back(std::move(name), std::move(value));
    return *this;
}

Fault& Fault::body(std::string text) {
    effects_.body = std::move(text);
    return *this;
}

Fault& Fault::editBody(std::function<std::string(std::string)> edit) {
    effects_.bodyEdits.push_back(std::move(edit));
    return *this;
}

Fault& Fault::incompleteSearch() {
    return editBody([](std::string page) {
        const std::string told = "\"incompleteSearch\":false";
        if (const std::size_t place = page.find(told); place != std::string::npos)
            return page.replace(place, told.size(), "\"incompleteSearch\":true");
        return withFirstMember(std::move(page), "\"incompleteSearch\":true");
    });
}

Fault& Fault::endlessPages() {
    return editBody([](std::string page) {
        if (page.find("\"nextPageToken\"") != std::string::npos)
            return page;
        return withFirstMember(std::move(page), "\"nextPageToken\":\"next-0\"");
    });
}

Fault& Fault::latency(std::chrono::milliseconds time) {
    effects_.latency = time;
    return *this;
}

Fault& Fault::cutBeforeAnswer() {
    effects_.cutsBeforeAnswer = true;
    return *this;
}

Fault& Fault::cutAfterBodyBytes(std::int64_t count) {
    effects_.cutAfter = count;
    return *this;
}

Fault& Fault::stallAfterBodyBytes(std::int64_t count) {
    effects_.stallAfter = count;
    return *this;
}

Fault& Fault::shortenBodyTo(std::int64_t count) {
    effects_.shortenedTo = count;
    return *this;
}

Fault& Fault::flipByte(std::int64_t place) {
    effects_.flippedByte = place;
    return *this;
}

Fault& Fault::chunked() {
    effects_.chunked = true;
    return *this;
}

Fault& Fault::refuseDownload() {
    return answer(403).reason("cannotDownloadFile");
}

Fault& Fault::run(std::function<void()> hook) {
    effects_.hooks.push_back(std::move(hook));
    return *this;
}

void FaultScript::inject(Fault fault) {
    const std::lock_guard lock(mutex_);
    faults_.push_back(std::move(fault));
}

void FaultScript::clear() {
    const std::lock_guard lock(mutex_);
    faults_.clear();
}

FaultEffects FaultScript::effectsFor(const RecordedRequest& request) {
    const std::lock_guard lock(mutex_);
    FaultEffects all;
    for (Fault& fault : faults_) {
        if (!fault.match_(request))
            continue;
        ++fault.seen_;
        if (fault.seen_ >= fault.first_ && fault.seen_ - fault.first_ < fault.count_)
            all.add(fault.effects_);
    }
    return all;
}

} // namespace marrowbox::sandbox
