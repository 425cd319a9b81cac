#pragma once

#include "DriveAPI/DriveAPI.h"
#include "DriveAPI/DriveTree.h"

#include <boost/asio/awaitable.hpp>
#include <exception>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox {

/// One inventory at work. Requests go out strictly one after the other; while the service works on one, the
/// answer before it is turned into entries.
class DriveWalk {
  public:
    DriveWalk(DriveAPI api, DriveLocation of, std::stop_token stop)
        : api_(std::move(api)), source_(std::move(of)), stop_(std::move(stop)) {}

    static asio::awaitable<std::vector<SourceEntry>> run(std::shared_ptr<DriveWalk> self);

  private:
    /// The first page of the next folder, or the failure to fetch it.
    struct Ahead {
        std::string body;
        std::exception_ptr failure;
    };
    using Page = std::optional<std::string>;

    static asio::awaitable<Page> list(std::shared_ptr<DriveWalk> self, DriveLocation folder, Page first);
    static asio::awaitable<Page> addWhileFetching(std::shared_ptr<DriveWalk> self, DriveLocation upcoming,
                                                  std::vector<DriveFile> files, std::string last);
    static asio::awaitable<Ahead> fetchAhead(std::shared_ptr<DriveWalk> self, DriveLocation folder,
                                             std::stop_token stop);
    static asio::awaitable<std::exception_ptr> add(std::shared_ptr<DriveWalk> self,
                                                   std::vector<DriveFile> files, std::string last,
                                                   std::stop_source onFailure);

    DriveAPI api_;
    DriveLocation source_;
    std::stop_token stop_;
    std::optional<DriveTree> tree_;
};

} // namespace marrowbox
