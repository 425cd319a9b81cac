#include "Credentials/AppCredentials.h"

namespace marrowbox {

fs::path credentialDirectory(const Environment& environment) {
    return dataDirectory(environment) / "Credentials";
}

std::optional<std::string> AppCredentials::read(const std::string& key) const {
    return store_.access([&](const CredentialFileStore::Access& held) { return held.read(key); });
}

bool AppCredentials::contains(const std::string& key) const {
    return read(key).has_value();
}

std::set<std::string> AppCredentials::keys() const {
    return store_.access([](const CredentialFileStore::Access& held) { return held.keys(); });
}

void AppCredentials::save(const std::string& bytes, const std::string& key) const {
    store_.access([&](const CredentialFileStore::Access& held) { held.save(bytes, key); });
}

void AppCredentials::remove(const std::string& key) const {
    store_.access([&](const CredentialFileStore::Access& held) { held.remove(key); });
}

} // namespace marrowbox
