#include "Marrowbox/Platform/ScreenWording.h"

#include "Models/BackupSchedule.h"
#include "Models/NotificationPolicy.h"
#include "Platform/Wording.h"

#include <QCoreApplication>
#include <QTranslator>
#include <gmock/gmock.h>

namespace marrowbox {

using testing::Contains;
using testing::StrEq;

namespace {

/// Says everything in capitals.
class Loudly : public QTranslator {
  public:
    Loudly() { QCoreApplication::installTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char* /*context*/, const char* text, const char* /*disambiguation*/,
                      int /*count*/) const override {
        return QString::fromUtf8(text).toUpper();
    }
};

} // namespace

TEST(ScreenWording, givesASentenceInTheWordsOfTheSystem) {
    for (const Wording& wording : wordings()) {
        const std::string_view here = hostSystem == OperatingSystem::macOS ? wording.macOS : wording.linux;
        EXPECT_EQ(worded(QString::fromUtf8(wording.macOS)).toStdString(), here);
    }
}

TEST(ScreenWording, leavesATranslationAsItIs) {
    EXPECT_EQ(worded(QStringLiteral("Im Dateimanager öffnen")), QStringLiteral("Im Dateimanager öffnen"));
}

TEST(ScreenWording, knowsEveryChoiceThatTheCoreNames) {
    for (const ScheduleFrequency frequency : allScheduleFrequencies)
        EXPECT_THAT(coreTexts(), Contains(StrEq(title(frequency))));
    for (const NotificationPolicy policy : allNotificationPolicies) {
        EXPECT_THAT(coreTexts(), Contains(StrEq(title(policy))));
        EXPECT_THAT(coreTexts(), Contains(StrEq(detail(policy))));
    }
}

TEST(ScreenWording, translatesATextOfTheCore) {
    EXPECT_EQ(spoken("Daily"), QStringLiteral("Daily"));
    int count = 0;
    const QCoreApplication application(count, nullptr);
    const Loudly language;
    EXPECT_EQ(spoken("Daily"), QStringLiteral("DAILY"));
}

} // namespace marrowbox
