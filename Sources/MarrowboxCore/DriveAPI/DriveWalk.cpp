#include "DriveAPI/DriveWalk.h"

#include "DriveAPI/DriveRequests.h"
#include "Platform/Cancellation.h"

#include <boost/asio/experimental/awaitable_operators.hpp>

namespace marrowbox {

using DriveRequests::FilePage;

namespace {

void append(std::vector<DriveFile>& files, std::vector<DriveFile> page) {
    if (files.empty())
        files = std::move(page);
    else
        std::ranges::move(page, std::back_inserter(files));
}

} // namespace

asio::awaitable<std::vector<SourceEntry>> DriveWalk::run(std::shared_ptr<DriveWalk> self) {
    const DriveFile source = co_await self->api_.file(self->source_.id, self->stop_);
    self->tree_.emplace(self->source_, source);
    Page first;
    for (;;) {
        throwIfCancelled(self->stop_);
        std::optional<DriveLocation> folder = self->tree_->nextFolder();
        if (!folder)
            co_return self->tree_->finish();
        Page ahead = co_await list(self, std::move(*folder), std::move(first));
        first = std::move(ahead);
    }
}

/// Lists one folder, whose first page may have come already. Gives that of the next one where it came
/// meanwhile.
asio::awaitable<DriveWalk::Page> DriveWalk::list(std::shared_ptr<DriveWalk> self, DriveLocation folder,
                                                 Page first) {
    DriveRequests::Query query = DriveRequests::childrenQuery(folder, DriveItems::all);
    std::vector<DriveFile> files;
    std::string body;
    if (first)
        body = std::move(*first);
    else
        body = co_await DriveRequests::fetch(self->api_, "files", query, self->stop_);
    for (;;) {
        std::optional<DriveLocation> upcoming = self->tree_->upcomingFolder();
        if (upcoming && DriveRequests::isSurelyLast(body)) {
            Page ahead =
                co_await addWhileFetching(self, std::move(*upcoming), std::move(files), std::move(body));
            co_return ahead;
        }
        FilePage page = DriveRequests::filePage(body);
        append(files, std::move(page.files));
        if (!page.nextPageToken)
            break;
        query["pageToken"] = std::move(*page.nextPageToken);
        body = co_await DriveRequests::fetch(self->api_, "files", query, self->stop_);
    }
    self->tree_->add(std::move(files));
    co_return std::nullopt;
}

asio::awaitable<DriveWalk::Page> DriveWalk::addWhileFetching(std::shared_ptr<DriveWalk> self,
                                                             DriveLocation upcoming,
                                                             std::vector<DriveFile> files, std::string last) {
    using namespace asio::experimental::awaitable_operators;
    throwIfCancelled(self->stop_);
    std::stop_source ending;
    const std::stop_callback onStop(self->stop_, [ending]() mutable { ending.request_stop(); });
    auto fetching = fetchAhead(self, std::move(upcoming), ending.get_token());
    auto adding = add(self, std::move(files), std::move(last), ending);
    auto [ahead, refusal] = co_await (std::move(fetching) && std::move(adding));
    // What the folder itself is refused for comes first.
    if (refusal)
        std::rethrow_exception(refusal);
    if (ahead.failure)
        std::rethrow_exception(ahead.failure);
    co_return std::move(ahead.body);
}

asio::awaitable<DriveWalk::Ahead> DriveWalk::fetchAhead(std::shared_ptr<DriveWalk> self, DriveLocation folder,
                                                        std::stop_token stop) {
    Ahead ahead;
    try {
        auto query = DriveRequests::childrenQuery(folder, DriveItems::all);
        ahead.body = co_await DriveRequests::fetch(self->api_, "files", std::move(query), std::move(stop));
    } catch (...) {
        ahead.failure = std::current_exception();
    }
    co_return ahead;
}

asio::awaitable<std::exception_ptr> DriveWalk::add(std::shared_ptr<DriveWalk> self,
                                                   std::vector<DriveFile> files, std::string last,
                                                   std::stop_source onFailure) {
    try {
        append(files, DriveRequests::filePage(last).files);
        self->tree_->add(std::move(files));
    } catch (...) {
        onFailure.request_stop();
        co_return std::current_exception();
    }
    co_return nullptr;
}

} // namespace marrowbox
