// Presentation forms of a buffer in display order, lam-alef ligatures and the blanks that stand
// for formatting controls, in one walk that carries the base character already passed.
#include <zel/bidi.h>

#include "bidi/shaping_internal.h"
#include "bidi/unicode_lookup.h"

namespace zelshape {

namespace {

using zelbidi::CategoryOf;
using zelbidi::JoiningOf;

// No character below U+0300 is a mark.
inline bool IsMark(WCHAR c) { return c >= 0x0300 && CategoryOf(c) == kCategoryMn; }

// The form of a letter of joining type dual or right by the joining types of its neighbours in
// the buffer: the lower one follows in reading and joins whatever its type; the higher one
// precedes in reading and must join towards its left.
inline int FormOf(WORD type, WORD lowerType, WORD higherType) {
    const bool next = higherType == kJoinDual || higherType == kJoinCausing;
    if (type == kJoinRight) return next ? kFinal : kIsolated;
    const bool prev = lowerType != kJoinNone;
    return next ? (prev ? kMedial : kFinal) : (prev ? kInitial : kIsolated);
}

// Walks the buffer in the order of the destination. behind is the nearest base character (no mark)
// that the walk has passed, kNoBase at first, with its joining type once it is known; the one
// ahead is looked for only by the letters that join, so that a long run of marks is walked only by
// the letters at its two ends.
template <bool kBackwards>
DWORD Walk(WCHAR* destination, const WCHAR* source, DWORD count) {
    constexpr WORD kUnknown = 0xFF;
    DWORD written = 0;
    WCHAR behind = kNoBase;
    WORD behindType = kJoinNone;
    // The step of the base character a letter found ahead, and its joining type: when the walk
    // gets there, both are known.
    DWORD aheadStep = count;
    WORD aheadType = kJoinNone;
    for (DWORD step = 0; step < count; ++step) {
        const DWORD index = kBackwards ? count - 1 - step : step;
        const WCHAR c = source[index];
        if (IsArabicBlock(c)) {
            const WORD type = step == aheadStep ? aheadType : JoiningOf(c);
            if (type != kJoinDual && type != kJoinRight) {
                // Form 0; neither a lam nor an alef of a ligature.
                destination[written++] = ShapeOf(static_cast<BYTE>(c & 0xFF), kIsolated);
                if (step == aheadStep || !IsMark(c)) {
                    behind = c;
                    behindType = type;
                }
                continue;
            }
            WCHAR ahead = kNoBase;
            aheadStep = count;
            for (DWORD k = step + 1; k < count; ++k) {
                const WCHAR n = source[kBackwards ? count - 1 - k : k];
                if (!IsMark(n)) {
                    ahead = n;
                    aheadStep = k;
                    break;
                }
            }
            if (behindType == kUnknown) behindType = JoiningOf(behind);
            aheadType = JoiningOf(ahead);
            const WCHAR lower = kBackwards ? ahead : behind;
            const WCHAR higher = kBackwards ? behind : ahead;
            const int form = kBackwards ? FormOf(type, aheadType, behindType) : FormOf(type, behindType, aheadType);
            if (IsLigatureAlef(c) && higher == kLam) {
                // the lam on its other side writes the ligature
            } else if (c == kLam && IsLigatureAlef(lower)) {
                destination[written++] = kLamAlefTbl[(lower & 0xFF) - kLamAlefFirstLow][form];
            } else {
                destination[written++] = ShapeOf(static_cast<BYTE>(c & 0xFF), form);
            }
            // A letter that joins is no mark.
            behind = c;
            behindType = type;
            continue;
        }
        if (IsFormatControl(c)) {
            destination[written++] = kBlank;
        } else {
            // Walking backwards turns the text around once more, so what points one way is
            // exchanged for its partner, whatever its level.
            destination[written++] = kBackwards ? zelbidi::MirrorOf(c) : c;
            if (IsMark(c)) continue;
        }
        behind = c;
        behindType = kUnknown;
    }
    destination[written] = 0;
    return written;
}

}  // namespace

DWORD ShapeVisualText(WCHAR* destination, const WCHAR* source, DWORD count, bool backwards) {
    return backwards ? Walk<true>(destination, source, count) : Walk<false>(destination, source, count);
}

}  // namespace zelshape
