#include "Models/SyncUnit.h"

namespace marrowbox {

SyncUnit withFirstRun(SyncUnit described, Date now, const Calendar& calendar) {
    described.nextRun = described.schedule.next(now, calendar);
    described.isEnabled.reset();
    described.lastDigestAt.reset();
    return described;
}

} // namespace marrowbox
