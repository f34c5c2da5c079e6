// The code pages that the conversion calls know, and how each is converted.
#ifndef ZEL_PLATFORM_POSIX_CODEPAGE_NAMES_H
#define ZEL_PLATFORM_POSIX_CODEPAGE_NAMES_H

#include <zel/wintypes.h>

enum class ZelCodePageKind : BYTE {
    Iconv,    // through iconv, bytes below 0x80 are ASCII
    Utf7,     // through iconv, stateful: no byte is taken as ASCII on its own
    Utf8,     // converted here, not by iconv
};

struct ZelCodePage {
    UINT codePage;
    const char* iconvName;  // null for the forms converted here
    ZelCodePageKind kind;
    bool doubleByte;  // a default character may take two bytes
};

// The entry of a concrete code page (not CP_ACP and the like), or null when it is not supported.
const ZelCodePage* ZelFindCodePage(UINT codePage);

#endif  // ZEL_PLATFORM_POSIX_CODEPAGE_NAMES_H
