#pragma once

#include "Models/AppConfiguration.h"

#include <filesystem>
#include <string>

namespace marrowbox::bench {

/// Somebody with 50 units, 10,000 runs and 20 accounts: a folder with all that the program finds of them at
/// its start, removed with the object. No unit is due before an hour after the given time; the first one has
/// a repository without snapshots.
class BusyUser {
  public:
    BusyUser(const std::string& name, Date now);
    BusyUser(const BusyUser&) = delete;
    BusyUser& operator=(const BusyUser&) = delete;
    ~BusyUser();

    std::filesystem::path data() const { return folder_ / "Data"; }
    std::filesystem::path disk() const { return folder_ / "Disk"; }
    std::filesystem::path file() const { return data() / "Configuration.json"; }
    /// The OAuth client of a build that brings one along.
    std::filesystem::path client() const { return folder_ / "client.json"; }
    void write() const;

    AppConfiguration configuration;

  private:
    void addAccount(const std::string& id);
    void addUnit(int number);
    void addRun(int number);

    std::filesystem::path folder_;
    Date now_;
};

} // namespace marrowbox::bench
