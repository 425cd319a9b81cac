#pragma once

#include "Credentials/CredentialFileStore.h"
#include "Credentials/CredentialSafety.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include "Models/BackupError.h"

#include <fstream>

namespace marrowbox::test {

inline constexpr auto unsafeParent = "Credential storage parent is unsafe. Credentials were not accessed.";
inline constexpr auto unsafeFolder =
    "Credential storage permissions are unsafe. Credentials were not accessed.";
inline constexpr auto unsafeFile =
    "Credential file identity or permissions are unsafe. Credentials were not accessed.";
inline constexpr auto unsafeLock =
    "Credential lock identity or permissions are unsafe. Credentials were not accessed.";
inline constexpr auto damaged = "The credential file is unreadable or damaged. It was left unchanged.";
inline constexpr auto unsupported = "The credential file version is unsupported. It was left unchanged.";
inline constexpr auto notSaved = "Credentials could not be saved; existing credentials are unchanged.";
inline constexpr auto notSavedSafely =
    "Credentials could not be saved safely; existing credentials are unchanged.";
inline constexpr auto notDurable = "Credentials were saved but durability could not be confirmed.";

/// A store in a scratch folder, and single steps on it.
class CredentialFolder {
  public:
    fs::path parent() const { return scratch_.path(); }
    fs::path directory() const { return scratch_ / "Credentials"; }
    fs::path file() const { return credentialFile(directory()); }
    fs::path lock() const { return credentialLockFile(directory()); }

    CredentialFileStore store(CredentialFileCalls calls = {}) const {
        return CredentialFileStore(directory(), std::move(calls));
    }

    std::optional<std::string> read(std::string_view key, CredentialFileCalls calls = {}) const {
        return store(std::move(calls)).access([&](const auto& held) { return held.read(key); });
    }
    void save(std::string_view bytes, std::string_view key, CredentialFileCalls calls = {}) const {
        store(std::move(calls)).access([&](const auto& held) { held.save(bytes, key); });
    }
    void remove(std::string_view key) const {
        store().access([&](const auto& held) { held.remove(key); });
    }

    /// The sentence with which reading, and saving with these calls, are refused.
    std::string refusal(CredentialFileCalls calls = {}) const {
        return thrown<BackupError>([&] { read("key", std::move(calls)); });
    }
    std::string refusalToSave(CredentialFileCalls calls = {}) const {
        return thrown<BackupError>([&] { save("new", "key", std::move(calls)); });
    }

    /// Puts this text where the credentials are, as a private file.
    void plant(std::string_view text) const {
        save("old", "key");
        std::ofstream(file(), std::ios::trunc) << text;
    }

    /// Names of the temporary files in the folder.
    std::vector<std::string> temporaries() const {
        std::vector<std::string> names = directoryNames(directory());
        std::erase_if(names, [](const std::string& name) { return !name.ends_with(".tmp"); });
        return names;
    }

  private:
    ScratchFolder scratch_;
};

} // namespace marrowbox::test
