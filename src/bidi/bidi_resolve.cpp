// The weak types (numbers, their separators and terminators, marks and Arabic letters take the
// classes that their neighbours give them) and the neutrals (runs of ON take the direction of the
// strong classes around them, or that of the level where those disagree; numbers count as R),
// each in one pass of a state machine whose tables are packed so that one read per position
// tells everything that happens there.
#include <cstdint>

#include "bidi/bidi_internal.h"
#include "bidi/bidi_tables.h"
#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

// A packed cell, by state and class: the next state, the class the position takes or that it
// keeps its own, the class the deferred run is filled with if any, whether the position joins the
// run, and for a BN whether it joins a run that is open. Classes from 32 up read column 31, which
// is that of ON, as are the columns of every class the tables don't name.
using Cell = uint32_t;
constexpr int kColumns = 32;
constexpr Cell kStateBits = 0x1F;
constexpr int kTakeShift = 5;
constexpr Cell kKeep = 1u << 10;
constexpr int kFillShift = 11;
constexpr Cell kFills = 1u << 16;
constexpr int kJoinsShift = 17;
constexpr Cell kJoins = 1u << kJoinsShift;
constexpr Cell kJoinsOpenRun = 1u << 18;

// A cell of the column of class cls; take is -1 where the position keeps its class, fill -1 where
// the run stays open.
constexpr Cell Pack(int cls, int next, int take, int fill, bool joins) {
    return static_cast<Cell>(next) | (take < 0 ? kKeep | static_cast<Cell>(cls) << kTakeShift : static_cast<Cell>(take) << kTakeShift) |
           (fill < 0 ? 0 : kFills | static_cast<Cell>(fill) << kFillShift) | (joins ? kJoins : 0);
}

// A BN is looked up nowhere: the state stays, and it joins a run that is open.
constexpr Cell PackBN(int state) { return Pack(ZelBidiBN, state, -1, -1, false) | kJoinsOpenRun; }

struct WeakTable {
    Cell cells[kWeakStates][kColumns];
};

constexpr WeakTable MakeWeakTable() {
    WeakTable t{};
    for (int state = 0; state < kWeakStates; ++state) {
        for (int cls = 0; cls < kColumns; ++cls) {
            if (cls == ZelBidiBN) {
                t.cells[state][cls] = PackBN(state);
                continue;
            }
            const int column = cls < kWeakColumns ? cls : int{ZelBidiON};
            const WORD action = kWeakActionTbl[state][column];
            const int take = action & 0xF, fill = (action >> 4) & 0xF;
            t.cells[state][cls] = Pack(cls, kWeakStateTbl[state][column], take == 0xF ? -1 : take,
                                       fill == 0xF ? -1 : fill, action & 0x100);
        }
    }
    return t;
}

// The neutral cells by the parity of the base level, which every position has during this step,
// so that a fill with the direction of the level is a fill with a class.
struct NeutralTable {
    Cell cells[kNeutralStates][kColumns];
};

constexpr NeutralTable MakeNeutralTable(int parity) {
    NeutralTable t{};
    for (int state = 0; state < kNeutralStates; ++state) {
        for (int cls = 0; cls < kColumns; ++cls) {
            if (cls == ZelBidiBN) {
                t.cells[state][cls] = PackBN(state);
                continue;
            }
            const int column = cls < kNeutralColumns ? cls : int{ZelBidiON};
            const WORD action = kNeutralActionTbl[state][column];
            const int take = action & 0xF;
            int fill = (action >> 4) & 0xF;
            if (fill == 3) fill = parity ? ZelBidiR : ZelBidiL;
            t.cells[state][cls] = Pack(cls, kNeutralStateTbl[state][column], take == 0 ? -1 : take,
                                       fill == 0 ? -1 : fill, action & 0x100);
        }
    }
    return t;
}

constexpr WeakTable kWeak = MakeWeakTable();
constexpr NeutralTable kNeutral[2] = {MakeNeutralTable(0), MakeNeutralTable(1)};

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
template <int kStates>
struct Machine {
    const Cell (*cells)[kColumns];
    Cell state;
    DWORD run;

    // The position index of class cls; gives the class it takes.
    template <typename Line>
    Cell Step(DWORD index, Cell cls, Line& line) {
        const Cell cell = cells[state][line.Column(cls)];
        if (cell & kFills) {
            line.Fill(index, run, (cell >> kFillShift) & 0x1F);
            run = 0;
        }
        // Where every class has a column of its own, the column's cell holds the class it keeps.
        const Cell take = (cell >> kTakeShift) & 0x1F;
        const Cell out = Line::kOwnColumns || !(cell & kKeep) ? take : cls;
        line.Write(index, out);
        run += (cell >> kJoinsShift) & 1;
        if (cell & kJoinsOpenRun) run += run != 0;
        state = cell & kStateBits;
        return out;
    }

    // Behind the last position the class end stands in for a next one; only its fill is used.
    template <typename Line>
    void End(DWORD count, int end, Line& line) {
        const Cell cell = cells[state][end];
        if (cell & kFills) line.Fill(count, run, (cell >> kFillShift) & 0x1F);
        run = 0;
    }
};

// The machines start as if a character of the base direction stood before the line, and the end
// of the line settles what is open as if one followed it.
Machine<kWeakStates> WeakMachine(WORD baseLevel) { return {kWeak.cells, (baseLevel & 1) ? 1u : 2u, 0}; }
Machine<kNeutralStates> NeutralMachine(WORD baseLevel) {
    return {kNeutral[baseLevel & 1].cells, (baseLevel & 1) ? 0u : 1u, 0};
}
int EndClass(WORD baseLevel) { return (baseLevel & 1) ? ZelBidiR : ZelBidiL; }

// An array of classes of any value, some of them skipped, resolved in place.
struct ClassArray {
    static constexpr bool kOwnColumns = false;
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

template <int kStates>
void WalkClasses(Machine<kStates> machine, WORD baseLevel, WORD* classes, DWORD count) {
    ClassArray line{classes};
    for (DWORD i = 0; i < count; ++i)
        if (classes[i] != kSkip) machine.Step(i, classes[i], line);
    machine.End(count, EndClass(baseLevel), line);
}

// The classes of a line, one byte each, none skipped, as the weak step leaves them.
struct LineClasses {
    static constexpr bool kOwnColumns = true;
    BYTE* classes;

    static Cell Column(Cell cls) { return cls; }
    void Write(DWORD i, Cell cls) const { classes[i] = static_cast<BYTE>(cls); }
    void Fill(DWORD index, DWORD run, Cell cls) const {
        for (DWORD k = index - run; k < index; ++k) classes[k] = static_cast<BYTE>(cls);
    }
};

// The neutral step of a line with the implicit step behind it: a position's class is settled when
// the machine writes it or fills the run it is in, and only its level is kept. A position in a run
// that is never filled is a neutral or BN and stays at the base level.
struct LineLevels {
    static constexpr bool kOwnColumns = true;
    WORD* levels;
    WORD base;
    const BYTE* add;
    unsigned raised;

    static Cell Column(Cell cls) { return cls; }
    void Write(DWORD i, Cell cls) {
        raised |= add[cls];
        levels[i] = static_cast<WORD>(base + add[cls]);
    }
    void Fill(DWORD index, DWORD run, Cell cls) {
        if (run == 0) return;
        raised |= add[cls];
        const auto level = static_cast<WORD>(base + add[cls]);
        for (DWORD k = index - run; k < index; ++k) levels[k] = level;
    }
};

// What the implicit step adds to a level of each parity, by the resolved class; nothing for a
// class that is no longer ON, L, R, AN or EN (a BN, or a weak class left in an open run).
struct ImplicitTable {
    BYTE add[2][kColumns];
};

constexpr ImplicitTable MakeImplicitTable() {
    ImplicitTable t{};
    for (int parity = 0; parity < 2; ++parity)
        for (int cls = 0; cls < kNeutralColumns; ++cls) t.add[parity][cls] = kImplicitTbl[parity][cls];
    return t;
}

constexpr ImplicitTable kImplicit = MakeImplicitTable();

}  // namespace

void BidiResolveWeak(WORD baseLevel, WORD* classes, DWORD count) {
    WalkClasses(WeakMachine(baseLevel), baseLevel, classes, count);
}

void BidiResolveNeutral(WORD baseLevel, WORD* classes, DWORD count) {
    WalkClasses(NeutralMachine(baseLevel), baseLevel, classes, count);
}

// The weak and the neutral machine walk the line together, the neutral one a position behind the
// weak one, or as far behind as the weak one has a run open: a position goes on to the neutral
// step once its weak class is settled. The two machines then work side by side.
unsigned ResolveLine(const WCHAR* text, DWORD count, WORD baseLevel, LineScratch& scratch, WORD* levels) {
    BYTE* const props = scratch.props;
    LineClasses classes{scratch.classes};
    LineLevels settled{levels, baseLevel, kImplicit.add[baseLevel & 1], 0};
    Machine weak = WeakMachine(baseLevel);
    Machine neutral = NeutralMachine(baseLevel);
    DWORD fed = 0;  // the positions before fed have gone through the neutral step
    Cell last = ZelBidiON;
    for (DWORD i = 0; i < count; ++i) {
        // The property byte of each unit is read here, once, and kept.
        const WCHAR c = text[i];
        const BYTE prop = PropertyByteOf(c);
        props[i] = prop;
        Cell cls = kLineClassMap[prop & kClassBits];
        // A full stop right behind a number belongs to it, so a decimal point never separates,
        // and a run of full stops all follow the number.
        if (c == u'.' && (last == ZelBidiEN || last == ZelBidiAN)) cls = last;
        last = cls;
        const Cell weakClass = weak.Step(i, cls, classes);
        if (weak.run == 0) {
            for (; fed < i; ++fed) neutral.Step(fed, classes.classes[fed], settled);
            neutral.Step(i, weakClass, settled);
            fed = i + 1;
        }
    }
    weak.End(count, EndClass(baseLevel), classes);
    for (; fed < count; ++fed) neutral.Step(fed, classes.classes[fed], settled);
    neutral.End(count, EndClass(baseLevel), settled);
    return settled.raised;
}

}  // namespace zelbidi
