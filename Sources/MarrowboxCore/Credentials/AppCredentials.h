#pragma once

#include "Credentials/CredentialFileStore.h"
#include "Platform/DataDirectory.h"

#include <set>

namespace marrowbox {

/// Where the program keeps its credentials: "Credentials" in its data folder.
fs::path credentialDirectory(const Environment& environment);

/// The program's credentials. Each operation enters the store of credentials by itself, so that callers never
/// see its locks; what it throws is told there. A value; any thread; blocks shortly, never over the network.
class AppCredentials {
  public:
    explicit AppCredentials(const fs::path& directory) : store_(directory) {}

    /// The bytes kept under a key; absent when there are none.
    std::optional<std::string> read(const std::string& key) const;
    bool contains(const std::string& key) const;
    /// The keys under which something is kept, found in one entry into the store.
    std::set<std::string> keys() const;
    /// Keeps bytes under a key, in place of earlier ones.
    void save(const std::string& bytes, const std::string& key) const;
    /// Drops what is kept under a key, if anything is.
    void remove(const std::string& key) const;

  private:
    CredentialFileStore store_;
};

} // namespace marrowbox
