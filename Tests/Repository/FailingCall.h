#pragma once

#include <functional>

namespace marrowbox::test {

/// Runs work in a child process in which a system call, named by its number, always fails with this errno, as
/// it does on file systems that cannot do it. True when the work ended without throwing.
bool succeedsWithoutCall(long call, int failure, const std::function<void()>& work);

} // namespace marrowbox::test
