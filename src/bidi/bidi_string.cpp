// One line of text from logical to display order, in place, and what BidiString and ShapeString
// share of it: the resolution of a line, its display order, and the line one of them resolved
// last on this thread.
#include <algorithm>
#include <cstring>

#include "bidi/bidi_internal.h"
#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

constinit thread_local SharedLine t_sharedLine{};

}  // namespace

void StoredClasses(const LineScratch& scratch, DWORD count, WORD* classes) {
    for (DWORD i = 0; i < count; ++i) classes[i] = scratch.props[i] & kClassBits;
}

void ToDisplayOrder(WCHAR* out, const WCHAR* text, DWORD count, WORD baseLevel, const LineScratch& scratch,
                    WORD* levels, bool mirror) {
    const BYTE* const props = scratch.props;
    if (scratch.separators) {
        ResolveWhitespaceWith(baseLevel, levels, count,
                              [props](DWORD i) { return WORD{static_cast<WORD>(props[i] & kClassBits)}; });
    } else {
        for (DWORD i = count; i > 0 && (props[i - 1] & kClassBits) == ZelBidiWS; --i) levels[i - 1] = baseLevel;
    }
    ReorderInto(out, text, props, levels, count, baseLevel, mirror);
}

void StoredClasses(const WCHAR* text, DWORD count, WORD* classes) {
    for (DWORD i = 0; i < count; ++i) classes[i] = StoredClassOf(text[i]);
}

LineScratch::LineScratch(DWORD count) : propScratch_(nullptr, count), classScratch_(nullptr, count) {
    props = propScratch_.Get();
    classes = classScratch_.Get();
}

const SharedLine* TakeSharedLine(SharedLine::Owner asker, const WCHAR* text, DWORD count, WORD base) {
    SharedLine& line = t_sharedLine;
    if (line.owner == SharedLine::kNone || line.owner == asker || line.count != count || line.base != base ||
        std::memcmp(line.text, text, count * sizeof(WCHAR)) != 0)
        return nullptr;
    line.owner = SharedLine::kNone;
    return &line;
}

SharedLine* KeepSharedLine(SharedLine::Owner owner, const WCHAR* text, DWORD count, WORD base) {
    SharedLine& line = t_sharedLine;
    if (count > SharedLine::kUnits || count == 0) {
        line.owner = SharedLine::kNone;
        return nullptr;
    }
    line.owner = owner;
    line.count = count;
    line.base = base;
    std::copy(text, text + count, line.text);
    return &line;
}

}  // namespace zelbidi

using namespace zelbidi;

DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction) {
    count = TextCount(count);
    if (!text && count) return 0;
    if (count == 0) return 0;
    const WORD base = direction == 1 ? 1 : 0;

    // The line that ShapeString has just resolved: its levels and display order serve again.
    if (const SharedLine* line = TakeSharedLine(SharedLine::kBidiString, text, count, base)) {
        if (classes) StoredClasses(text, count, classes);
        if (levels) std::copy(line->levels, line->levels + count, levels);
        if (!line->raised && base == 0) return count;
        if (line->mirror == (mirror != 0)) {
            std::copy(line->display, line->display + count, text);
        } else {
            WCHAR display[SharedLine::kUnits];
            RedoDisplayOrder(display, text, count, base, line->levels, mirror != 0);
            std::copy(display, display + count, text);
        }
        return count;
    }

    // The levels array, when the caller doesn't give one, and the scratch space lie on the stack
    // for a line of up to Scratch::kStackUnits (1024) units and on the heap for a longer one.
    // Without memory for them the line is left as it is.
    Scratch<WORD> levelScratch(levels, count);
    LineScratch scratch(count);
    levels = levelScratch.Get();
    if (!levels || !scratch.props || !scratch.classes) return 0;

    SharedLine* keep = KeepSharedLine(SharedLine::kBidiString, text, count, base);
    const unsigned raised = ResolveLine(text, count, base, scratch, levels);
    if (classes) StoredClasses(scratch, count, classes);
    if (keep) {
        keep->raised = raised != 0;
        keep->mirror = mirror != 0;
    }
    // A left-to-right line with nothing raised reads as it stands.
    if (!raised && base == 0) {
        if (keep) {
            std::copy(levels, levels + count, keep->levels);
            std::copy(text, text + count, keep->display);
        }
        return count;
    }
    // The display order goes to the shared line, or to scratch space for a long line, and back.
    Scratch<WCHAR> displayScratch(keep ? keep->display : nullptr, count);
    WCHAR* display = displayScratch.Get();
    if (!display) return 0;
    ToDisplayOrder(display, text, count, base, scratch, levels, mirror != 0);
    std::copy(display, display + count, text);
    if (keep) std::copy(levels, levels + count, keep->levels);
    return count;
}
