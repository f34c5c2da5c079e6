// Internal helpers of the plane 15 and Yi mapping: the ranges and the table lookups that the
// single-character calls and the text calls share.
#ifndef ZEL_CODETABLES_PLANE15_MAP_H
#define ZEL_CODETABLES_PLANE15_MAP_H

#include <zel/wintypes.h>

// The library's own area, and where its plain codes stand outside.
constexpr WCHAR kZelInternalFirst = 0xA000;
constexpr WCHAR kZelInternalLast = 0xA8FF;
constexpr DWORD kZelPlane15Offset = 0xE6000;
// The Yi block of the internal area, which the "zel" table maps.
constexpr WCHAR kZelYiFirst = 0xA700;
constexpr WCHAR kZelYiLast = 0xA7FF;

// True when the Yi table is ready; every mapping passes text through otherwise.
bool ZelYiPuaReady();

// The outside code point of an internal character u (kZelInternalFirst to kZelInternalLast).
// A Yi entry beyond the table's count gives U+FFFD.
DWORD ZelInternalToOutside(WCHAR u);

#endif  // ZEL_CODETABLES_PLANE15_MAP_H
