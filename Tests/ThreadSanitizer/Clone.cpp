// Qt starts a program by a child that shares its memory with this process until the program is there. The
// thread sanitizer keeps its books in that memory, finds them ended twice and stops. In its place the child
// gets a copy, as from a fork.
#include <cstdarg>
#include <sched.h>
#include <sys/types.h>

extern "C" {

/// The sanitizer's own, which this one hands on to.
int __interceptor_clone(int (*run)(void*), void* stack, int flags, void* argument, pid_t* parent,
                        void* storage, pid_t* child);

int clone(int (*run)(void*), void* stack, int flags, void* argument, ...) noexcept {
    std::va_list rest;
    va_start(rest, argument);
    auto* const parent = va_arg(rest, pid_t*);
    auto* const storage = va_arg(rest, void*);
    auto* const child = va_arg(rest, pid_t*);
    va_end(rest);
    return __interceptor_clone(run, stack, flags & ~(CLONE_VM | CLONE_VFORK), argument, parent, storage,
                               child);
}

} // extern "C"
