#pragma once

#include "DriveAPI/DriveAPI.h"
#include "DriveAPI/DriveTree.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

namespace marrowbox {

/// One inventory at work. Requests go out strictly one after the other. While the service works on one, the
/// answer before it is turned into entries and the request behind it is made ready, so that the service never
/// waits for either.
class DriveWalk {
  public:
    DriveWalk(DriveAPI api, DriveLocation of, std::stop_token stop)
        : api_(std::move(api)), source_(std::move(of)), stop_(std::move(stop)) {}

    static asio::awaitable<std::vector<SourceEntry>> run(std::shared_ptr<DriveWalk> self);

  private:
    struct Fetch;

    static asio::awaitable<std::vector<SourceEntry>> walk(std::shared_ptr<DriveWalk> self);
    static asio::awaitable<void> list(std::shared_ptr<DriveWalk> self, DriveLocation folder);
    static asio::awaitable<void> askFurther(std::shared_ptr<DriveWalk> self);
    static asio::awaitable<void> dropAhead(std::shared_ptr<DriveWalk> self);
    void ask(DriveLocation folder, std::shared_ptr<HTTPTurn> after);
    void makeReady(std::size_t count);

    DriveAPI api_;
    DriveLocation source_;
    std::stop_token stop_;
    asio::any_io_executor executor_;
    std::optional<DriveTree> tree_;
    std::deque<std::shared_ptr<Fetch>> ahead_; ///< What is asked for, in order, and not yet received.
    std::shared_ptr<HTTPTurn> latestTurn_;     ///< Of what was asked for last.
};

} // namespace marrowbox
