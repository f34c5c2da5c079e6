// What a shaped character is as a presentation form.
#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/shaping_internal.h"
#include "bidi/unicode_lookup.h"

namespace zelshape {

DWORD PrevBaseIndex(const WCHAR* text, DWORD index) {
    while (index > 0) {
        --index;
        if (zelbidi::CategoryOf(text[index]) != kCategoryMn) return index;
    }
    return kNoIndex;
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
