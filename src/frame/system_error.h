// A system error number as the library's error code in the calling thread's error state.
#ifndef ZEL_FRAME_SYSTEM_ERROR_H
#define ZEL_FRAME_SYSTEM_ERROR_H

#include <zel/wintypes.h>

// The code for a system error e: (e AND 0xFFFF) OR 0x80070000 when e is above 0, else e itself.
DWORD ZelSystemErrorCode(DWORD error);

// Stores ZelSystemErrorCode(error) as the calling thread's current error.
void ZelReportSystemError(DWORD error);

#endif  // ZEL_FRAME_SYSTEM_ERROR_H
