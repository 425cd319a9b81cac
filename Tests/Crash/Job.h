#pragma once

#include "Destination.h"

#include <ostream>
#include <vector>

namespace marrowbox::test {

/// A job of the program other than a run, what it finds, and what must hold after it, however it ended.
struct Job {
    std::string name; ///< As the program knows it.
    /// Makes what the job finds.
    void (*prepare)(const fs::path& destination);
    /// Expects that nothing is lost or half there.
    void (*expectUnharmed)(const fs::path& destination);
    /// Expects that the job's work is done, as its end with 0 says.
    void (*expectDone)(const fs::path& destination);
    /// Whether it repeats what a signal interrupts. Saving a credential gives up at once, and says so.
    bool repeatsInterrupted;

    friend std::ostream& operator<<(std::ostream& stream, const Job& job) { return stream << job.name; }
};

/// Making a repository, pruning, restoring, and saving a credential.
const std::vector<Job>& jobs();

} // namespace marrowbox::test
