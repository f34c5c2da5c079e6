// The weak types (numbers, their separators and terminators, marks and Arabic letters take the
// classes that their neighbours give them) and the neutrals (runs of ON take the direction of the
// strong classes around them, or that of the level where those disagree; numbers count as R),
// each in one pass of a state machine whose tables are packed so that one read per position
// tells everything that happens there.
#include <array>
#include <cstdint>

#include "bidi/bidi_internal.h"
#include "bidi/bidi_simd.h"
#include "bidi/bidi_tables.h"
#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

// A packed cell, by state and class, one read telling everything that happens at a position: the
// low 16 bits are the first cell of the next state's row, so that the walk takes the next row
// with no more than a move; bits 16 to 19 say what happens to the run; byte 4 is the class the
// position takes (its own where it keeps it), byte 5 the class the deferred run is filled with.
// The flags lie where a test needs no wide constant.
// Classes from 32 up read column 31, which is that of ON, as are the columns of every class the
// tables don't name. For the neutral step of a line the two classes are given as what the
// implicit step adds to the base level for them.
using Cell = uint64_t;
constexpr int kColumns = 32;
constexpr int kTakeShift = 32;
constexpr int kFillShift = 40;
constexpr Cell kRowBits = 0xFFFF;
constexpr Cell kFills = Cell{1} << 16;         // the run is filled with byte 5
constexpr Cell kJoins = Cell{1} << 17;         // the position joins the run
constexpr Cell kJoinsOpenRun = Cell{1} << 18;  // the position (a BN) joins the run if one is open
constexpr Cell kKeep = Cell{1} << 19;          // the position keeps its own class
constexpr Cell kStable = Cell{1} << 20;        // the same class next would change nothing

constexpr Cell TakeOf(Cell cell) { return (cell >> kTakeShift) & 0xFF; }
constexpr Cell FillOf(Cell cell) { return (cell >> kFillShift) & 0xFF; }

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

// The neutral cells of both parities in one table, those of parity 1 behind those of parity 0, so
// that the walk of a line reads a table whose place is known when the program is built.
constexpr int kNeutralParityCells = kNeutralStates * kColumns;
constexpr Table<2 * kNeutralStates> MakeNeutralTables(bool adds) {
    Table<2 * kNeutralStates> t{};
    for (int parity = 0; parity < 2; ++parity) {
        const Table<kNeutralStates> one = MakeNeutralTable(parity, adds);
        for (int k = 0; k < kNeutralParityCells; ++k) {
            const Cell cell = one.cells[k];
            t.cells[parity * kNeutralParityCells + k] =
                (cell & ~kRowBits) | ((cell & kRowBits) + Cell(parity * kNeutralParityCells));
        }
    }
    return t;
}

// Marks kStable the cells after which a position of the same class would leave the state as it
// is, take the same class and neither open nor join a run: with no run open, a word then takes
// the class and level of its unit before from its second unit on.
template <int kStates>
constexpr Table<kStates> MarkStable(Table<kStates> t) {
    for (int k = 0; k < kStates * kColumns; ++k) {
        const Cell cell = t.cells[k];
        const Cell row = (cell & kJoinsOpenRun) ? Cell(k - k % kColumns) : cell & kRowBits;
        const Cell again = t.cells[row + Cell(k % kColumns)];
        const bool stays = (again & kJoinsOpenRun) || (again & kRowBits) == row;
        if (!(cell & kJoins) && !(again & kJoins) && stays && TakeOf(again) == TakeOf(cell)) t.cells[k] |= kStable;
    }
    return t;
}

constexpr Table<kWeakStates> kWeak = MarkStable(MakeWeakTable());
constexpr Table<2 * kNeutralStates> kNeutral = MakeNeutralTables(false);
constexpr Table<2 * kNeutralStates> kNeutralAdds = MarkStable(MakeNeutralTables(true));

// The cells of a table known when the program is built, as the walk of a line reads them: no
// pointer to them need be kept while it runs.
template <const auto& kTable>
struct FixedCells {
    Cell operator[](Cell index) const { return kTable.cells[index]; }
};

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
template <typename Cells>
struct Machine {
    Cells cells;
    Cell row;  // the first cell of the state's row
    DWORD run;
    Cell lastCell = 0;  // the cell of the last position

    // The position index of class cls; gives the class it takes.
    template <typename Line>
    Cell Step(DWORD index, Cell cls, Line& line) {
        const Cell cell = cells[row + line.Column(cls)];
        lastCell = cell;
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
        row = cell & kRowBits;
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
Cell WeakStart(WORD baseLevel) { return ((baseLevel & 1) ? 1u : 2u) * kColumns; }
Cell NeutralStart(WORD baseLevel) {
    return (baseLevel & 1) ? Cell{kNeutralParityCells} : Cell{kColumns};
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

template <typename Cells>
void WalkClasses(Machine<Cells> machine, WORD baseLevel, WORD* classes, DWORD count) {
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
    WalkClasses(Machine<FixedCells<kWeak>>{{}, WeakStart(baseLevel), 0}, baseLevel, classes, count);
}

void BidiResolveNeutral(WORD baseLevel, WORD* classes, DWORD count) {
    WalkClasses(Machine<FixedCells<kNeutral>>{{}, NeutralStart(baseLevel), 0}, baseLevel, classes, count);
}

namespace {

// By property byte: the line class, with kFewBit where the white space step has more to do
// (kWhitespaceFew).
constexpr BYTE kFewBit = 0x40;
constexpr auto kLineByProperty = [] {
    std::array<BYTE, 256> table{};
    for (unsigned prop = 0; prop < table.size(); ++prop) {
        const unsigned cls = prop & kClassBits;
        table[prop] = static_cast<BYTE>(kLineClassMap[cls] | ((kWhitespaceFew >> cls) & 1 ? kFewBit : 0));
    }
    return table;
}();

// The properties of a line into scratch, and its line classes into the class array, which the walk
// then resolves in place. Gives whether the line holds a BN, a separator or an explicit control.
bool ReadLine(const WCHAR* text, DWORD count, BYTE* props, BYTE* classes) {
    unsigned seen = 0;
    BYTE previous = ZelBidiON;
    for (DWORD i = 0; i < count; ++i) {
        const WCHAR c = text[i];
        const BYTE prop = PropertyByteOf(c);
        props[i] = prop;
        const BYTE line = kLineByProperty[prop];
        seen |= line;
        BYTE cls = static_cast<BYTE>(line & ~kFewBit);
        // A full stop right behind a number belongs to it, so a decimal point never separates,
        // and a run of full stops all follow the number.
        if (c == u'.' && (previous == ZelBidiEN || previous == ZelBidiAN)) cls = previous;
        classes[i] = cls;
        previous = cls;
    }
    return (seen & kFewBit) != 0;
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
    Machine<FixedCells<kWeak>> weak{{}, WeakStart(baseLevel), 0};
    Machine<FixedCells<kNeutralAdds>> neutral{{}, NeutralStart(baseLevel), 0};
    DWORD fed = 0;  // the positions before fed have gone through the neutral step
    // Where a position left both machines with no run open in a state that the same class again
    // would not change (kStable), the next positions of that class take the class and level of
    // this one and need neither machine: a word of letters or a number after its first unit.
    constexpr Cell kNoRepeat = 0xFF;
    Cell repeat = kNoRepeat;
    Cell repeatFill = 0;  // the class they take in the low byte, the level above it
    for (DWORD i = 0; i < count; ++i) {
        const Cell cls = lineClasses[i];
        if (cls == repeat) {
            const DWORD end = RunEnd(lineClasses, i + 1, count, static_cast<BYTE>(repeat));
            for (DWORD k = i; k < end; ++k) {
                lineClasses[k] = static_cast<BYTE>(repeatFill);
                levels[k] = static_cast<WORD>(repeatFill >> 8);
            }
            fed = end;
            i = end - 1;
            continue;
        }
        const Cell weakClass = weak.Step(i, cls, classes);
        repeat = kNoRepeat;
        if (weak.run == 0) {
            for (; fed < i; ++fed) neutral.Step(fed, classes.classes[fed], settled);
            neutral.Step(i, weakClass, settled);
            fed = i + 1;
            if ((weak.lastCell & neutral.lastCell & kStable) && neutral.run == 0) {
                repeat = cls;
                repeatFill = weakClass | Cell{levels[i]} << 8;
            }
        }
    }
    weak.End(count, EndClass(baseLevel), classes);
    for (; fed < count; ++fed) neutral.Step(fed, classes.classes[fed], settled);
    neutral.End(count, EndClass(baseLevel), settled);
    return static_cast<unsigned>(settled.raised);
}

}  // namespace zelbidi
