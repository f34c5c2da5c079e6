// The weak types: numbers, their separators and terminators, marks and Arabic letters take the
// classes that their neighbours give them, in one pass of a state machine.
#include "bidi/bidi_internal.h"

namespace zelbidi {

namespace {

// In an action, 0xF keeps the class and leaves the run open.
constexpr WORD kKeep = 0xF;

WORD Part(WORD nibble) { return nibble == kKeep ? kSkip : nibble; }

struct WeakMachine {
    WORD base;
    int state;

    // Classes the resolution doesn't give (S, WS, the spare value and anything above) look like ON.
    static int Column(WORD cls) { return cls < kWeakColumns ? cls : int{ZelBidiON}; }

    RunAction Step(DWORD /*index*/, WORD cls) {
        const int column = Column(cls);
        const WORD action = kWeakActionTbl[state][column];
        state = kWeakStateTbl[state][column];
        return {Part((action >> 4) & 0xF), Part(action & 0xF), (action & 0x100) != 0};
    }

    // The end of the line settles what is open as if a character of the base direction followed.
    WORD End() const { return Part((kWeakActionTbl[state][DirectionOf(base)] >> 4) & 0xF); }
};

}  // namespace

void BidiResolveWeak(WORD baseLevel, WORD* classes, DWORD count) {
    WeakMachine machine{baseLevel, (baseLevel & 1) ? 1 : 2};
    WalkRuns(classes, count, machine);
}

}  // namespace zelbidi
