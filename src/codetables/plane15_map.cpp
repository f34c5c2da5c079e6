// One character between the library's area U+A000 to U+A8FF and its outside form: a code point of
// plane 15, the code point that the Yi table gives, or one of four fixed Latin letters.
#include <zel/codetables.h>
#include <zel/strings.h>

#include "codetables/code_tables.h"
#include "codetables/plane15_map.h"

namespace {

// U+A400 to U+A403 stand for these letters with their tone marks.
constexpr WCHAR kFixedLetters[] = {0x0101, 0x00E1, 0x01CE, 0x00E0};
constexpr WCHAR kFixedFirst = 0xA400;
constexpr WCHAR kFixedLast = 0xA403;

constexpr DWORD kYiFirstOutside = 0x20000;  // the ranges whose pairs are looked up in the table
constexpr DWORD kYiLastOutside = 0x2FFFF;
constexpr DWORD kPlane15YiFirst = 0xF0700;
constexpr DWORD kPlane15YiLast = 0xF07FF;

bool IsInternal(WCHAR u) { return u >= kZelInternalFirst && u <= kZelInternalLast; }

// Splits a code point into the units it takes: one below 0x10000, otherwise a pair.
int WriteCodePoint(DWORD c, WCHAR* output) {
    if (c < 0x10000) {
        output[0] = static_cast<WCHAR>(c);
        return 1;
    }
    const DWORD pair = _UCSCHAR_TO_SURCHAR(c);
    output[0] = static_cast<WCHAR>(pair >> 16);
    output[1] = static_cast<WCHAR>(pair & 0xFFFF);
    return 2;
}

}  // namespace

bool ZelYiPuaReady() { return ZelYiPuaTableState() == kZelTableReady && YiPuaTbl != nullptr; }

DWORD ZelInternalToOutside(WCHAR u) {
    if (u >= kZelYiFirst && u <= kZelYiLast) {
        const DWORD index = u - kZelYiFirst;
        return index < YiPuaCount ? YiPuaTbl[index] : kZelNoUnicode;
    }
    if (u >= kFixedFirst && u <= kFixedLast) return kFixedLetters[u - kFixedFirst];
    return u + kZelPlane15Offset;
}

DWORD UniYi2UniSurrogatePua(WCHAR u) {
    if (!ZelYiPuaReady() || !IsInternal(u)) return u;
    const DWORD c = ZelInternalToOutside(u);
    return c < 0x10000 ? c : _UCSCHAR_TO_SURCHAR(c);
}

int UniYi2UniSurrogatePuaEx(WCHAR u, WCHAR* output, int room) {
    if (!output) return 0;
    if (!ZelYiPuaReady()) {
        *output = u;
        return 1;
    }
    if (!IsInternal(u)) {
        if (room < 1) return 0;  // a negative room is no room either
        *output = u;
        return 1;
    }
    // An internal character is only written where a pair would fit, whatever it becomes.
    if (room < 2) return 0;
    return WriteCodePoint(ZelInternalToOutside(u), output);
}

int SurrogatePairToUni(DWORD pair, WCHAR* output, int room) {
    if (!output) return 0;
    if (!ZelYiPuaReady()) {
        *output = static_cast<WCHAR>(pair >> 16);
        return 1;
    }
    if (room < 1) return 0;
    const DWORD c = _SURCHAR_TO_UCSCHAR(pair);
    const bool yiRange = (c >= kYiFirstOutside && c <= kYiLastOutside) || (c >= kPlane15YiFirst && c <= kPlane15YiLast);
    if (!yiRange) {
        // The plane 15 image comes back to U+A000 and up; other code points fold into 16 bits.
        *output = static_cast<WCHAR>((c - 0x6000) & 0xFFFF);
        return 1;
    }
    // The last entry that matches stands; no match leaves the output as it was.
    for (DWORD i = 0; i < YiPuaCount; ++i) {
        if (YiPuaTbl[i] == c) *output = static_cast<WCHAR>(kZelYiFirst + i);
    }
    return 1;
}
