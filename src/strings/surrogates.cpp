// Surrogate pair arithmetic. Nothing is checked: the results are those of plain 32-bit unsigned
// arithmetic for any input.
#include <zel/strings.h>

DWORD _MAKE_UCSCHAR(WCHAR high, WCHAR low) {
    const DWORD highBits = (DWORD(high) - ZEL_SURROGATE_HIGH_FIRST) << ZEL_SURROGATE_SHIFT;
    return (highBits | (DWORD(low) - ZEL_SURROGATE_LOW_FIRST)) + ZEL_PLANE_BASE;
}

DWORD _SURCHAR_TO_UCSCHAR(DWORD pair) {
    return _MAKE_UCSCHAR(static_cast<WCHAR>(pair >> 16), static_cast<WCHAR>(pair & 0xFFFF));
}

DWORD _UCSCHAR_TO_SURCHAR(DWORD value) {
    if (value < ZEL_PLANE_BASE) return 0;
    const DWORD high = ((value - ZEL_PLANE_BASE) >> ZEL_SURROGATE_SHIFT) + ZEL_SURROGATE_HIGH_FIRST;
    const DWORD low = (value & ZEL_SURROGATE_MASK) + ZEL_SURROGATE_LOW_FIRST;
    return (high << 16) | low;
}
