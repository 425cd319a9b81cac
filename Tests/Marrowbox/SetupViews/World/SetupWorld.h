#pragma once

#include "Marrowbox/SetupViews/NewUnitModel.h"
#include "ScriptedDrive.h"
#include "StoreWorld.h"

#include <QString>
#include <QStringList>

namespace marrowbox::test {

/// A program without a screen, and a Drive to look into: My Drive with "Letters" (in it "Old") and "Photos",
/// and the shared drive "Studio" with "Plans".
class SetupWorld : public StoreWorld {
  public:
    SetupWorld();
    ~SetupWorld();

    ScriptedDrive drive{time.context()};

    /// Starts with these accounts, all with a credential.
    AppStore& startWith(std::vector<GoogleAccount> accounts);
    /// Ends the sign-in that is under way: the person at the browser consents with this account.
    void consent(const GoogleAccount& account);
};

/// A second account, without leave to send mail.
GoogleAccount ben();

/// The names that the browser shows.
QStringList namesIn(DriveBrowser& browser);

} // namespace marrowbox::test
