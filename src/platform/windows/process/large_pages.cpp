// Large blocks straight from the system. Large pages on Windows need a privilege that a program
// seldom holds, so the blocks have ordinary pages.
#include <new>

#include "platform/win32.h"

// Only this file asks the system for memory: the calls are declared here.
LPVOID VirtualAlloc(LPVOID address, SIZE_T bytes, DWORD type, DWORD protect) ZEL_SYSTEM_CALL(VirtualAlloc);
BOOL VirtualFree(LPVOID address, SIZE_T bytes, DWORD type) ZEL_SYSTEM_CALL(VirtualFree);

void* ZelPlatformAllocateLargeBlock(size_t bytes) {
    constexpr DWORD kCommitAndReserve = 0x3000, kReadWrite = 0x04;
    void* block = VirtualAlloc(nullptr, bytes, kCommitAndReserve, kReadWrite);
    if (!block) throw std::bad_alloc();
    return block;
}

void ZelPlatformReleaseLargeBlock(void* block, size_t) {
    constexpr DWORD kRelease = 0x8000;
    VirtualFree(block, 0, kRelease);
}
