// The two cores of the code page front end. A table code page whose table is ready goes through
// its table; every other code page, and one whose table is missing or broken, goes to the system.
#ifndef ZEL_CODETABLES_CODEPAGE_FRONT_H
#define ZEL_CODETABLES_CODEPAGE_FRONT_H

#include <zel/wintypes.h>

// Narrow text to wide: the count of units, terminated inside size. The system's count of a
// zero-terminated text includes the terminator; the table path's never does.
int CodePageToUnicode(UINT codePage, DWORD flags, const char* text, int length, WCHAR* buffer, int size);
// Wide text to narrow: the count of bytes, terminated inside size.
int UnicodeToCodePage(UINT codePage, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                      const char* defaultChar, BOOL* usedDefault);

#endif  // ZEL_CODETABLES_CODEPAGE_FRONT_H
