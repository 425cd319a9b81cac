#include "Marrowbox/SetupViews/DriveBrowser.h"

#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/SetupViews/ScreenWork.h"
#include "Platform/Cancellation.h"

namespace marrowbox {

DriveBrowser::DriveBrowser(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)) {
}

DriveBrowser::~DriveBrowser() {
    listing_.request_stop();
}

void DriveBrowser::browse(std::string accountID) {
    accountID_ = std::move(accountID);
    roots_.clear();
    path_.clear();
    load();
}

void DriveBrowser::stop() {
    listing_.request_stop();
    isLoading_ = false;
    emit changed();
}

std::optional<DriveLocation> DriveBrowser::place() const {
    return path_.empty() ? std::nullopt : std::optional(path_.back());
}

QString DriveBrowser::placeName() const {
    return path_.empty() ? QString() : QString::fromStdString(path_.back().name);
}

bool DriveBrowser::hasNoSubfolders() const {
    return !isAtRoots() && !isLoading_ && !hasFailed_ && locations_.rowCount() == 0;
}

void DriveBrowser::open(int row) {
    if (!locations_.has(row))
        return;
    path_.push_back(locations_.at(row));
    load();
}

void DriveBrowser::goBack() {
    if (path_.empty())
        return;
    path_.pop_back();
    if (isAtRoots())
        showRoots();
    else
        load();
}

void DriveBrowser::reload() {
    load();
}

void DriveBrowser::load() {
    listing_.request_stop();
    locations_.set({});
    hasFailed_ = false;
    isLoading_ = !accountID_.empty();
    emit listing();
    if (const auto auth = *store_->state().auth; isLoading_ && auth) {
        listing_ = {};
        startScreenWork(store_->surroundings().main,
                        list(this, {auth, accountID_}, place(), listing_.get_token()));
        emit changed();
    } else if (isLoading_) {
        take({.issue = "This build does not include a Google OAuth client."});
    } else {
        emit changed();
    }
}

// They were listed when the account was chosen.
void DriveBrowser::showRoots() {
    listing_.request_stop();
    hasFailed_ = false;
    isLoading_ = false;
    locations_.set(roots_);
    emit listing();
    emit changed();
}

asio::awaitable<void> DriveBrowser::list(QPointer<DriveBrowser> self, DriveAPI api,
                                         std::optional<DriveLocation> in, std::stop_token stop) {
    Outcome outcome;
    try {
        auto work = in ? api.folders(*in, stop) : api.roots(stop);
        outcome.locations = co_await std::move(work);
    } catch (const CancellationError&) { // nothing was found, and nothing is to be told
    } catch (const std::exception& failure) {
        outcome.issue = words(failure);
    }
    if (self && !stop.stop_requested())
        self->take(std::move(outcome));
}

void DriveBrowser::take(Outcome outcome) {
    isLoading_ = false;
    hasFailed_ = outcome.issue.has_value();
    locations_.set(std::move(outcome.locations));
    if (isAtRoots())
        roots_ = locations_.all();
    emit changed();
    if (outcome.issue)
        emit failed(QString::fromStdString(*outcome.issue));
}

} // namespace marrowbox
