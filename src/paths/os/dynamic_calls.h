// Calls of kernel32.dll and shell32.dll that older systems lack, bound at run time. Each library
// is loaded by name at the first need and never released; each call is looked up once. A call
// that the system doesn't have stays unavailable for the life of the process.
#ifndef ZEL_PATHS_OS_DYNAMIC_CALLS_H
#define ZEL_PATHS_OS_DYNAMIC_CALLS_H

#include <zel/wintypes.h>

enum class ZelDynamicCall {
    GetLongPathNameA,
    GetLongPathNameW,
    SHGetSpecialFolderPathA,
    SHGetSpecialFolderPathW,
    SHGetSettings,
};

// The call's address, or null when its library or the call is missing.
FARPROC ZelDynamicProc(ZelDynamicCall call);

// Sets every cache back to "not tried", so that a test process can take calls away after a
// binding was made. Nothing else calls it.
void ZelDynamicCallsForget();

// The call typed by its caller, through the generic function pointer type.
template <typename Function>
Function ZelProcAs(FARPROC proc) {
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(proc));
}

template <typename Function>
Function ZelDynamicFunction(ZelDynamicCall call) {
    return ZelProcAs<Function>(ZelDynamicProc(call));
}

#endif  // ZEL_PATHS_OS_DYNAMIC_CALLS_H
