// The library's entry point as the system calls it: as it loads and unloads the library, and as
// threads start and end in the process. The symbol must be global: the run-time's start-up of a
// library calls DllMain, and brings a stub of its own where the library has none.
#include "platform/win32.h"

BOOL ZelSystemEntry(HINSTANCE module, DWORD reason, LPVOID reserved) __asm__("DllMain");

BOOL ZelSystemEntry(HINSTANCE module, DWORD reason, LPVOID reserved) {
    switch (reason) {
        case DLL_PROCESS_ATTACH: ZelPlatformProcessAttach(); return TRUE;
        case DLL_PROCESS_DETACH: ZelPlatformProcessDetach(); return TRUE;
        default: return DllMain(module, reason, reserved);
    }
}
