// The weak types (numbers, their separators and terminators, marks and Arabic letters take the
// classes that their neighbours give them) and the neutrals (runs of ON take the direction of the
// strong classes around them, or that of the level where those disagree; numbers count as R),
// each in one pass of a state machine whose tables are packed so that one read per position
// tells everything that happens there.
#include <cstdint>

#include "bidi/bidi_internal.h"
#include "bidi/bidi_simd.h"
#include "bidi/bidi_tables.h"
#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

// A packed cell, by state and class, one read telling everything that happens at a position: the
// low 32 bits are the first cell of the next state's row, so that the walk takes the next row
// with no more than a move; above them byte 4 is the class the position takes (its own where it
// keeps it), byte 5 the class the deferred run is filled with, byte 6 what happens to the run.
// Classes from 32 up read column 31, which is that of ON, as are the columns of every class the
// tables don't name. For the neutral step of a line the two classes are given as what the
// implicit step adds to the base level for them.
using Cell = uint64_t;
constexpr int kColumns = 32;
constexpr int kTakeShift = 32;
constexpr int kFillShift = 40;
constexpr Cell kFills = Cell{1} << 48;         // the run is filled with byte 5
constexpr Cell kJoins = Cell{1} << 49;         // the position joins the run
constexpr Cell kJoinsOpenRun = Cell{1} << 50;  // the position (a BN) joins the run if one is open
constexpr Cell kKeep = Cell{1} << 51;          // the position keeps its own class

inline Cell TakeOf(Cell cell) { return (cell >> kTakeShift) & 0xFF; }
inline Cell FillOf(Cell cell) { return (cell >> kFillShift) & 0xFF; }

// A cell of the column of class cls; take is -1 where the position keeps its class, fill -1 where
// the run stays open.
constexpr Cell Pack(int cls, int next, int take, int fill, bool joins) {
    return Cell(take < 0 ? cls : take) << kTakeShift | (take < 0 ? kKeep : 0) |
           (fill < 0 ? 0 : kFills | Cell(fill) << kFillShift) | (joins ? kJoins : 0) | Cell(next * kColumns);
}

// A BN is looked up nowhere: the state stays, and it joins a run that is open.
constexpr Cell PackBN(int state) { return Pack(ZelBidiBN, state, -1, -1, false) | kJoinsOpenRun; }

template <int kStates>
struct Table {
    Cell cells[kStates * kColumns];
};

constexpr Table<kWeakStates> MakeWeakTable() {
    Table<kWeakStates> t{};
    for (int state = 0; state < kWeakStates; ++state) {
        for (int cls = 0; cls < kColumns; ++cls) {
            Cell& cell = t.cells[state * kColumns + cls];
            if (cls == ZelBidiBN) {
                cell = PackBN(state);
                continue;
            }
            const int column = cls < kWeakColumns ? cls : int{ZelBidiON};
            const WORD action = kWeakActionTbl[state][column];
            const int take = action & 0xF, fill = (action >> 4) & 0xF;
            cell = Pack(cls, kWeakStateTbl[state][column], take == 0xF ? -1 : take, fill == 0xF ? -1 : fill,
                        action & 0x100);
        }
    }
    return t;
}

// What the implicit step adds to a level of the parity by the resolved class; nothing for a class
// that is no longer ON, L, R, AN or EN (a BN, or a weak class left in an open run).
constexpr int ImplicitAdd(int parity, int cls) { return cls < kNeutralColumns ? kImplicitTbl[parity][cls] : 0; }

// The neutral cells by the parity of the base level, which every position has during this step,
// so that a fill with the direction of the level is a fill with a class. With adds, the classes of
// a cell are given as what the implicit step adds to the base level for them.
constexpr Table<kNeutralStates> MakeNeutralTable(int parity, bool adds) {
    Table<kNeutralStates> t{};
    for (int state = 0; state < kNeutralStates; ++state) {
        for (int cls = 0; cls < kColumns; ++cls) {
            Cell& cell = t.cells[state * kColumns + cls];
            if (cls == ZelBidiBN) {
                cell = PackBN(state);
            } else {
                const int column = cls < kNeutralColumns ? cls : int{ZelBidiON};
                const WORD action = kNeutralActionTbl[state][column];
                const int take = action & 0xF;
                int fill = (action >> 4) & 0xF;
                if (fill == 3) fill = parity ? ZelBidiR : ZelBidiL;
                cell = Pack(cls, kNeutralStateTbl[state][column], take == 0 ? -1 : take, fill == 0 ? -1 : fill,
                            action & 0x100);
            }
            if (adds) {
                const int take = ImplicitAdd(parity, static_cast<int>((cell >> kTakeShift) & 0xFF));
                const int fill = ImplicitAdd(parity, static_cast<int>((cell >> kFillShift) & 0xFF));
                cell = (cell & ~(Cell{0xFFFF} << kTakeShift)) | Cell(take) << kTakeShift | Cell(fill) << kFillShift;
            }
        }
    }
    return t;
}

constexpr Table<kWeakStates> kWeak = MakeWeakTable();
constexpr Table<kNeutralStates> kNeutral[2] = {MakeNeutralTable(0, false), MakeNeutralTable(1, false)};
constexpr Table<kNeutralStates> kNeutralAdds[2] = {MakeNeutralTable(0, true), MakeNeutralTable(1, true)};

// The class of a stored class for the resolution: S, WS and the spare values are ON; paragraph
// separators and explicit controls are BN, since neither a paragraph nor an embedding is acted on.
constexpr BYTE kLineClassMap[kClassBits + 1] = {
    ZelBidiON, ZelBidiL,  ZelBidiR,  ZelBidiAN, ZelBidiEN, ZelBidiAL, ZelBidiNSM, ZelBidiCS,
    ZelBidiES, ZelBidiET, ZelBidiBN, ZelBidiON, ZelBidiON, ZelBidiBN, ZelBidiBN,  ZelBidiBN,
    ZelBidiBN, ZelBidiBN, ZelBidiBN, ZelBidiON, ZelBidiON, ZelBidiON, ZelBidiON,  ZelBidiON,
    ZelBidiON, ZelBidiON, ZelBidiON, ZelBidiON, ZelBidiON, ZelBidiON, ZelBidiON,  ZelBidiON,
};

// One state machine walking positions in order, with the deferred run it has open. A line takes
// the class each position ends with (line.Write) and the class a run of the run positions in front
// of an index is filled with (line.Fill), and gives the column of a class (line.Column).
struct Machine {
    const Cell* cells;
    Cell row;  // the first cell of the state's row
    DWORD run;

    // The position index of class cls; gives the class it takes.
    template <typename Line>
    Cell Step(DWORD index, Cell cls, Line& line) {
        const Cell cell = cells[row + line.Column(cls)];
        if constexpr (Line::kFillsWithoutBranch) {
            const bool fills = run != 0 && (cell & kFills);
            line.FillWithoutBranch(index, run, FillOf(cell), fills);
            run = fills ? 0 : run;
        } else if (run != 0 && (cell & kFills)) {
            line.Fill(index, run, FillOf(cell));
            run = 0;
        }
        // Where every class has a column of its own, the column's cell holds the class it keeps.
        const Cell out = Line::kOwnColumns || !(cell & kKeep) ? TakeOf(cell) : cls;
        line.Write(index, out);
        if (cell & kJoinsOpenRun) {
            run += run != 0;
            return out;
        }
        // A position that doesn't join the run ends it: where one is open, it has been filled.
        run = (cell & kJoins) ? run + 1 : 0;
        row = static_cast<uint32_t>(cell);
        return out;
    }

    // Behind the last position the class end stands in for a next one; only its fill is used.
    template <typename Line>
    void End(DWORD count, int end, Line& line) {
        const Cell cell = cells[row + end];
        if (cell & kFills) line.Fill(count, run, FillOf(cell));
        run = 0;
    }
};

// The machines start as if a character of the base direction stood before the line, and the end
// of the line settles what is open as if one followed it.
Machine WeakMachine(WORD baseLevel) { return {kWeak.cells, ((baseLevel & 1) ? 1u : 2u) * kColumns, 0}; }
Machine NeutralMachine(WORD baseLevel, bool adds) {
    const Table<kNeutralStates>& table = (adds ? kNeutralAdds : kNeutral)[baseLevel & 1];
    return {table.cells, ((baseLevel & 1) ? 0u : 1u) * kColumns, 0};
}
int EndClass(WORD baseLevel) { return (baseLevel & 1) ? ZelBidiR : ZelBidiL; }

// An array of classes of any value, some of them skipped, resolved in place.
struct ClassArray {
    static constexpr bool kOwnColumns = false;
    static constexpr bool kFillsWithoutBranch = false;
    WORD* classes;

    static Cell Column(Cell cls) { return cls < kColumns ? cls : kColumns - 1; }
    void Write(DWORD i, Cell cls) const { classes[i] = static_cast<WORD>(cls); }
    // From the nearest position backwards, passing over skipped ones.
    void Fill(DWORD index, DWORD run, Cell cls) const {
        while (run > 0 && index > 0) {
            --index;
            if (classes[index] == kSkip) continue;
            classes[index] = static_cast<WORD>(cls);
            --run;
        }
    }
};

void WalkClasses(Machine machine, WORD baseLevel, WORD* classes, DWORD count) {
    ClassArray line{classes};
    for (DWORD i = 0; i < count; ++i)
        if (classes[i] != kSkip) machine.Step(i, classes[i], line);
    machine.End(count, EndClass(baseLevel), line);
}

// The classes of a line, one byte each, none skipped, as the weak step leaves them.
struct LineClasses {
    static constexpr bool kOwnColumns = true;
    static constexpr bool kFillsWithoutBranch = false;
    BYTE* classes;

    static Cell Column(Cell cls) { return cls; }
    void Write(DWORD i, Cell cls) const { classes[i] = static_cast<BYTE>(cls); }
    void Fill(DWORD index, DWORD run, Cell cls) const {
        for (DWORD k = index - run; k < index; ++k) classes[k] = static_cast<BYTE>(cls);
    }
};

// The neutral step of a line with the implicit step behind it: a position's class is settled when
// the machine writes it or fills the run it is in, and only its level is kept. The machine gives
// what the implicit step adds for the class. A position in a run that is never filled is a
// neutral or BN and stays at the base level.
struct LineLevels {
    static constexpr bool kOwnColumns = true;
    // Runs of neutrals end at every word, too irregularly for a branch to be foretold: the nearest
    // position of a run is settled without one, and only a longer run takes a loop.
    static constexpr bool kFillsWithoutBranch = true;
    WORD* levels;
    WORD base;
    Cell raised;
    WORD spare;  // what is written where nothing is settled

    static Cell Column(Cell cls) { return cls; }
    void Write(DWORD i, Cell add) {
        raised |= add;
        levels[i] = static_cast<WORD>(base + add);
    }
    void FillWithoutBranch(DWORD index, DWORD run, Cell add, bool fills) {
        const auto level = static_cast<WORD>(base + add);
        *(fills ? &levels[index - 1] : &spare) = level;
        raised |= fills ? add : 0;
        if (fills && run > 1) {
            for (DWORD k = index - run; k < index - 1; ++k) levels[k] = level;
        }
    }
    void Fill(DWORD index, DWORD run, Cell add) {
        if (run == 0) return;
        raised |= add;
        const auto level = static_cast<WORD>(base + add);
        for (DWORD k = index - run; k < index; ++k) levels[k] = level;
    }
};

}  // namespace

void BidiResolveWeak(WORD baseLevel, WORD* classes, DWORD count) {
    WalkClasses(WeakMachine(baseLevel), baseLevel, classes, count);
}

void BidiResolveNeutral(WORD baseLevel, WORD* classes, DWORD count) {
    WalkClasses(NeutralMachine(baseLevel, false), baseLevel, classes, count);
}

namespace {

// The line class of a full stop, which the walk settles by the class in front of it.
constexpr BYTE kFullStop = 0x20;

// The properties of a line into scratch, and its line classes into the class array, which the walk
// then resolves in place. Gives whether the line holds a BN, a separator or an explicit control.
bool ReadLine(const WCHAR* text, DWORD count, BYTE* props, BYTE* classes) {
    DWORD seen = 0;
    for (DWORD i = 0; i < count; ++i) {
        const WCHAR c = text[i];
        const BYTE prop = PropertyByteOf(c);
        props[i] = prop;
        seen |= 1u << (prop & kClassBits);
        classes[i] = c == u'.' ? kFullStop : kLineClassMap[prop & kClassBits];
    }
    return (seen & kWhitespaceFew) != 0;
}

// The first index from i below count whose class isn't cls.
DWORD RunEnd(const BYTE* classes, DWORD i, DWORD count, BYTE cls) {
#if ZEL_BIDI_SSE2
    const __m128i all = _mm_set1_epi8(static_cast<char>(cls));
    for (; count - i >= 16; i += 16) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(classes + i));
        const auto other = ~static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(sixteen, all))) & 0xFFFFu;
        if (other) return i + static_cast<DWORD>(__builtin_ctz(other));
    }
#endif
    while (i < count && classes[i] == cls) ++i;
    return i;
}

}  // namespace

// The weak and the neutral machine walk the line together, the neutral one a position behind the
// weak one, or as far behind as the weak one has a run open: a position goes on to the neutral
// step once its weak class is settled. The two machines then work side by side.
unsigned ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, LineScratch& scratch, WORD* levels) {
    BYTE* const lineClasses = scratch.classes;
    scratch.separators = ReadLine(text, count, scratch.props, lineClasses);
    LineClasses classes{lineClasses};
    LineLevels settled{levels, baseLevel, 0, 0};
    Machine weak = WeakMachine(baseLevel);
    Machine neutral = NeutralMachine(baseLevel, true);
    DWORD fed = 0;  // the positions before fed have gone through the neutral step
    Cell last = ZelBidiON;
    // Where a position left both machines in the state they were in, with no run open, the next
    // positions of the same class do the same: a word of letters or a number after its first
    // unit takes the class and level of the unit before it and needs neither machine.
    constexpr Cell kNoRepeat = 0xFF;
    Cell repeat = kNoRepeat;
    BYTE repeatClass = 0;
    WORD repeatLevel = 0;
    for (DWORD i = 0; i < count; ++i) {
        Cell cls = lineClasses[i];
        if (cls == repeat) {
            const DWORD end = RunEnd(lineClasses, i + 1, count, static_cast<BYTE>(repeat));
            for (DWORD k = i; k < end; ++k) {
                lineClasses[k] = repeatClass;
                levels[k] = repeatLevel;
            }
            fed = end;
            i = end - 1;
            continue;
        }
        // A full stop right behind a number belongs to it, so a decimal point never separates,
        // and a run of full stops all follow the number.
        if (cls == kFullStop) cls = last == ZelBidiEN || last == ZelBidiAN ? last : Cell{ZelBidiCS};
        last = cls;
        const Cell weakRow = weak.row;
        const Cell weakClass = weak.Step(i, cls, classes);
        repeat = kNoRepeat;
        if (weak.run == 0) {
            for (; fed < i; ++fed) neutral.Step(fed, classes.classes[fed], settled);
            const Cell neutralRow = neutral.row;
            neutral.Step(i, weakClass, settled);
            fed = i + 1;
            if (weak.row == weakRow && neutral.row == neutralRow && neutral.run == 0) {
                repeat = cls;
                repeatClass = static_cast<BYTE>(weakClass);
                repeatLevel = levels[i];
            }
        }
    }
    weak.End(count, EndClass(baseLevel), classes);
    for (; fed < count; ++fed) neutral.Step(fed, classes.classes[fed], settled);
    neutral.End(count, EndClass(baseLevel), settled);
    return static_cast<unsigned>(settled.raised);
}

}  // namespace zelbidi
