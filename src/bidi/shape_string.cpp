// One line of logical text to presentation forms in display order.
#include <algorithm>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/shaping_internal.h"

using namespace zelbidi;

DWORD ShapeString(WCHAR* destination, const WCHAR* source, DWORD count, WORD* classes, WORD* levels, int mirror,
                  int direction) {
    count = TextCount(count);
    if (!destination || (!source && count)) return 0;
    const WORD base = direction == 1 ? 1 : 0;
    const bool backwards = base != 0;
    // An empty line: nothing at all left to right, the terminator alone right to left.
    if (count == 0) {
        if (backwards) destination[0] = 0;
        return 0;
    }

    // The line that BidiString has just resolved: its levels and display order serve again.
    if (const SharedLine* line = TakeSharedLine(SharedLine::kShapeString, source, count, base)) {
        if (classes) StoredClasses(source, count, classes);
        if (levels) std::copy(line->levels, line->levels + count, levels);
        if (!line->raised && base == 0) {
            std::copy(source, source + count, destination);
            return count;
        }
        if (line->mirror == (mirror != 0)) {
            zelshape::ShapeVisualText(destination, line->display, count, backwards);
            return count;
        }
        WCHAR visual[SharedLine::kUnits];
        RedoDisplayOrder(visual, source, count, base, line->levels, mirror != 0);
        zelshape::ShapeVisualText(destination, visual, count, backwards);
        return count;
    }

    // The levels and the scratch space lie on the stack for an ordinary line and on the heap beyond
    // Scratch::kStackUnits units, so that a line of any length takes no more stack than that.
    // Without memory for them the destination is left empty.
    Scratch<WORD> levelScratch(levels, count);
    LineScratch scratch(count);
    levels = levelScratch.Get();
    if (!levels || !scratch.props || !scratch.classes) {
        destination[0] = 0;
        return 0;
    }

    SharedLine* keep = KeepSharedLine(SharedLine::kShapeString, source, count, base);
    const bool raised = ResolveLine(source, count, base, scratch, levels) != 0;
    if (classes) StoredClasses(scratch, count, classes);
    if (keep) {
        keep->raised = raised;
        keep->mirror = mirror != 0;
    }

    // A left-to-right line with nothing raised has no right-to-left text and so nothing to shape:
    // it is copied exactly, controls and all, with no terminator.
    if (!raised && base == 0) {
        std::copy(source, source + count, destination);
        if (keep) {
            std::copy(levels, levels + count, keep->levels);
            std::copy(source, source + count, keep->display);
        }
        return count;
    }

    // The display order goes straight to the shared line, or to scratch space for a long line.
    Scratch<WCHAR> visualScratch(keep ? keep->display : nullptr, count);
    WCHAR* visual = visualScratch.Get();
    if (!visual) {
        destination[0] = 0;
        return 0;
    }
    ToDisplayOrder(visual, source, count, base, scratch, levels, mirror != 0);
    if (keep) std::copy(levels, levels + count, keep->levels);
    // A right-to-left line is written from its rightmost character on.
    zelshape::ShapeVisualText(destination, visual, count, backwards);
    return count;
}
