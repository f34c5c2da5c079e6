// The straightforward form of the line operations, step by step as they were first written: each
// step a pass of its own over the line, every property read through the exported look-ups, the
// reordering recursive, the shaper looking up the neighbours of every letter afresh, and no
// sharing between calls. The library doesn't use it; the tests and fuzz targets hold the fast
// paths to it on every input.
#ifndef ZEL_BIDI_BIDI_REFERENCE_H
#define ZEL_BIDI_BIDI_REFERENCE_H

#include <algorithm>
#include <vector>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/bidi_tables.h"
#include "bidi/shaping_internal.h"

namespace zelbidi::reference {

// Writes value into the run count positions in front of index, from the nearest one backwards,
// passing over skipped positions, and empties the run.
inline void FillRun(WORD* classes, DWORD index, DWORD& run, WORD value) {
    while (run > 0 && index > 0) {
        --index;
        if (classes[index] == kSkip) continue;
        classes[index] = value;
        --run;
    }
    run = 0;
}

inline WORD DirectionOf(WORD level) { return (level & 1) ? ZelBidiR : ZelBidiL; }

// The weak step (neutral false) or the neutral step (neutral true), straight from the tables.
inline void ResolveRuns(bool neutral, WORD base, WORD* classes, const WORD* levels, DWORD count) {
    int state = neutral ? ((base & 1) ? 0 : 1) : ((base & 1) ? 1 : 2);
    WORD level = base;
    DWORD run = 0;
    const auto fillOf = [&](WORD action) -> WORD {
        const WORD fill = (action >> 4) & 0xF;
        if (neutral) return fill == 0 ? kSkip : fill == 3 ? DirectionOf(level) : fill;
        return fill == 0xF ? kSkip : fill;
    };
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classes[i];
        if (cls == kSkip) continue;
        if (cls == ZelBidiBN) {
            if (run > 0) ++run;
            continue;
        }
        const int columns = neutral ? kNeutralColumns : kWeakColumns;
        const int column = cls < columns ? cls : int{ZelBidiON};
        const WORD action = neutral ? kNeutralActionTbl[state][column] : kWeakActionTbl[state][column];
        const WORD fill = fillOf(action);
        if (fill != kSkip) FillRun(classes, i, run, fill);
        const WORD take = action & 0xF;
        if (neutral ? take != 0 : take != 0xF) classes[i] = take;
        if (action & 0x100) ++run;
        state = neutral ? kNeutralStateTbl[state][column] : kWeakStateTbl[state][column];
        if (neutral) level = levels[i];
    }
    const WORD end = neutral ? kNeutralActionTbl[state][DirectionOf(level)] : kWeakActionTbl[state][DirectionOf(base)];
    const WORD fill = fillOf(end);
    if (fill != kSkip) FillRun(classes, count, run, fill);
}

// The first and last steps are the library's own, which haven't changed.
inline DWORD BidiAlgorithm(LONG baseLevel, DWORD count, WORD* classes, WORD* levels, DWORD* raised) {
    count = TextCount(count);
    const WORD base = static_cast<WORD>(baseLevel);
    if (!BidiStartLevels(base, count, classes, levels, raised)) return 0;
    ResolveRuns(false, base, classes, levels, count);
    ResolveRuns(true, base, classes, levels, count);
    const DWORD up = BidiResolveImplicit(classes, levels, count);
    if (raised) *raised = up;
    return count;
}

inline void ResolveWhitespace(WORD baseLevel, const WORD* classes, WORD* levels, DWORD count) {
    count = TextCount(count);
    if (!classes || !levels) return;
    DWORD run = 0;
    WORD previous = baseLevel;
    const auto reset = [&](DWORD index) {
        for (DWORD k = index - run; k < index; ++k) levels[k] = baseLevel;
    };
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classes[i];
        if (cls == kSkip) {
            ++run;
            continue;
        }
        if (cls == ZelBidiBN) {
            levels[i] = previous;
            ++run;
        } else if (cls == ZelBidiWS) {
            ++run;
        } else if (cls == ZelBidiS || cls == ZelBidiB) {
            reset(i);
            levels[i] = baseLevel;
            run = 0;
        } else if (cls < ZelBidiRLE || cls > ZelBidiPDF) {
            run = 0;
        }
        previous = levels[i];
    }
    reset(count);
}

inline void Classify(const WCHAR* text, DWORD count, WORD* classes, ClassMode mode) {
    if (mode == ClassMode::Raw) {
        for (DWORD i = 0; i < count; ++i) classes[i] = ZelClassFromChWS(text[i]);
        return;
    }
    for (DWORD i = 0; i < count; ++i) {
        classes[i] = ZelClassFromChN(text[i]);
        if (text[i] == u'.' && i > 0 && (classes[i - 1] == ZelBidiEN || classes[i - 1] == ZelBidiAN))
            classes[i] = classes[i - 1];
    }
}

inline void MirrorText(WCHAR* text, const WORD* levels, DWORD count) {
    for (DWORD i = 0; i < count; ++i)
        if ((levels[i] & 1) && BidiMirrored(text[i])) text[i] = GetBidiMirroredChar(text[i]);
}

inline DWORD ReorderLevel(WORD level, WCHAR* text, const WORD* levels, DWORD count, bool reverse) {
    if (level & 1) reverse = true;
    DWORD i = 0;
    for (; i < count; ++i) {
        if (levels[i] < level) break;
        if (levels[i] > level)
            i += ReorderLevel(static_cast<WORD>(level + 1), text + i, levels + i, count - i, reverse) - 1;
    }
    if (reverse) std::reverse(text, text + i);
    return i;
}

inline void Reorder(WORD baseLevel, WCHAR* text, const WORD* levels, DWORD count) {
    for (DWORD i = 0; i < count;) {
        const DWORD done = ReorderLevel(baseLevel, text + i, levels + i, count - i, false);
        i += done > 0 ? done : 1;
    }
}

inline bool ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, WORD* classes, WORD* levels) {
    Classify(text, count, classes, ClassMode::Resolve);
    DWORD raised = 0;
    BidiAlgorithm(baseLevel, count, classes, levels, &raised);
    Classify(text, count, classes, ClassMode::Raw);
    return raised != 0;
}

inline void ToDisplayOrder(WCHAR* text, DWORD count, WORD baseLevel, const WORD* classes, WORD* levels,
                           bool mirror) {
    ResolveWhitespace(baseLevel, classes, levels, count);
    if (mirror) MirrorText(text, levels, count);
    Reorder(baseLevel, text, levels, count);
}

inline DWORD BidiString(WCHAR* text, DWORD count, WORD* classes, WORD* levels, int mirror, int direction) {
    count = TextCount(count);
    if (!text && count) return 0;
    const WORD base = direction == 1 ? 1 : 0;
    std::vector<WORD> classScratch(classes ? 0 : count), levelScratch(levels ? 0 : count);
    if (!classes) classes = classScratch.data();
    if (!levels) levels = levelScratch.data();
    const bool raised = ResolveLine(text, count, base, classes, levels);
    if (!raised && base == 0) return count;
    ToDisplayOrder(text, count, base, classes, levels, mirror != 0);
    return count;
}

inline WCHAR PrevBase(const WCHAR* text, DWORD index) {
    while (index > 0) {
        --index;
        if (GetUnicodeCategory(text[index]) != 1) return text[index];
    }
    return zelshape::kNoBase;
}

inline WCHAR NextBase(const WCHAR* text, DWORD count, DWORD index) {
    while (index + 1 < count) {
        ++index;
        if (GetUnicodeCategory(text[index]) != 1) return text[index];
    }
    return zelshape::kNoBase;
}

inline int ShapeForm(const WCHAR* text, DWORD count, DWORD index) {
    using namespace zelshape;
    const WORD type = ZelBidiJoining(text[index]);
    if (type != kJoinDual && type != kJoinRight) return kIsolated;
    const bool prev = ZelBidiJoining(PrevBase(text, index)) != kJoinNone;
    const WORD nextType = ZelBidiJoining(NextBase(text, count, index));
    const bool next = nextType == kJoinDual || nextType == kJoinCausing;
    if (type == kJoinRight) return next ? kFinal : kIsolated;
    if (next && prev) return kMedial;
    if (next) return kFinal;
    if (prev) return kInitial;
    return kIsolated;
}

inline DWORD ShapeVisualText(WCHAR* destination, const WCHAR* source, DWORD count, bool backwards) {
    using namespace zelshape;
    DWORD written = 0;
    for (DWORD step = 0; step < count; ++step) {
        const DWORD index = backwards ? count - 1 - step : step;
        const WCHAR c = source[index];
        if (IsArabicBlock(c)) {
            const int form = ShapeForm(source, count, index);
            if (IsLigatureAlef(c) && NextBase(source, count, index) == kLam) continue;
            if (c == kLam && IsLigatureAlef(PrevBase(source, index))) {
                destination[written++] = GetArabicUnicodeLamAlefMapping(static_cast<BYTE>(PrevBase(source, index)), form);
                continue;
            }
            destination[written++] = GetBidiShape(c, static_cast<BYTE>(c & 0xFF), form);
        } else if (IsFormatControl(c)) {
            destination[written++] = kBlank;
        } else {
            destination[written++] = backwards ? GetBidiMirroredChar(c) : c;
        }
    }
    destination[written] = 0;
    return written;
}

inline DWORD ShapeString(WCHAR* destination, const WCHAR* source, DWORD count, WORD* classes, WORD* levels,
                         int mirror, int direction) {
    count = TextCount(count);
    if (!destination || (!source && count)) return 0;
    const WORD base = direction == 1 ? 1 : 0;
    std::vector<WORD> classScratch(classes ? 0 : count), levelScratch(levels ? 0 : count);
    if (!classes) classes = classScratch.data();
    if (!levels) levels = levelScratch.data();
    const bool raised = ResolveLine(source, count, base, classes, levels);
    if (!raised && base == 0) {
        std::copy(source, source + count, destination);
        return count;
    }
    std::vector<WCHAR> visual(source, source + count);
    ToDisplayOrder(visual.data(), count, base, classes, levels, mirror != 0);
    ShapeVisualText(destination, visual.data(), count, base != 0);
    return count;
}

}  // namespace zelbidi::reference

#endif  // ZEL_BIDI_BIDI_REFERENCE_H
