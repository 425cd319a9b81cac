#include "Models/RunEmailStatus.h"

namespace marrowbox {

namespace {

RunEmailStatus sentStatus(const RunRecord& run, const Formats& formats) {
    if (!run.emailSentAt)
        return {"Email summary sent", "Emailed", RunEmailStatus::Tone::sent};
    const std::string time = formats.time(*run.emailSentAt);
    return {"Email summary sent " + time, "Emailed " + time, RunEmailStatus::Tone::sent};
}

RunEmailStatus offStatus(const RunRecord& run) {
    if (run.notificationPolicy == NotificationPolicy::off)
        return {"No email — summaries are off for this backup", "No email", RunEmailStatus::Tone::off};
    return {"No email — summaries were off", "No email", RunEmailStatus::Tone::off};
}

RunEmailStatus waitingStatus(const RunRecord& run) {
    constexpr auto pending = RunEmailStatus::Tone::pending;
    if (run.outcome == RunOutcome::running)
        return {"Email summary sends when this snapshot finishes", "Email pending", pending};
    if (run.notificationPolicy == NotificationPolicy::daily)
        return {"Waiting for the daily summary", "In the daily summary", pending};
    return {"Email summary queued", "Email queued", pending};
}

} // namespace

RunEmailStatus RunEmailStatus::of(const RunRecord& run, const Formats& formats) {
    if (run.emailSent)
        return sentStatus(run, formats);
    if (!run.notify)
        return offStatus(run);
    if (run.emailError)
        return {"Email summary failed: " + *run.emailError, "Email failed", Tone::problem};
    return waitingStatus(run);
}

} // namespace marrowbox
