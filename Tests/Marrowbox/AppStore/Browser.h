#pragma once

#include "StoreWorld.h"

#include <string>

namespace marrowbox::test {

/// The user at the consent page of the latest sign-in, and the services that a sign-in asks then.
class Browser {
  public:
    explicit Browser(StoreWorld& world);

    /// What the page was asked to offer.
    std::string scope();
    std::string hint();
    /// The user agrees, as this account, which grants sending mail or not.
    void consent(const GoogleAccount& account);

  private:
    /// The address of the page, once it has been opened.
    std::string page();
    std::string queryItem(const std::string& name);

    StoreWorld& world_;
};

} // namespace marrowbox::test
