#pragma once

#include "FlowWorld.h"

namespace marrowbox::test {

/// A program with a backup of Ada's letters, backed up once.
class FlowOfLetters : public Flow {
  protected:
    FlowOfLetters();

    SyncUnit unit() const { return configuration().units.at(0); }
    void backUpAgain();
    /// A run that does not get its file before it is let go or cancelled: it has begun to wait for it.
    void prepareSlowBackup();
    bool comesToWaitForSlowBackup();
    void beginSlowBackup();

    std::string letters_; ///< The folder at Google.
    std::string hello_;   ///< A file in it.

  private:
    std::string slow_;
};

} // namespace marrowbox::test
