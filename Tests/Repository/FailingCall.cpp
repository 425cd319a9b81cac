#include "FailingCall.h"

#include <cstddef>
#include <exception>
#include <gtest/gtest.h>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marrowbox::test {

namespace {

enum ChildStatus { succeeded, threw, unprepared };

bool makeFail(long call, int failure) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(failure)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{.len = std::size(program), .filter = program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

ChildStatus statusOf(const std::function<void()>& work) {
    try {
        work();
        return succeeded;
    } catch (const std::exception&) {
        return threw;
    }
}

} // namespace

bool succeedsWithoutCall(long call, int failure, const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(makeFail(call, failure) ? statusOf(work) : unprepared);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != unprepared) << status;
    return WIFEXITED(status) && WEXITSTATUS(status) == succeeded;
}

} // namespace marrowbox::test
