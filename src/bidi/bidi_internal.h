// The steps of the bidi resolution behind BidiAlgorithm and BidiString, shared with the shaper:
// the weak and neutral steps, white space, reordering, the scratch arrays of a call, and the line
// that BidiString and ShapeString share.
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

enum class ClassMode {
    Resolve,  // the classes the resolution works with, a full stop behind a number taking its class
    Raw,      // the classes as stored: white space, separators and explicit controls stay apart
};

// The first steps of BidiAlgorithm: paragraph separators and explicit controls become BN and every
// level the base level. False, with *raised 0 where raised isn't null, when an array is missing.
bool BidiStartLevels(WORD base, DWORD count, WORD* classes, WORD* levels, DWORD* raised);
// The last one: adds to each level by its resolved class. Gives 1 when some level was raised.
DWORD BidiResolveImplicit(const WORD* classes, WORD* levels, DWORD count);
// The weak and the neutral step of BidiAlgorithm, after the explicit controls and separators
// became BN, when every level is the base level.
void BidiResolveWeak(WORD baseLevel, WORD* classes, DWORD count);
void BidiResolveNeutral(WORD baseLevel, WORD* classes, DWORD count);

// Writes count units of text to out, which doesn't overlap it, in display order by their levels,
// which are those of a resolved line: none below the base level, and none above the lowest odd
// level at or above it plus one. When mirror is set the units at an odd level are swapped for
// their partners; props, when not null, are the property bytes of text, which save a look-up.
void ReorderInto(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD count, WORD baseLevel,
                 bool mirror);

// The classes that the white space step does more with than with white space and the rest: BN,
// the separators and the explicit controls.
constexpr DWORD kWhitespaceFew = 1u << ZelBidiBN | 1u << ZelBidiS | 1u << ZelBidiB | 1u << ZelBidiRLE |
                                 1u << ZelBidiRLO | 1u << ZelBidiLRO | 1u << ZelBidiLRE | 1u << ZelBidiPDF;

// The white space step: trailing white space and white space in front of a segment or paragraph
// separator go back to the base level, a BN takes the level before it. classAt(i) gives the
// stored class of position i.
template <typename ClassAt>
void ResolveWhitespaceWith(WORD baseLevel, WORD* levels, DWORD count, ClassAt classAt) {
    DWORD run = 0;
    WORD previous = baseLevel;
    const auto reset = [&](DWORD index) {
        for (DWORD k = index - run; k < index; ++k) levels[k] = baseLevel;
    };
    for (DWORD i = 0; i < count; ++i) {
        const WORD cls = classAt(i);
        // BN, the separators, the explicit controls and skipped positions are few; white space
        // and everything else, the most of a line, go without a branch on the class.
        if (!(cls < 32 ? (kWhitespaceFew >> cls) & 1 : cls == kSkip)) {
            run = cls == ZelBidiWS ? run + 1 : 0;
            previous = levels[i];
            continue;
        }
        switch (cls) {
        case kSkip:
            ++run;
            continue;
        case ZelBidiBN:
            // A BN was passed over by the resolution; it goes with what stands before it.
            levels[i] = previous;
            ++run;
            break;
        case ZelBidiS:
        case ZelBidiB:
            reset(i);
            levels[i] = baseLevel;
            run = 0;
            break;
        case ZelBidiRLE:
        case ZelBidiRLO:
        case ZelBidiLRO:
        case ZelBidiLRE:
        case ZelBidiPDF:
            // An explicit control neither ends a run of white space nor lengthens it.
            break;
        default:
            break;
        }
        previous = levels[i];
    }
    reset(count);
}

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

// The properties of a line read once: the property byte of each unit, and the classes the
// resolution works with.
class LineScratch {
public:
    explicit LineScratch(DWORD count);

    BYTE* props;    // null when there was no memory for them
    BYTE* classes;
    // Set by ResolveLine when the line holds a BN, a separator or an explicit control: without
    // them the white space step only puts trailing white space back to the base level.
    bool separators = false;

private:
    Scratch<BYTE> propScratch_;
    Scratch<BYTE> classScratch_;
};

// The first half of a line's way to display, shared by BidiString and ShapeString: the properties
// go to scratch and the resolved levels to levels. Gives 0 when no level was raised.
unsigned ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, LineScratch& scratch, WORD* levels);
// The stored classes of the line, for a caller's array.
void StoredClasses(const LineScratch& scratch, DWORD count, WORD* classes);
// The second half: white space back to the base level, then the text in display order to out,
// which doesn't overlap it, mirrored when asked for.
void ToDisplayOrder(WCHAR* out, const WCHAR* text, DWORD count, WORD baseLevel, const LineScratch& scratch,
                    WORD* levels, bool mirror);

// What one of BidiString and ShapeString resolved of a line of up to kUnits units, kept for the
// other one on the same thread: the line's text and base level, whether some level was raised,
// the levels after the white space step, and the display order with or without mirroring. Each
// line is taken at most once, by the other call, so that a caller that asks for one of them over
// and over gets each answer worked out afresh.
struct SharedLine {
    static constexpr DWORD kUnits = 1024;
    enum Owner : BYTE { kNone, kBidiString, kShapeString };

    DWORD count;
    WORD base;
    Owner owner;
    bool mirror;
    bool raised;
    WCHAR text[kUnits];
    WCHAR display[kUnits];
    WORD levels[kUnits];
};

// The line that the other call left for asker, when it is exactly this one; it is taken, so a
// second question gives null.
const SharedLine* TakeSharedLine(SharedLine::Owner asker, const WCHAR* text, DWORD count, WORD base);
// Keeps a line for the other call, the logical text and base level first: the caller fills the rest.
// Null, and nothing kept, for a line longer than SharedLine::kUnits.
SharedLine* KeepSharedLine(SharedLine::Owner owner, const WCHAR* text, DWORD count, WORD base);
// A line that neither BidiString nor ShapeString had: resolved, kept for the other call when it is
// short enough, and put into display order. Its arrays lie on the stack for a line of up to
// Scratch::kStackUnits units and on the heap beyond.
class DisplayLine {
public:
    // classes and levels are the caller's arrays, or null.
    DisplayLine(SharedLine::Owner owner, const WCHAR* text, DWORD count, WORD base, WORD* classes, WORD* levels,
                bool mirror);
    DisplayLine(const DisplayLine&) = delete;
    DisplayLine& operator=(const DisplayLine&) = delete;

    // True when there was no memory for the arrays of a long line, and nothing was done.
    bool Failed() const { return failed_; }
    // The text in display order; null where it reads as it stands, when no level was raised at
    // base level 0.
    const WCHAR* Display() const { return display_; }

private:
    SharedLine* keep_;
    Scratch<WORD> levelScratch_;
    LineScratch scratch_;
    Scratch<WCHAR> displayScratch_;
    const WCHAR* display_ = nullptr;
    bool failed_ = false;
};

// What a line kept by the other call gives: the caller's classes and levels when they aren't null,
// and the display order, from the shared line, or made again into redo (SharedLine::kUnits units)
// for the other mirror flag; null where the line reads as it stands.
const WCHAR* SharedDisplay(const SharedLine& line, const WCHAR* text, WORD* classes, WORD* levels, bool mirror,
                           WCHAR* redo);

// The stored classes of a text, for a caller's array.
void StoredClasses(const WCHAR* text, DWORD count, WORD* classes);
// The display order of a line resolved before from its levels, to out.
inline void RedoDisplayOrder(WCHAR* out, const WCHAR* text, DWORD count, WORD base, const WORD* levels, bool mirror) {
    ReorderInto(out, text, nullptr, levels, count, base, mirror);
}

}  // namespace zelbidi

#endif  // ZEL_BIDI_BIDI_INTERNAL_H
