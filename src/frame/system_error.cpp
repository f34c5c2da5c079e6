#include "frame/system_error.h"

#include <zel/frame.h>

DWORD ZelSystemErrorCode(DWORD error) {
    return error > 0 ? (error & 0xFFFFu) | 0x80070000u : error;
}

void ZelReportSystemError(DWORD error) { ZelSetError(ZelSystemErrorCode(error)); }
