#include "Models/AppConfiguration.h"

#include "Models/BackupError.h"

namespace marrowbox {

void requireKnownVersion(const AppConfiguration& configuration) {
    if (configuration.schemaVersion != 1)
        throw BackupError("This configuration needs a newer Marrowbox version.");
}

} // namespace marrowbox
