// Texts of system codes come from the system's message table, which the platform layer does not
// offer yet: no system code has a text, and callers fall back to the library's own strings.
#include "frame/error_block.h"

BOOL ZelFormatSystemError(const WCHAR*, DWORD, ZelErrorDetail*) { return FALSE; }
