#include "Marrowbox/Platform/ScreenWording.h"

#include "Platform/Wording.h"

#include <QCoreApplication>
#include <array>

namespace marrowbox {

namespace {

constexpr auto texts = std::to_array<const char*>({
    // How often
    QT_TRANSLATE_NOOP("Core", "Manual"),
    QT_TRANSLATE_NOOP("Core", "Every 10 minutes"),
    QT_TRANSLATE_NOOP("Core", "Hourly"),
    QT_TRANSLATE_NOOP("Core", "Daily"),
    QT_TRANSLATE_NOOP("Core", "Weekly"),
    // Which mails
    QT_TRANSLATE_NOOP("Core", "All"),
    QT_TRANSLATE_NOOP("Core", "Off"),
    QT_TRANSLATE_NOOP("Core", "An email after every snapshot."),
    QT_TRANSLATE_NOOP("Core", "One email covering every snapshot since the last summary, and never more than "
                              "one a day."),
    QT_TRANSLATE_NOOP("Core", "No email for this backup."),
});

} // namespace

QString worded(const QString& sentence) {
    return QString::fromStdString(worded(std::string_view(sentence.toStdString())));
}

QString spoken(const std::string& coreText) {
    return QCoreApplication::translate("Core", coreText.c_str());
}

std::span<const char* const> coreTexts() {
    return texts;
}

} // namespace marrowbox
