// The entry point's process notifications, the library's own module and the interlocked counters.
// Thread slots are the system's.
#include "platform/process_object.h"
#include "platform/win32.h"

// The linker's name for the start of the image this code is part of: its module handle.
extern "C" char __ImageBase;

HMODULE ZelPlatformOwnModule() { return reinterpret_cast<HMODULE>(&__ImageBase); }

void ZelPlatformProcessAttach() {
    DllMain(reinterpret_cast<HINSTANCE>(ZelPlatformOwnModule()), DLL_PROCESS_ATTACH, nullptr);
}

void ZelPlatformProcessDetach() {
    DllMain(reinterpret_cast<HINSTANCE>(ZelPlatformOwnModule()), DLL_PROCESS_DETACH, nullptr);
    ZelPlatformReleaseProcessObjects();
}
