// Presentation forms of a buffer in display order, lam-alef ligatures and the blanks that stand
// for formatting controls, in one walk that carries the base character already passed.
#include <zel/bidi.h>

#include "bidi/shaping_internal.h"
#include "bidi/unicode_lookup.h"

namespace zelshape {

namespace {

using zelbidi::CategoryOf;
using zelbidi::JoiningOf;

inline bool IsMark(WCHAR c) { return CategoryOf(c) == kCategoryMn; }

// The form of a letter of joining type dual or right by its neighbours in the buffer: the lower
// one follows in reading and joins whatever its type; the higher one precedes in reading and must
// join towards its left.
inline int FormOf(WORD type, WCHAR lower, WCHAR higher) {
    const WORD higherType = JoiningOf(higher);
    const bool next = higherType == kJoinDual || higherType == kJoinCausing;
    if (type == kJoinRight) return next ? kFinal : kIsolated;
    const bool prev = JoiningOf(lower) != kJoinNone;
    return next ? (prev ? kMedial : kFinal) : (prev ? kInitial : kIsolated);
}

// Walks the buffer in the order of the destination. behind is the nearest base character (no mark)
// that the walk has passed, kNoBase at first; the one ahead is looked for only by the letters
// that join, so that a long run of marks is walked only by the letters at its two ends.
template <bool kBackwards>
DWORD Walk(WCHAR* destination, const WCHAR* source, DWORD count) {
    DWORD written = 0;
    WCHAR behind = kNoBase;
    for (DWORD step = 0; step < count; ++step) {
        const DWORD index = kBackwards ? count - 1 - step : step;
        const WCHAR c = source[index];
        const bool mark = IsMark(c);
        if (IsArabicBlock(c)) {
            const WORD type = JoiningOf(c);
            if (type != kJoinDual && type != kJoinRight) {
                // Form 0; neither a lam nor an alef of a ligature.
                destination[written++] = ShapeOf(static_cast<BYTE>(c & 0xFF), kIsolated);
            } else {
                WCHAR ahead = kNoBase;
                for (DWORD k = step + 1; k < count; ++k) {
                    const WCHAR n = source[kBackwards ? count - 1 - k : k];
                    if (!IsMark(n)) {
                        ahead = n;
                        break;
                    }
                }
                const WCHAR lower = kBackwards ? ahead : behind;
                const WCHAR higher = kBackwards ? behind : ahead;
                const int form = FormOf(type, lower, higher);
                if (IsLigatureAlef(c) && higher == kLam) {
                    // the lam on its other side writes the ligature
                } else if (c == kLam && IsLigatureAlef(lower)) {
                    destination[written++] = kLamAlefTbl[(lower & 0xFF) - kLamAlefFirstLow][form];
                } else {
                    destination[written++] = ShapeOf(static_cast<BYTE>(c & 0xFF), form);
                }
            }
        } else if (IsFormatControl(c)) {
            destination[written++] = kBlank;
        } else {
            // Walking backwards turns the text around once more, so what points one way is
            // exchanged for its partner, whatever its level.
            destination[written++] = kBackwards ? zelbidi::MirrorOf(c) : c;
        }
        if (!mark) behind = c;
    }
    destination[written] = 0;
    return written;
}

}  // namespace

DWORD ShapeVisualText(WCHAR* destination, const WCHAR* source, DWORD count, bool backwards) {
    return backwards ? Walk<true>(destination, source, count) : Walk<false>(destination, source, count);
}

}  // namespace zelshape
