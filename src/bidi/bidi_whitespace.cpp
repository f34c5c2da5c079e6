// White space at the end of a line and in front of a separator goes back to the base level.
#include "bidi/bidi_internal.h"

namespace zelbidi {

namespace {

void ResetRun(WORD baseLevel, WORD* levels, DWORD index, DWORD run) {
    for (DWORD k = index - run; k < index; ++k) levels[k] = baseLevel;
}

}  // namespace

}  // namespace zelbidi

using namespace zelbidi;

void BidiResolveWhitespace(WORD baseLevel, const WORD* classes, WORD* levels, DWORD count) {
    count = TextCount(count);
    if (!classes || !levels) return;
    DWORD run = 0;
    WORD previous = baseLevel;
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classes[i];
        if (cls == kSkip) {
            ++run;
            continue;
        }
        switch (cls) {
        case ZelBidiBN:
            // A BN was passed over by the resolution; it goes with what stands before it.
            levels[i] = previous;
            ++run;
            break;
        case ZelBidiWS:
            ++run;
            break;
        case ZelBidiS:
        case ZelBidiB:
            ResetRun(baseLevel, levels, i, run);
            levels[i] = baseLevel;
            run = 0;
            break;
        case ZelBidiRLE:
        case ZelBidiRLO:
        case ZelBidiLRO:
        case ZelBidiLRE:
        case ZelBidiPDF:
            // An explicit control neither ends a run of white space nor lengthens it.
            break;
        default:
            run = 0;
            break;
        }
        previous = levels[i];
    }
    ResetRun(baseLevel, levels, count, run);
}
