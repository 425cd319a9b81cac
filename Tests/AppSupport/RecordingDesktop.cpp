#include "AppSupport/RecordingDesktop.h"

#include "Models/BackupError.h"

#include <algorithm>
#include <boost/asio/as_tuple.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cassert>
#include <utility>

namespace marrowbox::test {

struct RecordingDesktop::Memory {
    std::vector<std::string> calls;
    std::vector<std::string> activities;

    void add(std::string_view name, std::string_view what = {}) {
        calls.push_back(what.empty() ? std::string(name) : std::string(name) + ' ' + std::string(what));
    }
};

class RecordingDesktop::RecordedActivity : public Activity {
  public:
    RecordedActivity(std::shared_ptr<Memory> memory, std::string reason)
        : memory_(std::move(memory)), reason_(std::move(reason)) {
        memory_->add("beginActivity", reason_);
        memory_->activities.push_back(reason_);
    }
    ~RecordedActivity() override {
        memory_->add("endActivity", reason_);
        memory_->activities.erase(std::ranges::find(memory_->activities, reason_));
    }

  private:
    std::shared_ptr<Memory> memory_;
    std::string reason_;
};

namespace {

const std::string madeHere = "bookmark of ";

void throwIfSet(const std::exception_ptr& failure) {
    if (failure)
        std::rethrow_exception(failure);
}

void call(const std::function<void()>& event) {
    if (event)
        event();
}

} // namespace

RecordingDesktop::RecordingDesktop() : memory_(std::make_shared<Memory>()) {
}

RecordingDesktop::~RecordingDesktop() = default;

const std::vector<std::string>& RecordingDesktop::calls() const {
    return memory_->calls;
}

std::size_t RecordingDesktop::count(std::string_view name) const {
    const auto isNamed = [&](std::string_view call) { return call.substr(0, call.find(' ')) == name; };
    return static_cast<std::size_t>(std::ranges::count_if(memory_->calls, isNamed));
}

void RecordingDesktop::forget() {
    memory_->calls.clear();
}

const std::vector<std::string>& RecordingDesktop::activities() const {
    return memory_->activities;
}

ByteString RecordingDesktop::bookmark(const fs::path& folder) {
    return {madeHere + folder.string()};
}

void RecordingDesktop::choose(std::optional<fs::path> answer) {
    answers_.push_back(std::move(answer));
    if (const auto open = open_.lock())
        open->cancel();
}

bool RecordingDesktop::isChoosing() const {
    return !open_.expired();
}

void RecordingDesktop::wake() const {
    call(events_.machineWoke);
}

void RecordingDesktop::makeVolumeAppear() const {
    call(events_.volumeAppeared);
}

void RecordingDesktop::takeVolumeAway() const {
    call(events_.volumeWentAway);
}

LoginItemStatus RecordingDesktop::loginItemStatus() {
    memory_->add("loginItemStatus");
    throwIfSet(statusFailure);
    return loginItem;
}

void RecordingDesktop::registerLoginItem() {
    memory_->add("registerLoginItem");
    throwIfSet(registrationFailure);
    loginItem = registered;
}

void RecordingDesktop::unregisterLoginItem() {
    memory_->add("unregisterLoginItem");
    throwIfSet(registrationFailure);
    loginItem = LoginItemStatus::disabled;
}

void RecordingDesktop::openLoginItemSettings() {
    memory_->add("openLoginItemSettings");
}

std::unique_ptr<Activity> RecordingDesktop::beginActivity(std::string reason) {
    return std::make_unique<RecordedActivity>(memory_, std::move(reason));
}

void RecordingDesktop::observe(DesktopEvents events) {
    memory_->add("observe");
    events_ = std::move(events);
}

asio::awaitable<std::optional<fs::path>> RecordingDesktop::chooseJSONFile(std::string message) {
    memory_->add("chooseJSONFile", message);
    return nextAnswer();
}

asio::awaitable<std::optional<fs::path>> RecordingDesktop::chooseFolder(std::string message) {
    memory_->add("chooseFolder", message);
    return nextAnswer();
}

asio::awaitable<std::optional<fs::path>> RecordingDesktop::nextAnswer() {
    assert(open_.expired() && "the user looks at one chooser at a time");
    if (answers_.empty()) {
        auto timer = std::make_shared<asio::steady_timer>(co_await asio::this_coro::executor);
        timer->expires_at(asio::steady_timer::time_point::max());
        open_ = timer;
        co_await timer->async_wait(asio::as_tuple(asio::use_awaitable));
        open_.reset();
    }
    auto answer = std::move(answers_.front());
    answers_.pop_front();
    co_return answer;
}

bool RecordingDesktop::openPage(const std::string& address) {
    memory_->add("openPage", address);
    return opensPages;
}

void RecordingDesktop::openFolder(const fs::path& folder) {
    memory_->add("openFolder", folder.string());
}

ByteString RecordingDesktop::makeBookmark(const fs::path& folder) {
    memory_->add("makeBookmark", folder.string());
    throwIfSet(makingFailure);
    return bookmark(folder);
}

ResolvedBookmark RecordingDesktop::resolveBookmark(const ByteString& bookmark) {
    memory_->add("resolveBookmark", bookmark.bytes);
    if (const auto failure = resolutionFailures.find(bookmark.bytes); failure != resolutionFailures.end())
        std::rethrow_exception(failure->second);
    if (const auto known = resolutions.find(bookmark.bytes); known != resolutions.end())
        return known->second;
    if (!bookmark.bytes.starts_with(madeHere))
        throw BackupError("This bookmark was not made by the test.");
    return {.path = bookmark.bytes.substr(madeHere.size())};
}

} // namespace marrowbox::test
