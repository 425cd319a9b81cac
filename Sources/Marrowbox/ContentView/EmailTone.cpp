#include "Marrowbox/ContentView/EmailTone.h"

namespace marrowbox {

QString toneName(RunEmailStatus::Tone tone) {
    switch (tone) {
    case RunEmailStatus::Tone::sent:
        return QStringLiteral("sent");
    case RunEmailStatus::Tone::pending:
        return QStringLiteral("pending");
    case RunEmailStatus::Tone::problem:
        return QStringLiteral("problem");
    case RunEmailStatus::Tone::off:
        return QStringLiteral("off");
    }
    return {};
}

QString toneIcon(RunEmailStatus::Tone tone) {
    switch (tone) {
    case RunEmailStatus::Tone::problem:
        return QStringLiteral("envelope.badge.exclamationmark");
    case RunEmailStatus::Tone::off:
        return QStringLiteral("envelope.slash");
    case RunEmailStatus::Tone::sent:
    case RunEmailStatus::Tone::pending:
        break;
    }
    return QStringLiteral("envelope");
}

} // namespace marrowbox
