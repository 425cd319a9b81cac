#include "Models/AppConfiguration.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

SyncUnit someUnit() {
    SyncUnit unit;
    unit.id = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF");
    unit.name = "Photos";
    unit.accountID = "42";
    unit.source = {.id = "root", .name = "My Drive"};
    unit.destinationPath = "/media/disk";
    unit.destinationBookmark = {std::string("\0\x01", 2)};
    unit.schedule = {.frequency = ScheduleFrequency::weekly, .hour = 7, .minute = 5, .weekday = 1};
    return unit;
}

AppConfiguration fullConfiguration() {
    AppConfiguration configuration;
    configuration.accounts = {{.id = "42", .email = "a@example.com", .name = "A", .canSendEmail = true}};
    SyncUnit unit = someUnit();
    unit.source.sharedDriveID = "drive";
    unit.retentionDays = 30;
    unit.nextRun = Date{796953600.25};
    unit.theme = AccentTheme::coral;
    unit.notifications = NotificationPolicy::daily;
    unit.lastDigestAt = Date{1};
    configuration.units = {unit, someUnit()};
    RunRecord run = beginRunRecord(unit, "a@example.com", true, Date{3});
    run.outcome = RunOutcome::failed;
    run.detail = "“quoted”\n";
    run.snapshotID = Uuid::random();
    run.emailSettings = EmailSettings{.provider = EmailProvider::gmail, .accountID = "42", .recipient = "r"};
    run.missedRuns = 3;
    run.notificationPolicy = NotificationPolicy::off;
    configuration.runs = {run};
    configuration.email.recipient = "r@example.com";
    configuration.usesImportedClient = true;
    return configuration;
}

std::string without(const std::string& key, std::string text) {
    const auto begin = text.find("\"" + key + "\":");
    EXPECT_NE(begin, std::string::npos) << key;
    const auto end = text.find_first_of(",}", begin);
    return text.erase(begin, end - begin + (text[end] == ',' ? 1 : 0));
}

AppConfiguration readUnit(const std::string& unit) {
    return decodeJSON<AppConfiguration>(R"({"units":[)" + unit + "]}");
}

} // namespace

TEST(AppConfiguration, readsAnEmptyObjectAsTheDefault) {
    EXPECT_EQ(decodeJSON<AppConfiguration>("{}"), AppConfiguration());
    EXPECT_EQ(decodeJSON<AppConfiguration>("{}").schemaVersion, 1);
    EXPECT_EQ(decodeJSON<AppConfiguration>(R"({"units":null,"email":null})"), AppConfiguration());
}

TEST(AppConfiguration, givesBackWhatWasWritten) {
    const AppConfiguration configuration = fullConfiguration();
    EXPECT_EQ(decodeJSON<AppConfiguration>(encodeJSON(configuration, JSONStyle::pretty)), configuration);
}

TEST(AppConfiguration, readsAnotherVersionAndThenRefusesIt) {
    for (const char* text : {R"({"schemaVersion":2})", R"({"schemaVersion":0})"}) {
        const auto configuration = decodeJSON<AppConfiguration>(text);
        EXPECT_EQ(test::thrown<BackupError>([&] { requireKnownVersion(configuration); }),
                  "This configuration needs a newer Marrowbox version.");
    }
    EXPECT_NO_THROW(requireKnownVersion(AppConfiguration()));
}

TEST(AppConfiguration, readsTheRetiredProviderAsDisabledAndKeepsTheRecipient) {
    const auto configuration =
        decodeJSON<AppConfiguration>(R"({"email":{"provider":"mailgun","recipient":"r@example.com"}})");
    EXPECT_EQ(configuration.email,
              (EmailSettings{.provider = EmailProvider::disabled, .recipient = "r@example.com"}));
}

TEST(AppConfiguration, readsAMissingProviderAsDisabled) {
    EXPECT_EQ(decodeJSON<AppConfiguration>(R"({"email":{}})").email, EmailSettings());
}

TEST(AppConfiguration, refusesAnyOtherProvider) {
    for (const char* provider : {"Gmail", "", "smtp"})
        EXPECT_EQ(test::thrown<BackupError>([&] {
                      decodeJSON<AppConfiguration>(R"({"email":{"provider":")" + std::string(provider) +
                                                   "\"}}");
                  }),
                  "Unsupported email provider.");
    EXPECT_THROW(decodeJSON<AppConfiguration>(R"({"email":{"provider":1}})"), JSONDecodingError);
}

TEST(AppConfiguration, isUnreadableWhenOneUnitLacksARequiredKey) {
    const std::string whole = encodeJSON(someUnit(), JSONStyle::compact);
    EXPECT_EQ(readUnit(whole).units.front(), someUnit());
    for (const char* key : {"id", "name", "accountID", "destinationPath", "destinationBookmark", "frequency"})
        EXPECT_THROW(readUnit(without(key, whole)), JSONDecodingError) << key;
}

TEST(AppConfiguration, isUnreadableWhenAnOptionalValueIsOfAWrongType) {
    std::string unit = encodeJSON(someUnit(), JSONStyle::compact);
    unit.back() = ',';
    for (const char* field : {R"("retentionDays":"7"})", R"("theme":"pink"})", R"("notifications":"All"})",
                              R"("nextRun":"tomorrow"})", R"("isEnabled":0})"})
        EXPECT_THROW(readUnit(unit + field), JSONDecodingError) << field;
}

TEST(AppConfiguration, keepsARetentionOfZeroDays) {
    std::string unit = encodeJSON(someUnit(), JSONStyle::compact);
    unit.back() = ',';
    EXPECT_EQ(readUnit(unit + R"("retentionDays":0})").units.front().retentionDays, 0);
}

TEST(AppConfiguration, needsElevenKeysOfARunRecord) {
    RunRecord run = beginRunRecord(someUnit(), "a@example.com", true, Date{3});
    const std::string whole = encodeJSON(run, JSONStyle::compact);
    EXPECT_EQ(decodeJSON<RunRecord>(whole), run);
    for (const char* key : {"id", "unitID", "unitName", "accountEmail", "destination", "startedAt", "outcome",
                            "emailSent", "emailAttempts", "notify"})
        EXPECT_THROW(decodeJSON<RunRecord>(without(key, whole)), JSONDecodingError) << key;
    std::string unsummed = whole;
    unsummed.replace(unsummed.find("\"summary\""), 9, "\"another\"");
    EXPECT_EQ(test::thrown<JSONDecodingError>([&] { decodeJSON<RunRecord>(unsummed); }),
              "“summary” is missing.");
}

TEST(AppConfiguration, readsTheFiveOutcomesByTheirExactNames) {
    for (const char* name : {"running", "succeeded", "failed", "cancelled", "interrupted"}) {
        const auto outcome = JSONEnumeration<RunOutcome>::fromName(name);
        ASSERT_TRUE(outcome) << name;
        EXPECT_EQ(enumerationName(*outcome), name);
    }
    EXPECT_FALSE(JSONEnumeration<RunOutcome>::fromName("Running"));
    EXPECT_FALSE(JSONEnumeration<RunOutcome>::fromName(""));
}

} // namespace marrowbox
