// The state and action tables of the weak and neutral steps, and the implicit level table, as
// the rules give them. The resolution works from a packed form of them made at compile time.
#ifndef ZEL_BIDI_BIDI_TABLES_H
#define ZEL_BIDI_BIDI_TABLES_H

#include <zel/wintypes.h>

namespace zelbidi {

// The columns of the weak tables are the classes ON to ET; those of the neutral tables ON to EN.
constexpr int kWeakStates = 20;
constexpr int kWeakColumns = 10;
constexpr int kNeutralStates = 6;
constexpr int kNeutralColumns = 5;

// Weak step: the next state, and the action. Bits 0 to 3 of an action give the class the current
// position takes (0xF keeps it), bits 4 to 7 the class the deferred run is filled with (0xF leaves
// it open), bit 8 adds the current position to the run. Columns: ON, L, R, AN, EN, AL, NSM, CS, ES, ET. Rows: the state, as the comment says what the
// machine has seen last.
inline constexpr BYTE kWeakStateTbl[kWeakStates][kWeakColumns] = {
    {3, 2, 1, 8, 8, 0, 0, 3, 3, 3},          // after AL
    {4, 2, 1, 9, 10, 0, 1, 4, 4, 6},         // after R
    {5, 2, 1, 11, 12, 0, 2, 5, 5, 7},        // after L
    {3, 2, 1, 8, 8, 0, 3, 3, 3, 3},          // AL then neutral
    {4, 2, 1, 9, 10, 0, 4, 4, 4, 6},         // R then neutral
    {5, 2, 1, 11, 12, 0, 5, 5, 5, 7},        // L then neutral
    {4, 2, 1, 9, 10, 0, 6, 4, 4, 6},         // ET after R
    {5, 2, 1, 11, 12, 0, 7, 5, 5, 7},        // ET after L
    {3, 2, 1, 8, 8, 0, 8, 13, 3, 3},         // number after AL
    {4, 2, 1, 9, 10, 0, 9, 14, 4, 6},        // AN after R
    {4, 2, 1, 9, 10, 0, 10, 15, 15, 18},     // EN after R
    {5, 2, 1, 11, 12, 0, 11, 16, 5, 7},      // AN after L
    {5, 2, 1, 11, 12, 0, 12, 17, 17, 19},    // EN after L
    {3, 2, 1, 8, 8, 0, 3, 3, 3, 3},          // CS after number after AL
    {4, 2, 1, 9, 10, 0, 4, 4, 4, 6},         // CS after AN after R
    {4, 2, 1, 9, 10, 0, 4, 4, 4, 6},         // CS or ES after EN after R
    {5, 2, 1, 11, 12, 0, 5, 5, 5, 7},        // CS after AN after L
    {5, 2, 1, 11, 12, 0, 5, 5, 5, 7},        // CS or ES after EN after L
    {4, 2, 1, 9, 10, 0, 18, 4, 4, 18},       // ET after EN after R
    {5, 2, 1, 11, 12, 0, 19, 5, 5, 19},      // ET after EN after L
};

// An EN in the state "AL then neutral" becomes L, and one in "number after AL" stays EN.
inline constexpr WORD kWeakActionTbl[kWeakStates][kWeakColumns] = {
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF3, 0xF2, 0xF2, 0xF0, 0xF0, 0xF0},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF2, 0xF0, 0xF0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF1, 0xF0, 0xF0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF0, 0xF0, 0xF0, 0xF0},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF0, 0xF0, 0xF0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF0, 0xF0, 0xF0, 0x1FF},
    {0xF, 0xF, 0xF, 0xF, 0x44, 0x2, 0x1FF, 0x0, 0x0, 0x1FF},
    {0xF, 0xF, 0xF, 0xF, 0x11, 0x2, 0x1FF, 0x0, 0x0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF3, 0x1FF, 0xF0, 0xF0},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF3, 0x1FF, 0xF0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF4, 0x1FF, 0x1FF, 0xF4},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF3, 0x1FF, 0xF0, 0x1FF},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF1, 0x1FF, 0x1FF, 0xF1},
    {0xF, 0xF, 0xF, 0x3F, 0x33, 0x2, 0x0, 0x0, 0x0, 0x0},
    {0xF, 0xF, 0xF, 0x3F, 0x4, 0x2, 0x0, 0x0, 0x0, 0x10F},
    {0xF, 0xF, 0xF, 0xF, 0x44, 0x2, 0x0, 0x0, 0x0, 0x10F},
    {0xF, 0xF, 0xF, 0x3F, 0x1, 0x2, 0x0, 0x0, 0x0, 0x10F},
    {0xF, 0xF, 0xF, 0xF, 0x11, 0x2, 0x0, 0x0, 0x0, 0x10F},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF4, 0xF2, 0xF4, 0xF0, 0xF0, 0xF4},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xF1, 0xF2, 0xF1, 0xF0, 0xF0, 0xF1},
};

// Neutral step: the same, but 0 keeps the class and leaves the run open, and a fill class of 3
// stands for the direction of the current level. Columns: ON, L, R, AN, EN.
inline constexpr BYTE kNeutralStateTbl[kNeutralStates][kNeutralColumns] = {
    {2, 1, 0, 0, 0},  // R
    {3, 1, 0, 4, 1},  // L
    {2, 1, 0, 0, 0},  // neutral after R
    {3, 1, 0, 4, 1},  // neutral after L
    {5, 1, 0, 4, 1},  // AN after L
    {5, 1, 0, 4, 1},  // neutral after AN after L
};

inline constexpr WORD kNeutralActionTbl[kNeutralStates][kNeutralColumns] = {
    {0x100, 0x0, 0x0, 0x0, 0x0},
    {0x100, 0x0, 0x0, 0x0, 0x1},
    {0x100, 0x30, 0x20, 0x20, 0x20},
    {0x100, 0x10, 0x30, 0x30, 0x11},
    {0x100, 0x0, 0x0, 0x0, 0x1},
    {0x100, 0x30, 0x20, 0x20, 0x30},
};

// What the implicit step adds to a level, by its parity and the resolved class ON to EN.
inline constexpr BYTE kImplicitTbl[2][kNeutralColumns] = {
    {0, 0, 1, 2, 2},  // even level
    {0, 1, 0, 1, 1},  // odd level
};

}  // namespace zelbidi

#endif  // ZEL_BIDI_BIDI_TABLES_H
