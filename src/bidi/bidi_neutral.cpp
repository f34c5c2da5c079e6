// The neutrals: runs of ON take the direction of the strong classes around them, or that of
// the current level where those disagree; numbers count as R.
#include "bidi/bidi_internal.h"

namespace zelbidi {

namespace {

// In an action, 0 keeps the class and leaves the run open; a fill of 3 is the level's direction.
constexpr WORD kLevelDirection = 3;

struct NeutralMachine {
    const WORD* levels;
    WORD level;
    int state;

    // After the weak step a class is ON, L, R, AN or EN; anything else is taken as a neutral.
    static int Column(WORD cls) { return cls < kNeutralColumns ? cls : int{ZelBidiON}; }

    WORD Fill(WORD action) const {
        const WORD fill = (action >> 4) & 0xF;
        if (fill == 0) return kSkip;
        return fill == kLevelDirection ? DirectionOf(level) : fill;
    }

    RunAction Step(DWORD index, WORD cls) {
        const int column = Column(cls);
        const WORD action = kNeutralActionTbl[state][column];
        const RunAction result{Fill(action), (action & 0xF) ? WORD(action & 0xF) : kSkip, (action & 0x100) != 0};
        state = kNeutralStateTbl[state][column];
        level = levels[index];
        return result;
    }

    // At the end of the line the direction of the last level stands in for a next character.
    WORD End() const { return Fill(kNeutralActionTbl[state][DirectionOf(level)]); }
};

}  // namespace

void BidiResolveNeutral(WORD baseLevel, WORD* classes, const WORD* levels, DWORD count) {
    NeutralMachine machine{levels, baseLevel, (baseLevel & 1) ? 0 : 1};
    WalkRuns(classes, count, machine);
}

}  // namespace zelbidi
