#pragma once

#include "DriveAPI/DriveRequests.h"

#include <boost/unordered/unordered_flat_set.hpp>
#include <string>
#include <string_view>

namespace marrowbox {

/// The pages of one listing in their order. A service that goes round in its pages, or gives one after the
/// other with nothing on it, would hold a listing up for ever; it is told from one that has much to list.
/// Remembers two short texts a page, and nothing for a listing of a single page. Not safe to share between
/// threads.
class PageSequence {
  public:
    /// How many pages with nothing on them a listing may have one after the other; the service may give some.
    static constexpr int emptyPagesInARow = 1000;

    /// Takes the page that came next. Throws BackupError when what is said to follow has been before.
    void add(const DriveRequests::FilePage& page);
    void add(const DriveRequests::DrivePage& page);

  private:
    void goOn(const std::string& token, std::string_view firstItem);

    boost::unordered_flat_set<std::string> tokens_;
    boost::unordered_flat_set<std::string> firstItems_;
    int emptyPages_ = 0;
};

} // namespace marrowbox
