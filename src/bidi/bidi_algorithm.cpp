// Level resolution of one line from its classes: the explicit controls and separators drop out,
// then the weak, neutral and implicit steps.
#include "bidi/bidi_internal.h"
#include "bidi/bidi_tables.h"

namespace zelbidi {

bool BidiStartLevels(WORD base, DWORD count, WORD* classes, WORD* levels, DWORD* raised) {
    if ((!classes || !levels) && count) {
        if (raised) *raised = 0;
        return false;
    }
    // A paragraph separator ends nothing here: the caller hands over one line at a time.
    for (DWORD i = 0; i < count; ++i)
        if (classes[i] == ZelBidiB) classes[i] = ZelBidiBN;
    // No embedding is acted on: the explicit controls drop out and every level starts at the base.
    for (DWORD i = 0; i < count; ++i) {
        if (classes[i] == kSkip) continue;
        if (classes[i] >= ZelBidiRLE && classes[i] <= ZelBidiPDF) classes[i] = ZelBidiBN;
        levels[i] = base;
    }
    return true;
}

DWORD BidiResolveImplicit(const WORD* classes, WORD* levels, DWORD count) {
    DWORD raised = 0;
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classes[i];
        if (cls == ZelBidiBN || cls == kSkip) continue;
        const BYTE add = cls < kNeutralColumns ? kImplicitTbl[levels[i] & 1][cls] : 0;
        levels[i] = static_cast<WORD>(levels[i] + add);
        if (add != 0) raised = 1;
    }
    return raised;
}

}  // namespace zelbidi

using namespace zelbidi;

DWORD BidiAlgorithm(LONG baseLevel, const WCHAR* /*text*/, DWORD count, WORD* classes, WORD* levels,
                    DWORD* raised) {
    count = TextCount(count);
    const WORD base = static_cast<WORD>(baseLevel);
    if (!BidiStartLevels(base, count, classes, levels, raised)) return 0;
    BidiResolveWeak(base, classes, count);
    BidiResolveNeutral(base, classes, count);
    const DWORD up = BidiResolveImplicit(classes, levels, count);
    if (raised) *raised = up;
    return count;
}
