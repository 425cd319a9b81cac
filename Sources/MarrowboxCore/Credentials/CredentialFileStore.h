#pragma once

#include "Credentials/CredentialFileCalls.h"
#include "Repository/RepositoryLock.h"

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace marrowbox {

struct CredentialDocument;

/// Keeps long-lived secrets in one small file, credentials.json in a folder of the user's own. It does not
/// trust the surroundings of that file: before every use it proves that nobody else can read or swap it, and
/// refuses to touch it when anything is off. A write replaces the file in one rename and waits for the disk;
/// a file that is damaged or of an unknown version is left as it is.
///
/// A value without state: every use reads the file anew, and blocks its thread for some tens of microseconds,
/// or while another thread is inside. Any thread. Every refusal is a BackupError, and another process inside
/// the store a LockBusyError.
class CredentialFileStore {
  public:
    /// Nothing is touched on disk. The folder is made at the first use; the one above must exist by then.
    explicit CredentialFileStore(fs::path directory, CredentialFileCalls calls = {});

    /// The store while its locks are held and its surroundings are proved.
    class Access {
      public:
        explicit Access(const CredentialFileStore& store);

        /// The value of a key; absent when it has none.
        std::optional<std::string> read(std::string_view key) const;
        /// The keys that have a value.
        std::set<std::string> keys() const;
        /// Sets the value of a key.
        void save(std::string_view bytes, std::string_view key) const;
        /// Drops a key. The file is written anew even when it had none.
        void remove(std::string_view key) const;

      private:
        RepositoryLock enter() const;
        CredentialDocument load() const;
        void write(const CredentialDocument& document) const;

        const CredentialFileStore& store_;
        std::scoped_lock<std::mutex> threads_;
        RepositoryLock processes_;
    };

    /// Runs the body with the store's Access, and gives what the body gives. The only way in; the body must
    /// not come back in.
    template <typename Body>
    auto access(Body body) const {
        const Access held(*this);
        return body(held);
    }

  private:
    fs::path directory_;
    CredentialFileCalls calls_;
};

} // namespace marrowbox
