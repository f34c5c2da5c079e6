// White space at the end of a line and in front of a separator goes back to the base level.
#include "bidi/bidi_internal.h"

using namespace zelbidi;

void BidiResolveWhitespace(WORD baseLevel, const WORD* classes, WORD* levels, DWORD count) {
    count = TextCount(count);
    if (!classes || !levels) return;
    ResolveWhitespaceWith(baseLevel, levels, count, [classes](DWORD i) { return classes[i]; });
}
