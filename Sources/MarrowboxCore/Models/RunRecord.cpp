#include "Models/RunRecord.h"

namespace marrowbox {

RunRecord beginRunRecord(const SyncUnit& unit, std::string accountEmail, bool notify, Date now) {
    RunRecord record;
    record.id = Uuid::random();
    record.unitID = unit.id;
    record.unitName = unit.name;
    record.accountEmail = std::move(accountEmail);
    record.destination = unit.destinationPath;
    record.startedAt = now;
    record.notify = notify;
    return record;
}

} // namespace marrowbox
