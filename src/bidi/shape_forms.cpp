// Neighbours and forms of a letter in a visual buffer, and what a shaped character is as a
// presentation form.
#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/shaping_internal.h"

namespace zelshape {

namespace {

constexpr WORD kCategoryMn = 1;

inline bool IsMark(WCHAR c) { return GetUnicodeCategory(c) == kCategoryMn; }

}  // namespace

DWORD PrevBaseIndex(const WCHAR* text, DWORD index) {
    while (index > 0) {
        --index;
        if (!IsMark(text[index])) return index;
    }
    return kNoIndex;
}

DWORD NextBaseIndex(const WCHAR* text, DWORD count, DWORD index) {
    while (index + 1 < count) {
        ++index;
        if (!IsMark(text[index])) return index;
    }
    return kNoIndex;
}

WCHAR ShapePrevBase(const WCHAR* text, DWORD index) {
    const DWORD at = PrevBaseIndex(text, index);
    return at == kNoIndex ? kNoBase : text[at];
}

WCHAR ShapeNextBase(const WCHAR* text, DWORD count, DWORD index) {
    const DWORD at = NextBaseIndex(text, count, index);
    return at == kNoIndex ? kNoBase : text[at];
}

int ShapeForm(const WCHAR* text, DWORD count, DWORD index) {
    const WORD type = ZelBidiJoining(text[index]);
    // Non-joining and join-causing characters keep form 0; their neighbours are not looked at, so
    // that a long run of marks is walked only by the letters at its two ends.
    if (type != kJoinDual && type != kJoinRight) return kIsolated;

    // The lower neighbour follows in reading: it joins whatever its type. The higher one precedes
    // in reading and must join towards its left.
    const bool prev = ZelBidiJoining(ShapePrevBase(text, index)) != kJoinNone;
    const WORD nextType = ZelBidiJoining(ShapeNextBase(text, count, index));
    const bool next = nextType == kJoinDual || nextType == kJoinCausing;

    if (type == kJoinRight) return next ? kFinal : kIsolated;
    if (next && prev) return kMedial;
    if (next) return kFinal;
    if (prev) return kInitial;
    return kIsolated;
}

}  // namespace zelshape

BYTE BidiExtendableChar(const WCHAR* text, DWORD count, DWORD index) {
    constexpr WORD kTagInitial = 4;
    constexpr WORD kTagMedial = 5;
    constexpr WORD kTagFinal = 6;
    constexpr WORD kTagIsolated = 7;
    if (!text || index >= zelbidi::TextCount(count)) return 0;

    const WORD tag = ZelDecompositionTag(text[index]);
    switch (tag) {
        case kTagInitial:
        case kTagFinal:
        case kTagIsolated:
            return static_cast<BYTE>(tag);
        case kTagMedial: {
            // A medial form whose nearest letter before it is a final form; the blanks left in
            // place of controls don't count as letters.
            DWORD at = index;
            do {
                at = zelshape::PrevBaseIndex(text, at);
            } while (at != zelshape::kNoIndex && text[at] == zelshape::kBlank);
            if (at != zelshape::kNoIndex && ZelDecompositionTag(text[at]) == kTagFinal) return 0x85;
            return static_cast<BYTE>(kTagMedial);
        }
        default:
            return 0;
    }
}
