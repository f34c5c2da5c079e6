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

const WCHAR* SharedDisplay(const SharedLine& line, const WCHAR* text, WORD* classes, WORD* levels, bool mirror,
                           WCHAR* redo) {
    const DWORD count = line.count;
    if (classes) StoredClasses(text, count, classes);
    if (levels) std::copy(line.levels, line.levels + count, levels);
    if (!line.raised && line.base == 0) return nullptr;
    if (line.mirror == mirror) return line.display;
    RedoDisplayOrder(redo, text, count, line.base, line.levels, mirror);
    return redo;
}

DisplayLine::DisplayLine(SharedLine::Owner owner, const WCHAR* text, DWORD count, WORD base, WORD* classes,
                         WORD* levels, bool mirror)
    : keep_(KeepSharedLine(owner, text, count, base)),
      levelScratch_(levels, count),
      scratch_(count),
      displayScratch_(keep_ ? keep_->display : nullptr, count) {
    levels = levelScratch_.Get();
    WCHAR* const display = displayScratch_.Get();
    if (!levels || !scratch_.props || !scratch_.classes || !display) {
        if (keep_) keep_->owner = SharedLine::kNone;
        failed_ = true;
        return;
    }
    const bool raised = ResolveLine(text, count, base, scratch_, levels) != 0;
    if (classes) StoredClasses(scratch_, count, classes);
    if (raised || base != 0) {
        ToDisplayOrder(display, text, count, base, scratch_, levels, mirror);
        display_ = display;
    } else if (keep_) {
        std::copy(text, text + count, keep_->display);
    }
    if (keep_) {
        keep_->raised = raised;
        keep_->mirror = mirror;
        std::copy(levels, levels + count, keep_->levels);
    }
}

}  // namespace zelbidi

using namespace zelbidi;

DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction) {
    count = TextCount(count);
    if (!text && count) return 0;
    if (count == 0) return 0;
    const WORD base = direction == 1 ? 1 : 0;

    // The line that ShapeString has just resolved: its levels and display order serve again.
    if (const SharedLine* shared = TakeSharedLine(SharedLine::kBidiString, text, count, base)) {
        WCHAR redo[SharedLine::kUnits];
        const WCHAR* display = SharedDisplay(*shared, text, classes, levels, mirror != 0, redo);
        if (display) std::copy(display, display + count, text);
        return count;
    }

    const DisplayLine line(SharedLine::kBidiString, text, count, base, classes, levels, mirror != 0);
    if (line.Failed()) return 0;
    // A left-to-right line with nothing raised reads as it stands.
    if (line.Display()) std::copy(line.Display(), line.Display() + count, text);
    return count;
}
