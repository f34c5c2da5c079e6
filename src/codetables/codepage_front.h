// The two cores of the code page front end. The table path of the six double-byte code pages
// joins here; until a code page's table is ready, both hand the text to the system.
#ifndef ZEL_CODETABLES_CODEPAGE_FRONT_H
#define ZEL_CODETABLES_CODEPAGE_FRONT_H

#include <zel/wintypes.h>

// Narrow text to wide: the count of units, terminated inside size.
int CodePageToUnicode(UINT codePage, DWORD flags, const char* text, int length, WCHAR* buffer, int size);
// Wide text to narrow: the count of bytes, terminated inside size.
int UnicodeToCodePage(UINT codePage, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                      const char* defaultChar, BOOL* usedDefault);

#endif  // ZEL_CODETABLES_CODEPAGE_FRONT_H
