// One line of logical text to presentation forms in display order.
#include <algorithm>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/shaping_internal.h"

using namespace zelbidi;

namespace {

// Shapes a line from its display order, or copies it where display is null.
DWORD ShapeDisplay(WCHAR* destination, const WCHAR* source, DWORD count, const WCHAR* display, bool backwards) {
    // A left-to-right line with nothing raised has no right-to-left text and so nothing to shape:
    // it is copied exactly, controls and all, with no terminator.
    if (!display) {
        std::copy(source, source + count, destination);
        return count;
    }
    // A right-to-left line is written from its rightmost character on.
    zelshape::ShapeVisualText(destination, display, count, backwards);
    return count;
}

}  // namespace

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
    if (const SharedLine* shared = TakeSharedLine(SharedLine::kShapeString, source, count, base)) {
        WCHAR redo[SharedLine::kUnits];
        const WCHAR* display = SharedDisplay(*shared, source, classes, levels, mirror != 0, redo);
        return ShapeDisplay(destination, source, count, display, backwards);
    }

    const DisplayLine line(SharedLine::kShapeString, source, count, base, classes, levels, mirror != 0);
    if (line.Failed()) {
        // Without memory for the arrays of a long line the destination is left empty.
        destination[0] = 0;
        return 0;
    }
    return ShapeDisplay(destination, source, count, line.Display(), backwards);
}
