#pragma once

#include "DriveAPI/DriveFile.h"
#include "GoogleOAuth/HTTP.h"
#include "Models/DriveLocation.h"
#include "Models/GoogleAccount.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace marrowbox::test {

/// The Drive of every account, as a service that lists what the test puts into it. A place is named by its
/// id; the list of shared drives is the place "drives".
class ScriptedDrive {
  public:
    explicit ScriptedDrive(asio::io_context& context) : context_(context) {}

    void addSharedDrive(const std::string& id, const std::string& name);
    void addFolder(const std::string& parent, const std::string& id, const std::string& name);
    /// From now on listing this place fails with this sentence; an empty one ends that.
    void fail(const std::string& place, const std::string& sentence);
    /// From now on the answer about this place waits, also when it is no longer wanted, until it is let go.
    void hold(const std::string& place) { held_.insert(place); }
    void letGo(const std::string& place);

    /// Who signs in next, for what was asked of the consent page.
    void signIn(GoogleAccount account) { signingIn_ = std::move(account); }

    /// The places in the order in which they were asked for.
    const std::vector<std::string>& asked() const { return asked_; }

    /// For the web of a StoreWorld; the drive must outlive it.
    HTTPSend web();

  private:
    asio::awaitable<HTTPResponse> answer(std::shared_ptr<const HTTPRequest> request, std::stop_token stop);
    std::string body(const std::string& place) const;
    std::string identity(const std::string& url) const;

    asio::io_context& context_;
    std::vector<DriveLocation> sharedDrives_;
    std::map<std::string, std::vector<DriveFile>> folders_;
    std::map<std::string, std::string> failures_;
    std::set<std::string> held_;
    std::multimap<std::string, std::weak_ptr<asio::steady_timer>> waiting_; ///< Each belongs to its answer.
    std::vector<std::string> asked_;
    GoogleAccount signingIn_;
};

} // namespace marrowbox::test
