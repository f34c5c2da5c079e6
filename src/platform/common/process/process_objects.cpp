// The list of process-wide objects to destroy at unload, in plain constant-initialised data.
#include <cstddef>
#include <mutex>

#include "platform/process_object.h"

namespace {

struct Release {
    void (*release)(void*);
    void* holder;
};

// More than the library has: an object past the end would only be left to the system.
constexpr size_t kMostObjects = 64;
constinit ZelProcessObjectLock listLock;
Release releases[kMostObjects];
size_t releaseCount = 0;

bool TakeLast(Release& last) {
    std::lock_guard<ZelProcessObjectLock> guard(listLock);
    if (releaseCount == 0) return false;
    last = releases[--releaseCount];
    return true;
}

}  // namespace

void ZelPlatformReleaseAtUnload(void (*release)(void*), void* holder) {
    std::lock_guard<ZelProcessObjectLock> guard(listLock);
    if (releaseCount < kMostObjects) releases[releaseCount++] = {release, holder};
}

void ZelPlatformReleaseProcessObjects() {
    // The lock is not held while an object goes: its destructor may use, and so build, another.
    for (Release last; TakeLast(last);) last.release(last.holder);
}
