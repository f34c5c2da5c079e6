// One line of logical text to presentation forms in display order.
#include <algorithm>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/shaping_internal.h"

using zelbidi::Scratch;

DWORD ShapeString(WCHAR* destination, const WCHAR* source, DWORD count, WORD* classes, WORD* levels, int mirror,
                  int direction) {
    count = zelbidi::TextCount(count);
    if (!destination || (!source && count)) return 0;
    const WORD base = direction == 1 ? 1 : 0;

    // Classes, levels and the copy of the text lie on the stack for an ordinary line and on the
    // heap beyond Scratch::kStackUnits units, so that a line of any length takes no more stack
    // than that. Without memory for them the destination is left empty.
    Scratch<WORD> classScratch(classes, count);
    Scratch<WORD> levelScratch(levels, count);
    classes = classScratch.Get();
    levels = levelScratch.Get();
    if (!classes || !levels) {
        destination[0] = 0;
        return 0;
    }

    const bool raised = zelbidi::ResolveLine(source, count, base, classes, levels);

    // A left-to-right line with nothing raised has no right-to-left text and so nothing to shape:
    // it is copied exactly, controls and all, with no terminator.
    if (!raised && base == 0) {
        std::copy(source, source + count, destination);
        return count;
    }

    Scratch<WCHAR> textScratch(nullptr, count);
    WCHAR* visual = textScratch.Get();
    if (!visual) {
        destination[0] = 0;
        return 0;
    }
    std::copy(source, source + count, visual);

    zelbidi::ToDisplayOrder(visual, count, base, classes, levels, mirror != 0);

    // A right-to-left line is written from its rightmost character on.
    zelshape::ShapeVisualText(destination, visual, count, base != 0);
    return count;
}
