// The ThreadSanitizer of clang 14 takes the vfork of QProcess (clone with a shared memory) for a
// fork and dies of it. In its builds every test program links this, which goes past its wrapper.

#include <dlfcn.h>
#include <sys/types.h>

extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument,
                     pid_t* parentId, void* storage, pid_t* childId) {
    using Clone = int (*)(int (*)(void*), void*, int, void*, pid_t*, void*, pid_t*);
    static const auto original = reinterpret_cast<Clone>(dlsym(RTLD_NEXT, "clone"));
    return original(function, stack, flags, argument, parentId, storage, childId);
}
