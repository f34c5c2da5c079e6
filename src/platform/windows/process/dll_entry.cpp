// The library's entry point as the system calls it: as it loads and unloads the library, and as
// threads start and end in the process.
#include "platform/win32.h"

namespace {

[[gnu::used]] BOOL SystemEntry(HINSTANCE module, DWORD reason, LPVOID reserved) __asm__("DllMain");

BOOL SystemEntry(HINSTANCE module, DWORD reason, LPVOID reserved) {
    switch (reason) {
        case DLL_PROCESS_ATTACH: ZelPlatformProcessAttach(); return TRUE;
        case DLL_PROCESS_DETACH: ZelPlatformProcessDetach(); return TRUE;
        default: return DllMain(module, reason, reserved);
    }
}

}  // namespace
