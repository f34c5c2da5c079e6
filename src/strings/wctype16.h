// Character classes of a 16-bit unit, beside the 16-bit string primitives of wstr.h. These
// overloads take WCHAR, so they never meet the platform's 32-bit wchar_t classes.
#ifndef ZEL_STRINGS_WCTYPE16_H
#define ZEL_STRINGS_WCTYPE16_H

#include <zel/wintypes.h>

// White space: the Unicode White_Space set, the same whatever the process locale. That is
// 0x09 to 0x0D, 0x20, 0x85, 0xA0, 0x1680, 0x2000 to 0x200A, 0x2028, 0x2029, 0x202F, 0x205F and
// 0x3000. The zero-width space 0x200B, 0x180E and the byte order mark 0xFEFF are format
// characters and not white space; a surrogate half is never white space.
int iswspace(WCHAR c);

#endif  // ZEL_STRINGS_WCTYPE16_H
