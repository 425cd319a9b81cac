#include "DriveAPI/DriveWalk.h"

#include "DriveAPI/DriveRequests.h"
#include "DriveAPI/PageSequence.h"
#include "Platform/Cancellation.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/experimental/concurrent_channel.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <exception>
#include <functional>
#include <string>

namespace marrowbox {

using DriveRequests::FilePage;

namespace {

/// What came of asking for a page.
struct Arrival {
    std::string body;
    std::exception_ptr failure;
};

using Arrivals = asio::experimental::concurrent_channel<void(boost::system::error_code, Arrival)>;

void append(std::vector<DriveFile>& files, std::vector<DriveFile> page) {
    if (files.empty())
        files = std::move(page);
    else
        std::ranges::move(page, std::back_inserter(files));
}

asio::awaitable<std::string> firstPage(DriveAPI api, DriveLocation folder, HTTPOrder order,
                                       std::stop_token stop) {
    DriveRequests::Query query = DriveRequests::childrenQuery(folder, DriveItems::all);
    std::string body = co_await DriveRequests::fetch(std::move(api), "files", std::move(query),
                                                     std::move(order), std::move(stop));
    co_return body;
}

} // namespace

/// The first page of a folder on its way.
struct DriveWalk::Fetch {
    Fetch(const asio::any_io_executor& executor, const std::stop_token& stop)
        : arrivals(executor, 1), onStop(stop, [this] { ending.request_stop(); }) {}

    std::stop_source ending;
    std::shared_ptr<HTTPTurn> turn = std::make_shared<HTTPTurn>(DriveRequests::isSurelyLast);
    Arrivals arrivals;
    std::stop_callback<std::function<void()>> onStop;
};

asio::awaitable<std::vector<SourceEntry>> DriveWalk::run(std::shared_ptr<DriveWalk> self) {
    std::exception_ptr failure;
    std::vector<SourceEntry> entries;
    try {
        entries = co_await walk(self);
    } catch (...) {
        failure = std::current_exception();
    }
    co_await dropAhead(self);
    if (failure)
        std::rethrow_exception(failure);
    co_return entries;
}

asio::awaitable<std::vector<SourceEntry>> DriveWalk::walk(std::shared_ptr<DriveWalk> self) {
    self->executor_ = co_await asio::this_coro::executor;
    const DriveFile source = co_await self->api_.file(self->source_.id, self->stop_);
    self->tree_.emplace(self->source_, source);
    for (;;) {
        throwIfCancelled(self->stop_);
        std::optional<DriveLocation> folder = self->tree_->nextFolder();
        if (!folder)
            co_return self->tree_->finish();
        if (self->ahead_.empty())
            self->ask(*folder, nullptr);
        co_await list(self, std::move(*folder));
    }
}

/// Lists the folder that comes next, which is the first one that was asked for.
asio::awaitable<void> DriveWalk::list(std::shared_ptr<DriveWalk> self, DriveLocation folder) {
    const std::shared_ptr<Fetch> fetch = std::move(self->ahead_.front());
    self->ahead_.pop_front();
    self->makeReady(1);
    Arrival first = co_await fetch->arrivals.async_receive(asio::use_awaitable);
    if (first.failure)
        std::rethrow_exception(first.failure);
    if (!fetch->turn->hasPassed())
        co_await dropAhead(self);
    DriveRequests::Query query = DriveRequests::childrenQuery(folder, DriveItems::all);
    std::vector<DriveFile> files;
    PageSequence pages;
    std::string body = std::move(first.body);
    for (;;) {
        if (DriveRequests::isSurelyLast(body))
            co_await askFurther(self);
        FilePage page = DriveRequests::filePage(body);
        pages.add(page);
        append(files, std::move(page.files));
        if (!page.nextPageToken)
            break;
        query["pageToken"] = std::move(*page.nextPageToken);
        body = co_await DriveRequests::fetch(self->api_, "files", query, self->stop_);
    }
    self->tree_->add(std::move(files));
}

/// Gives the service the next folder to work on, unless the last answer did, and gets the one behind ready.
asio::awaitable<void> DriveWalk::askFurther(std::shared_ptr<DriveWalk> self) {
    throwIfCancelled(self->stop_);
    if (self->ahead_.empty()) {
        std::optional<DriveLocation> upcoming = self->tree_->upcomingFolder(1);
        if (upcoming)
            self->ask(std::move(*upcoming), nullptr);
    }
    self->makeReady(2);
    // They begin before this executor is busy with entries.
    co_await asio::post(asio::use_awaitable);
}

/// Ends what was asked for ahead and waits for its end.
asio::awaitable<void> DriveWalk::dropAhead(std::shared_ptr<DriveWalk> self) {
    for (const auto& fetch : self->ahead_)
        fetch->ending.request_stop();
    while (!self->ahead_.empty()) {
        const std::shared_ptr<Fetch> fetch = std::move(self->ahead_.front());
        self->ahead_.pop_front();
        const Arrival unwanted = co_await fetch->arrivals.async_receive(asio::use_awaitable);
        (void)unwanted;
    }
}

void DriveWalk::ask(DriveLocation folder, std::shared_ptr<HTTPTurn> after) {
    const auto fetch = std::make_shared<Fetch>(executor_, stop_);
    ahead_.push_back(fetch);
    latestTurn_ = fetch->turn;
    HTTPOrder order{.turn = fetch->turn, .after = std::move(after)};
    asio::co_spawn(executor_, firstPage(api_, std::move(folder), std::move(order), fetch->ending.get_token()),
                   [fetch](std::exception_ptr failure, std::string body) {
                       fetch->arrivals.try_send(boost::system::error_code(),
                                                Arrival{std::move(body), std::move(failure)});
                   });
}

/// Has requests stand ready for so many folders behind the one at work, as far as those are known.
void DriveWalk::makeReady(std::size_t count) {
    while (api_.auth->keepsOrder() && ahead_.size() < count) {
        std::optional<DriveLocation> upcoming = tree_->upcomingFolder(ahead_.size() + 1);
        if (!upcoming)
            return;
        ask(std::move(*upcoming), latestTurn_);
    }
}

} // namespace marrowbox
