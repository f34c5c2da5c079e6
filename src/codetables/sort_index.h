// Internal form of the sort index: the fields of a Hangul key and the two values that stand apart.
#ifndef ZEL_CODETABLES_SORT_INDEX_H
#define ZEL_CODETABLES_SORT_INDEX_H

#include <zel/wintypes.h>

constexpr DWORD kZelSortHangulTag = 0x01000000;  // top byte of every Hangul key
constexpr DWORD kZelSortNoKey = 0xFFFFFFFF;      // a character without a key
constexpr DWORD kZelSortPuaNoJamo = 0x01FFFFFF;  // private use of the Hangul area without Jamo

// The key of three SUni indexes; only their low bytes count.
constexpr DWORD ZelMakeSortIndex(int initial, int medial, int final) {
    return kZelSortHangulTag | (static_cast<DWORD>(initial & 0xFF) << 16) | (static_cast<DWORD>(medial & 0xFF) << 8) |
           static_cast<DWORD>(final & 0xFF);
}

// The text call one character at a time through ZelUnicodeToSortIndexBase: the plain walk that the
// table walk of ZelUnicodeToSortIndex is held to.
int ZelUnicodeToSortIndexReference(DWORD flags, const WCHAR* text, DWORD* buffer, int size);

#endif  // ZEL_CODETABLES_SORT_INDEX_H
