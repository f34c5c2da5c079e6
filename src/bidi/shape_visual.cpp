// Presentation forms of a buffer in display order, lam-alef ligatures and the blanks that stand
// for formatting controls.
#include <zel/bidi.h>

#include "bidi/shaping_internal.h"

namespace zelshape {

namespace {

// Writes the form of the letter at index, or nothing when it is the alef of a ligature. Gives the
// number of units written, 0 or 1.
DWORD ShapeOne(WCHAR* out, const WCHAR* text, DWORD count, DWORD index) {
    const WCHAR c = text[index];
    const int form = ShapeForm(text, count, index);
    if (IsLigatureAlef(c) && ShapeNextBase(text, count, index) == kLam) {
        return 0;  // the lam on its other side writes the ligature
    }
    if (c == kLam) {
        const WCHAR alef = ShapePrevBase(text, index);
        if (IsLigatureAlef(alef)) {
            *out = GetArabicUnicodeLamAlefMapping(static_cast<BYTE>(alef & 0xFF), form);
            return 1;
        }
    }
    *out = GetBidiShape(c, static_cast<BYTE>(c & 0xFF), form);
    return 1;
}

}  // namespace

DWORD ShapeVisualText(WCHAR* destination, const WCHAR* source, DWORD count, bool backwards) {
    DWORD written = 0;
    for (DWORD step = 0; step < count; ++step) {
        const DWORD index = backwards ? count - 1 - step : step;
        const WCHAR c = source[index];
        if (IsArabicBlock(c)) {
            written += ShapeOne(destination + written, source, count, index);
        } else if (IsFormatControl(c)) {
            destination[written++] = kBlank;
        } else {
            // Walking backwards turns the text around once more, so what points one way is
            // exchanged for its partner, whatever its level.
            destination[written++] = backwards ? GetBidiMirroredChar(c) : c;
        }
    }
    destination[written] = 0;
    return written;
}

}  // namespace zelshape
