#include "paths/os/dynamic_calls.h"

#include <atomic>
#include <cstdint>

#include "platform/win32.h"

namespace {

// Cache values: not tried yet, or tried and not there; anything else is the handle or address.
constexpr intptr_t kNotTried = -1;
constexpr intptr_t kMissing = 0;

enum Library { kKernel32, kShell32, kLibraryCount };

const char* const kLibraryNames[kLibraryCount] = {"kernel32.dll", "shell32.dll"};

struct CallEntry {
    Library library;
    const char* name;
};

// In the order of ZelDynamicCall.
constexpr CallEntry kCalls[] = {
    {kKernel32, "GetLongPathNameA"},
    {kKernel32, "GetLongPathNameW"},
    {kShell32, "SHGetSpecialFolderPathA"},
    {kShell32, "SHGetSpecialFolderPathW"},
    {kShell32, "SHGetSettings"},
};
constexpr int kCallCount = sizeof kCalls / sizeof kCalls[0];
static_assert(kCallCount == static_cast<int>(ZelDynamicCall::SHGetSettings) + 1);

// Threads that race here store the same value, so relaxed atomics are all the order needed.
std::atomic<intptr_t> libraries[kLibraryCount] = {kNotTried, kNotTried};
std::atomic<intptr_t> calls[kCallCount] = {kNotTried, kNotTried, kNotTried, kNotTried, kNotTried};

HMODULE LoadOnce(Library which) {
    intptr_t cached = libraries[which].load(std::memory_order_relaxed);
    if (cached == kNotTried) {
        cached = reinterpret_cast<intptr_t>(LoadLibraryA(kLibraryNames[which]));
        libraries[which].store(cached, std::memory_order_relaxed);
    }
    return reinterpret_cast<HMODULE>(cached);
}

}  // namespace

FARPROC ZelDynamicProc(ZelDynamicCall call) {
    const int index = static_cast<int>(call);
    if (index < 0 || index >= kCallCount) return nullptr;
    intptr_t cached = calls[index].load(std::memory_order_relaxed);
    if (cached == kNotTried) {
        HMODULE module = LoadOnce(kCalls[index].library);
        cached = module ? reinterpret_cast<intptr_t>(GetProcAddress(module, kCalls[index].name)) : kMissing;
        calls[index].store(cached, std::memory_order_relaxed);
    }
    return reinterpret_cast<FARPROC>(cached);
}

void ZelDynamicCallsForget() {
    for (auto& library : libraries) library.store(kNotTried, std::memory_order_relaxed);
    for (auto& call : calls) call.store(kNotTried, std::memory_order_relaxed);
}
