// The system's message table: English texts of the Win32 codes that the platform reports.
#ifndef ZEL_PLATFORM_POSIX_SYSTEM_MESSAGE_TEXTS_H
#define ZEL_PLATFORM_POSIX_SYSTEM_MESSAGE_TEXTS_H

#include <zel/wintypes.h>

// The message definition of a Win32 code, with its line breaks and insert sequences, or null
// when the table has none.
const char* ZelPlatformSystemMessageText(DWORD code);

#endif  // ZEL_PLATFORM_POSIX_SYSTEM_MESSAGE_TEXTS_H
