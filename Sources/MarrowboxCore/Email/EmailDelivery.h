#pragma once

#include "Email/EmailMessage.h"
#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/HTTP.h"
#include "Models/EmailSettings.h"
#include "Models/GoogleAccount.h"
#include "Platform/Clock.h"
#include "Platform/Formats.h"

#include <cstdint>
#include <memory>
#include <stop_token>
#include <vector>

namespace marrowbox {

/// Sends mails through the Gmail API. It knows nothing of what a run record keeps about its mail. A value;
/// any executor; what it needs lives as long as its sends do.
///
/// A send throws BackupError when the settings, the account or its grant do not allow it, before anything
/// goes out. Failures of the token, of the network and CancellationError pass through unchanged. A message is
/// sent once; trying again is the caller's business.
struct EmailDelivery {
    std::shared_ptr<const GoogleAuth> auth; ///< Without one, every send is refused.
    HTTP http;
    Formats formats; ///< For the mail about a run.
    Clock clock;

    /// Sends to the recipient of the settings, as their account. The id names the message.
    asio::awaitable<void> send(EmailMessage message, Uuid id, EmailSettings settings,
                               std::vector<GoogleAccount> accounts, std::stop_token stop) const;
    /// Sends the mail about a run, named by the run's id.
    asio::awaitable<void> send(RunRecord run, EmailSettings settings, std::vector<GoogleAccount> accounts,
                               std::stop_token stop) const;

    /// How many seconds to wait after that many failed attempts: two minutes, then twice as long each time,
    /// and six hours from the ninth on.
    static double backOff(std::int64_t attempts);
};

} // namespace marrowbox
