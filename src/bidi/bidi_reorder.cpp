// Display order: mirrored characters at odd levels swap for their partners, and the runs of
// higher levels are reversed, the deepest first.
#include "bidi/bidi_internal.h"

#include <algorithm>

namespace zelbidi {

void BidiMirrorText(WCHAR* text, const WORD* levels, DWORD count) {
    for (DWORD i = 0; i < count; ++i)
        if ((levels[i] & 1) && BidiMirrored(text[i])) text[i] = GetBidiMirroredChar(text[i]);
}

DWORD BidiReorderLevel(WORD level, WCHAR* text, const WORD* levels, DWORD count, bool reverse) {
    if (level & 1) reverse = true;
    DWORD i = 0;
    for (; i < count; ++i) {
        if (levels[i] < level) break;
        // A higher run lies inside this one: order it first. It is at least one unit long.
        if (levels[i] > level)
            i += BidiReorderLevel(static_cast<WORD>(level + 1), text + i, levels + i, count - i, reverse) - 1;
    }
    if (reverse) std::reverse(text, text + i);
    return i;
}

void BidiReorder(WORD baseLevel, WCHAR* text, const WORD* levels, DWORD count) {
    for (DWORD i = 0; i < count;) {
        // A level below the base level can't come from the resolution; such a unit stays where it
        // is rather than stop the walk.
        const DWORD done = BidiReorderLevel(baseLevel, text + i, levels + i, count - i, false);
        i += done > 0 ? done : 1;
    }
}

}  // namespace zelbidi
