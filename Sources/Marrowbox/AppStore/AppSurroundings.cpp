#include "Marrowbox/AppStore/AppSurroundings.h"

#include "Processes/RcloneDriveSource.h"

namespace marrowbox {

SourceMaker rcloneSources(ProcessSurroundings surroundings) {
    return [surroundings = std::move(surroundings)](
               const SyncUnit& unit, std::shared_ptr<const GoogleAuth> auth, const fs::path& rclone) {
        return std::make_shared<RcloneDriveSource>(DriveAPI{std::move(auth), unit.accountID}, unit.source,
                                                   rclone, surroundings);
    };
}

} // namespace marrowbox
