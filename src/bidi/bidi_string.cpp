// One line of text from logical to display order, in place.
#include "bidi/bidi_internal.h"

using namespace zelbidi;

DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction) {
    if (!text && count) return 0;
    const WORD base = direction == 1 ? 1 : 0;
    // Arrays the caller didn't give lie on the stack for a line of up to Scratch::kStackUnits
    // (1024) units and on the heap for a longer one. Without memory for them the line is left as
    // it is.
    Scratch<WORD> classScratch(classes, count);
    Scratch<WORD> levelScratch(levels, count);
    classes = classScratch.Get();
    levels = levelScratch.Get();
    if (!classes || !levels) return 0;

    BidiClassify(text, count, classes, ClassMode::Resolve);
    DWORD raised = 0;
    BidiAlgorithm(base, text, count, classes, levels, &raised);
    BidiClassify(text, count, classes, ClassMode::Raw);
    // A left-to-right line with nothing raised reads as it stands.
    if (!raised && base == 0) return count;

    BidiResolveWhitespace(base, classes, levels, count);
    if (mirror) BidiMirrorText(text, levels, count);
    BidiReorder(base, text, levels, count);
    return count;
}
