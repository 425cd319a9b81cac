#pragma once

#include "Support/WatchedProgram.h"

#include <ostream>
#include <string>
#include <vector>

namespace marrowbox::test {

/// The status with which the programs say that their job refused, with a reason.
constexpr int refused = 3;

/// One way in which a program's call goes wrong.
struct Disturbance {
    std::string name;
    Answer answer;
    /// Whether the job must go on as if nothing had happened, where the call is one that can be disturbed so.
    bool isBorne;
    bool isSignal = false;

    /// Whether the kernel can do this to such a call at all.
    bool suits(const FileCall& call) const;
    friend std::ostream& operator<<(std::ostream& stream, const Disturbance& it) { return stream << it.name; }
};

/// Death before the call, each way in which disks fail, a signal in the middle of it, and a short write.
std::vector<Disturbance> disturbances();

} // namespace marrowbox::test
