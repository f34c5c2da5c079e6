// One line of text from logical to display order, in place.
#include "bidi/bidi_internal.h"

using namespace zelbidi;

bool zelbidi::ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, WORD* classes, WORD* levels) {
    BidiClassify(text, count, classes, ClassMode::Resolve);
    DWORD raised = 0;
    BidiAlgorithm(baseLevel, text, count, classes, levels, &raised);
    BidiClassify(text, count, classes, ClassMode::Raw);
    return raised != 0;
}

void zelbidi::ToDisplayOrder(WCHAR* text, DWORD count, WORD baseLevel, const WORD* classes, WORD* levels,
                             bool mirror) {
    BidiResolveWhitespace(baseLevel, classes, levels, count);
    if (mirror) BidiMirrorText(text, levels, count);
    BidiReorder(baseLevel, text, levels, count);
}

DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction) {
    count = TextCount(count);
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

    const bool raised = ResolveLine(text, count, base, classes, levels);
    // A left-to-right line with nothing raised reads as it stands.
    if (!raised && base == 0) return count;
    ToDisplayOrder(text, count, base, classes, levels, mirror != 0);
    return count;
}
