// The steps of the bidi resolution behind BidiAlgorithm and BidiString, shared with the shaper:
// classification, the weak and neutral state machines, mirroring, reordering, and the scratch
// arrays of a call.
#ifndef ZEL_BIDI_BIDI_INTERNAL_H
#define ZEL_BIDI_BIDI_INTERNAL_H

#include <cstddef>
#include <memory>
#include <new>

#include <zel/bidi.h>
#include <zel/wintypes.h>

namespace zelbidi {

// A class that the resolution steps pass over: neither its class nor its level is touched.
constexpr WORD kSkip = 0xFFFF;

// The count of a text as the exported calls take it. A count above the largest signed 32-bit value
// is a negative length that became unsigned on its way in, and no text could be that long: it is
// taken as a count of 0, so that nothing is read or written.
constexpr DWORD TextCount(DWORD count) { return count > 0x7FFFFFFFu ? 0 : count; }

// The columns of the weak tables are the classes ON to ET; those of the neutral tables ON to EN.
constexpr int kWeakStates = 20;
constexpr int kWeakColumns = 10;
constexpr int kNeutralStates = 6;
constexpr int kNeutralColumns = 5;

// Weak step: the next state, and the action. Bits 0 to 3 of an action give the class the current
// position takes (0xF keeps it), bits 4 to 7 the class the deferred run is filled with (0xF leaves
// it open), bit 8 adds the current position to the run.
extern const BYTE kWeakStateTbl[kWeakStates][kWeakColumns];
extern const WORD kWeakActionTbl[kWeakStates][kWeakColumns];
// Neutral step: the same, but 0 keeps the class and leaves the run open, and a fill class of 3
// stands for the direction of the current level.
extern const BYTE kNeutralStateTbl[kNeutralStates][kNeutralColumns];
extern const WORD kNeutralActionTbl[kNeutralStates][kNeutralColumns];
// What the implicit step adds to a level, by its parity and the resolved class ON to EN.
extern const BYTE kImplicitTbl[2][kNeutralColumns];

// The direction of a level as a class: R for an odd level, L for an even one.
inline WORD DirectionOf(WORD level) { return (level & 1) ? ZelBidiR : ZelBidiL; }

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

// What a state machine does at one position: the class to fill the deferred run with, the class
// the position takes (kSkip for neither), and whether the position joins the run.
struct RunAction {
    WORD fill;
    WORD take;
    bool defer;
};

// The walk that the weak and the neutral step share. Skipped positions are passed over; a BN is
// looked up nowhere and joins the run if one is open. Every other position goes to
// machine.Step(index, class), which also moves the machine on. Behind the last position
// machine.End() gives the class that settles what is still open, or kSkip.
template <typename Machine>
void WalkRuns(WORD* classes, DWORD count, Machine& machine) {
    DWORD run = 0;
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classes[i];
        if (cls == kSkip) continue;
        if (cls == ZelBidiBN) {
            if (run > 0) ++run;
            continue;
        }
        const RunAction action = machine.Step(i, cls);
        if (action.fill != kSkip) FillRun(classes, i, run, action.fill);
        if (action.take != kSkip) classes[i] = action.take;
        if (action.defer) ++run;
    }
    const WORD fill = machine.End();
    if (fill != kSkip) FillRun(classes, count, run, fill);
}

enum class ClassMode {
    Resolve,  // the classes the resolution works with, a full stop behind a number taking its class
    Raw,      // the classes as stored: white space, separators and explicit controls stay apart
};

// Fills classes with the class of each of the count characters of text.
void BidiClassify(const WCHAR* text, DWORD count, WORD* classes, ClassMode mode);

// The steps of BidiAlgorithm after the explicit controls and separators became BN and every
// level the base level.
void BidiResolveWeak(WORD baseLevel, WORD* classes, DWORD count);
void BidiResolveNeutral(WORD baseLevel, WORD* classes, const WORD* levels, DWORD count);
// Gives 1 when some level was raised.
DWORD BidiResolveImplicit(const WORD* classes, WORD* levels, DWORD count);

// Swaps each mirrored character at an odd level for its partner; text and levels in logical order.
void BidiMirrorText(WCHAR* text, const WORD* levels, DWORD count);

// Puts text into display order by its levels, which stay in logical order. The levels are those
// of BidiAlgorithm and BidiResolveWhitespace for the same base level: none below it, none more
// than two above it, which bounds the depth of the recursion of BidiReorderLevel.
void BidiReorder(WORD baseLevel, WCHAR* text, const WORD* levels, DWORD count);
// Orders the run at the front of text whose levels are level or above, reversing it when reverse
// is set or level is odd. Gives the length of that run.
DWORD BidiReorderLevel(WORD level, WCHAR* text, const WORD* levels, DWORD count, bool reverse);

// Scratch array of a call. Up to kStackUnits units it lies in the object, on the caller's stack;
// beyond that it comes from the heap, so that a line of any length needs no more stack than an
// ordinary one (a few kilobytes per array). Get() is null when that allocation failed.
template <typename T>
class Scratch {
public:
    static constexpr DWORD kStackUnits = 1024;

    // The caller's own array when given is used as it stands.
    Scratch(T* given, DWORD count) {
        if (given) {
            data_ = given;
        } else if (count <= kStackUnits) {
            data_ = local_;
        } else {
            heap_.reset(new (std::nothrow) T[count]);
            data_ = heap_.get();
        }
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    T* Get() const { return data_; }

private:
    T local_[kStackUnits];
    std::unique_ptr<T[]> heap_;
    T* data_;
};

// The first half of a line's way to display, shared by BidiString and ShapeString: the levels are
// resolved and the classes set back to the stored ones. True when some level was raised.
bool ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, WORD* classes, WORD* levels);
// The second half: white space back to the base level, mirroring when asked for, reordering.
void ToDisplayOrder(WCHAR* text, DWORD count, WORD baseLevel, const WORD* classes, WORD* levels, bool mirror);

}  // namespace zelbidi

#endif  // ZEL_BIDI_BIDI_INTERNAL_H
