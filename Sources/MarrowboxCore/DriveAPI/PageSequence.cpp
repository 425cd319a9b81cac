#include "DriveAPI/PageSequence.h"

#include "Models/BackupError.h"

namespace marrowbox {

namespace {

[[noreturn]] void refuse() {
    throw BackupError("Google returned an incomplete folder listing. Please try again.");
}

} // namespace

void PageSequence::add(const DriveRequests::FilePage& page) {
    if (page.nextPageToken)
        goOn(*page.nextPageToken, page.files.empty() ? std::string_view() : page.files.front().id.view());
}

void PageSequence::add(const DriveRequests::DrivePage& page) {
    if (page.nextPageToken)
        goOn(*page.nextPageToken, page.drives.empty() ? std::string_view() : page.drives.front().id);
}

void PageSequence::goOn(const std::string& token, std::string_view firstItem) {
    if (!tokens_.insert(token).second)
        refuse();
    if (firstItem.empty()) {
        if (++emptyPages_ > emptyPagesInARow)
            refuse();
        return;
    }
    emptyPages_ = 0;
    // The same page under ever new tokens: an item stands in a listing once.
    if (!firstItems_.emplace(firstItem).second)
        refuse();
}

} // namespace marrowbox
