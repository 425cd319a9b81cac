#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/DataFolder.h"
#include "Models/BackupError.h"
#include "Platform/AtomicLeftovers.h"
#include "Platform/HeldFlag.h"
#include "Platform/PlainFile.h"

namespace marrowbox {

namespace {

constexpr const char* importedClientName = "GoogleOAuth.json";

} // namespace

void AppStore::loadClientAtStart() {
    const bool importedIsInForce = state_.configuration->usesImportedClient;
    const fs::path imported = dataDirectory_ / importedClientName;
    if (importedIsInForce && fs::exists(imported)) {
        DataFolder::refuseForeignFile(imported);
        loadClient(imported);
    } else if (around_.bundledClient) {
        loadClient(*around_.bundledClient);
    } else if (importedIsInForce) {
        state_.configuration.change([](AppConfiguration& current) { current.usesImportedClient = false; });
    }
    removeAtomicLeftovers(imported);
}

void AppStore::loadClient(const fs::path& file) {
    publishClient(OAuthClient::load(file));
}

void AppStore::publishClient(const OAuthClient& client) {
    state_.auth.set(
        std::make_shared<const GoogleAuth>(client, around_.http, credentials_, around_.clock, around_.pool));
    state_.credentialProject.set(client.project_id.value_or("Google Cloud"));
}

void AppStore::importClient() {
    spawn(chooseClient());
}

asio::awaitable<void> AppStore::chooseClient() {
    if (isChoosing_)
        co_return;
    const HeldFlag choosing(isChoosing_);
    const std::optional<fs::path> chosen = co_await around_.desktop.chooseJSONFile(
        "Choose the Desktop OAuth client JSON downloaded from Google Cloud.");
    if (!chosen)
        co_return;
    try {
        adoptClient(*chosen);
    } catch (const std::exception& failure) {
        report(failure);
    }
}

void AppStore::adoptClient(const fs::path& file) {
    requireWritable();
    const OAuthClient client = OAuthClient::load(file);
    const std::string bytes = readAll(openRegularFile(file));
    AtomicFile copy(dataDirectory_ / importedClientName);
    writeAll(copy.descriptor(), bytes);
    synchronize(copy.descriptor(), dataDirectory_ / importedClientName);
    copy.publish();
    state_.configuration.change([](AppConfiguration& current) { current.usesImportedClient = true; });
    persist();
    publishClient(client);
}

void AppStore::useBundledClient() {
    try {
        if (!around_.bundledClient)
            throw BackupError("This build does not include a Google OAuth client.");
        loadClient(*around_.bundledClient);
        state_.configuration.change([](AppConfiguration& current) { current.usesImportedClient = false; });
        persist();
    } catch (const std::exception& failure) {
        report(failure);
    }
}

} // namespace marrowbox
