#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Models/EmailDefaults.h"
#include "Platform/Cancellation.h"

#include <algorithm>

namespace marrowbox {

namespace {

std::string credentialName(const std::string& accountID) {
    return "google." + accountID;
}

/// The names of the stored credentials; absent when the store cannot tell at the moment.
std::optional<std::set<std::string>> credentialsIn(const AppCredentials& store) {
    try {
        return store.keys();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

bool isInUse(const AppConfiguration& configuration, const std::string& accountID) {
    return configuration.email.accountID == accountID ||
           std::ranges::find(configuration.units, accountID, &SyncUnit::accountID) !=
               configuration.units.end();
}

void addOrReplace(std::vector<GoogleAccount>& accounts, const GoogleAccount& account) {
    const auto known = std::ranges::find(accounts, account.id, &GoogleAccount::id);
    if (known != accounts.end())
        *known = account;
    else
        accounts.push_back(account);
}

} // namespace

void AppStore::connect(bool email, std::optional<GoogleAccount> account) {
    if (!*state_.auth)
        return importClient();
    if (*state_.isConnecting)
        return;
    state_.isConnecting.set(true);
    signInTask_.emplace();
    spawn(signIn(email, std::move(account), signInTask_->get_token()));
}

void AppStore::cancelSignIn() {
    if (signInTask_)
        signInTask_->request_stop();
}

asio::awaitable<void> AppStore::signIn(bool email, std::optional<GoogleAccount> account,
                                       std::stop_token stop) {
    const auto auth = *state_.auth;
    SignInRequest request{.client = auth->client(), .sendEmail = email};
    if (account) {
        // Signing in again never drops a permission that the account holds.
        request.sendEmail = email || account->canSendEmail;
        request.hint = account->email;
    }
    try {
        requireWritable();
        const OAuthToken token = co_await googleSignIn_.authorize(request, stop);
        const GoogleAccount signedIn = co_await auth->save(token, stop);
        addAccount(signedIn, email);
        persist();
        refreshCredentialAvailability();
    } catch (const CancellationError&) { // the user who cancels needs no message
    } catch (const std::exception& failure) {
        report(failure);
    }
    signInTask_.reset();
    state_.isConnecting.set(false);
}

void AppStore::addAccount(const GoogleAccount& account, bool email) {
    state_.configuration.change([&](AppConfiguration& current) {
        const auto order = current.accounts.empty() ? EmailDefaults::AccountOrder::first
                                                    : EmailDefaults::AccountOrder::later;
        addOrReplace(current.accounts, account);
        if (current.email.recipient.empty())
            current.email.recipient = account.email;
        if (email && account.canSendEmail)
            current.email.accountID = account.id;
        if (const auto settings = EmailDefaults::applying(current.email, account, order))
            current.email = *settings;
    });
}

void AppStore::removeAccount(const GoogleAccount& account) {
    const std::string id = account.id;
    if (isInUse(*state_.configuration, id)) {
        state_.errorMessage.set("Remove this account’s backups and choose another notification sender before "
                                "disconnecting it.");
        return;
    }
    try {
        requireWritable();
        credentials_.remove(credentialName(id));
        state_.configuration.change([&](AppConfiguration& current) {
            std::erase_if(current.accounts, [&](const GoogleAccount& known) { return known.id == id; });
        });
        persist();
        refreshCredentialAvailability();
    } catch (const std::exception& failure) {
        report(failure);
    }
}

void AppStore::refreshCredentialAvailability() {
    const std::set<std::string>& known = *state_.availableCredentials;
    const std::vector<GoogleAccount>& accounts = state_.configuration->accounts;
    const auto stored = accounts.empty() ? std::nullopt : credentialsIn(credentials_);
    std::set<std::string> available;
    for (const GoogleAccount& account : accounts)
        // A store that cannot be read for a moment says nothing about its accounts: what was known stands.
        if (stored ? stored->contains(credentialName(account.id)) : known.contains(account.id))
            available.insert(account.id);
    if (available != known) // publishing redraws the screens, and this runs every 30 seconds
        state_.availableCredentials.set(std::move(available));
}

void AppStore::setLogin(bool enabled) {
    try {
        if (enabled)
            around_.desktop.registerLoginItem();
        else
            around_.desktop.unregisterLoginItem();
        readLoginItem();
    } catch (const std::exception& failure) {
        state_.errorMessage.set("Could not change start at login: " + words(failure));
        return;
    }
    if (*state_.loginRequiresApproval)
        around_.desktop.openLoginItemSettings();
}

} // namespace marrowbox
