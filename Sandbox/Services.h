#pragma once

#include "Sandbox/Answer.h"
#include "Sandbox/Drive.h"
#include "Sandbox/Identity.h"
#include "Sandbox/RecordedRequest.h"

#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::sandbox {

/// A message that was handed to the mail service.
struct SentMail {
    /// The sub of the account that sent it.
    std::string account;
    /// The message as it would go out.
    std::string mime;
};

/// All the services of all accounts, each reached by its host. Any thread.
class Services {
  public:
    Services(ClientIdentity client, Clock clock) : identity_(std::move(client), std::move(clock)) {}

    Identity& identity() { return identity_; }
    Drive& addAccount(Person person);
    /// The Drive of an account; of the first one without a sub. Throws std::out_of_range.
    Drive& drive(std::string_view sub = {});
    std::vector<SentMail> mail() const;

    static bool serves(std::string_view host);
    Answer answer(const RecordedRequest& request);

  private:
    Answer driveRequest(const RecordedRequest& request);
    Answer mailRequest(const RecordedRequest& request);

    struct Account {
        std::string sub;
        Drive drive;
        Account(std::string who, const std::string& idPrefix) : sub(std::move(who)), drive(idPrefix) {}
    };
    Identity identity_;
    mutable std::mutex mutex_;
    std::deque<Account> accounts_; // grows at its end, so that a Drive keeps its place
    std::vector<SentMail> mail_;
};

} // namespace marrowbox::sandbox
