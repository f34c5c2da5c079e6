// The interlocked counters, which Win32 gives as compiler intrinsics on 64-bit systems.
#include "platform/win32.h"

LONG InterlockedIncrement(LONG volatile* value) { return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST); }

LONG InterlockedDecrement(LONG volatile* value) { return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST); }
