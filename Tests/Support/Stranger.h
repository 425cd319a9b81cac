#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

/// Another user of this machine, as far as a test can be one: only the administrator can act as somebody
/// else, and give files away.
namespace marrowbox::test {

/// Nobody's number, on every system.
inline constexpr uid_t stranger = 65534;

/// Why this process cannot act as the stranger; absent where it can.
std::optional<std::string> reasonForNoStranger();

/// Does the work as the stranger, in a child process. The work may make system calls and no more. True when
/// it said so.
bool doneByStranger(const std::function<bool()>& work);

/// Gives a file, folder, pipe or link itself to the stranger.
void giveToStranger(const std::filesystem::path& path);
/// The same with everything below it.
void giveTreeToStranger(const std::filesystem::path& folder);

/// A process of the stranger's that goes on until the object ends, after it said that it is ready.
class StrangerAtWork {
  public:
    /// The work gives false when it failed, and true once it has what it is to hold.
    explicit StrangerAtWork(const std::function<bool()>& work);
    StrangerAtWork(const StrangerAtWork&) = delete;
    StrangerAtWork& operator=(const StrangerAtWork&) = delete;
    ~StrangerAtWork();

    bool isReady() const { return isReady_; }
    pid_t process() const { return process_; }

  private:
    pid_t process_ = -1;
    bool isReady_ = false;
};

/// A pipe of the stranger's at a path, which he fills for as long as anybody reads.
class EndlessPipe {
  public:
    explicit EndlessPipe(const std::filesystem::path& path);
    EndlessPipe(const EndlessPipe&) = delete;
    EndlessPipe& operator=(const EndlessPipe&) = delete;
    ~EndlessPipe();

  private:
    pid_t process_ = -1;
};

} // namespace marrowbox::test
