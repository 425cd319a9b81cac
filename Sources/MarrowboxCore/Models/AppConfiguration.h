#pragma once

#include "Models/EmailSettings.h"
#include "Models/GoogleAccount.h"
#include "Models/JSONRules.h"
#include "Models/RunRecord.h"
#include "Models/SyncUnit.h"

#include <boost/describe/class.hpp>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace marrowbox {

/// All that the application remembers between launches. Every key may be missing from its JSON.
struct AppConfiguration {
    std::int64_t schemaVersion = 1;
    std::vector<GoogleAccount> accounts;
    std::vector<SyncUnit> units;
    std::vector<RunRecord> runs; ///< Newest first.
    EmailSettings email;
    bool usesImportedClient = false;

    friend bool operator==(const AppConfiguration&, const AppConfiguration&) = default;
};

BOOST_DESCRIBE_STRUCT(AppConfiguration, (), (schemaVersion, accounts, units, runs, email, usesImportedClient))

template <>
struct JSONRules<AppConfiguration> {
    static constexpr bool everyKeyMayBeMissing = true;
};

/// Throws BackupError "This configuration needs a newer Marrowbox version." for any schema version but 1.
void requireKnownVersion(const AppConfiguration& configuration);

} // namespace marrowbox
