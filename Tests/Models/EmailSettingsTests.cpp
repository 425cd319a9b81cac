#include "Models/EmailDefaults.h"
#include "Models/EmailSettingsValidation.h"

#include <gtest/gtest.h>
#include <vector>

namespace marrowbox {

namespace {

using EmailDefaults::AccountOrder;

const GoogleAccount sender{.id = "7", .email = "me@example.com", .name = "Me", .canSendEmail = true};
const EmailSettings working{
    .provider = EmailProvider::gmail, .accountID = "7", .recipient = "you@example.com"};

std::optional<std::string> errorIn(const EmailSettings& settings,
                                   const std::vector<GoogleAccount>& accounts = {sender}) {
    return EmailSettingsValidation::error(settings, accounts, [](const GoogleAccount&) { return true; });
}

bool canSave(const EmailSettings& draft, const EmailSettings& current) {
    return EmailSettingsValidation::canSave(draft, current, std::vector{sender},
                                            [](const GoogleAccount&) { return true; });
}

} // namespace

TEST(EmailDefaults, makeTheFirstAccountThatMaySendTheSender) {
    EXPECT_EQ(
        EmailDefaults::applying({}, sender, AccountOrder::first),
        (EmailSettings{.provider = EmailProvider::gmail, .accountID = "7", .recipient = "me@example.com"}));
}

TEST(EmailDefaults, keepARecipientThatIsThere) {
    EXPECT_EQ(EmailDefaults::applying({.accountID = "old", .recipient = "you@example.com"}, sender,
                                      AccountOrder::first),
              working);
}

TEST(EmailDefaults, changeNothingForALaterAccount) {
    EXPECT_FALSE(EmailDefaults::applying({}, sender, AccountOrder::later));
}

TEST(EmailDefaults, changeNothingForAnAccountThatMayNotSend) {
    GoogleAccount reader = sender;
    reader.canSendEmail = false;
    EXPECT_FALSE(EmailDefaults::applying({}, reader, AccountOrder::first));
}

TEST(EmailDefaults, neverOverwriteAChoice) {
    EXPECT_FALSE(EmailDefaults::applying({.provider = EmailProvider::gmail}, sender, AccountOrder::first));
}

TEST(EmailSettingsValidation, findsNothingWrongWithWorkingOrDisabledSettings) {
    EXPECT_EQ(errorIn(working), std::nullopt);
    EXPECT_EQ(errorIn({.accountID = "gone", .recipient = "nonsense"}), std::nullopt);
}

TEST(EmailSettingsValidation, looksAtTheRecipientFirst) {
    const EmailSettings settings{.provider = EmailProvider::gmail, .recipient = "nonsense"};
    EXPECT_EQ(errorIn(settings, {}), "Enter a valid recipient email address.");
}

TEST(EmailSettingsValidation, wantsAnAccountThatIsThere) {
    EmailSettings settings = working;
    settings.accountID = "8";
    EXPECT_EQ(errorIn(settings), "Choose a Google account for email summaries.");
    EXPECT_EQ(errorIn(working, {}), "Choose a Google account for email summaries.");
}

TEST(EmailSettingsValidation, wantsLeaveToSendBeforeACredential) {
    GoogleAccount reader = sender;
    reader.canSendEmail = false;
    const std::vector accounts{reader};
    EXPECT_EQ(EmailSettingsValidation::error(working, accounts, [](const GoogleAccount&) { return false; }),
              "Reconnect this account and allow Gmail sending permission first.");
}

TEST(EmailSettingsValidation, wantsTheCredentialOfTheChosenAccount) {
    GoogleAccount other = sender;
    other.id = "8";
    const std::vector accounts{other, sender};
    EXPECT_EQ(EmailSettingsValidation::error(working, accounts,
                                             [](const GoogleAccount& account) { return account.id == "8"; }),
              "Reconnect this Google account before enabling email summaries.");
}

TEST(EmailSettingsValidation, savesAChangeThatCanWorkAndNothingElse) {
    EXPECT_TRUE(canSave(working, {}));
    EXPECT_FALSE(canSave(working, working));
    EXPECT_TRUE(canSave({}, working));
    EmailSettings nonsense = working;
    nonsense.recipient = "nonsense";
    EXPECT_FALSE(canSave(nonsense, working));
}

} // namespace marrowbox
