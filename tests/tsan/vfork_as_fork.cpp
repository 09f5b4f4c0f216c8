// Linked into the test programs of the ThreadSanitizer build only.
//
// QProcess starts its child with clone(CLONE_VM | CLONE_VFORK). The sanitizer runtime of clang 14
// does its fork bookkeeping inside that child, on memory the child shares with the parent, and the
// parent then stops on "CHECK failed: ... thr->slot". Without those two flags the child is an
// ordinary fork, which is what the sanitizer makes of vfork() as well. The runtime's own clone is a
// weak symbol, so this one takes its place and hands every call on to it.
#include <cstdarg>
#include <sys/types.h>

namespace {
constexpr int kCloneVm = 0x00000100;
constexpr int kCloneVfork = 0x00004000;
} // namespace

extern "C" int __interceptor_clone(int (*fn)(void*), void* stack, int flags, void* arg, pid_t* parentTid,
                                   void* tls, pid_t* childTid);

extern "C" int clone(int (*fn)(void*), void* stack, int flags, void* arg, ...) {
    va_list rest;
    va_start(rest, arg);
    pid_t* parentTid = va_arg(rest, pid_t*);
    void* tls = va_arg(rest, void*);
    pid_t* childTid = va_arg(rest, pid_t*);
    va_end(rest);
    if ((flags & (kCloneVm | kCloneVfork)) == (kCloneVm | kCloneVfork)) flags &= ~(kCloneVm | kCloneVfork);
    return __interceptor_clone(fn, stack, flags, arg, parentTid, tls, childTid);
}
