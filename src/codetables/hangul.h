// Hangul inside the library: the KS X 1001 syllable list, the Jamo numberings and the composition
// and decomposition of syllables, old Hangul included.
//
// Two Jamo numberings meet here, each with one range for initial, medial and final:
//   Uni index  - offset in the conjoining block: initial = code - U+1100 (0x5F, the filler, for
//                none), medial = code - U+1160, final = code - U+11A7 (0 for none).
//   SUni index - offset in the private-use Jamo block: initial = code - U+F784, medial = code -
//                U+F806, final = code - U+F86A (0 for none); limits 130, 100 and 150.
//
// The multi-code buffer (GetMultiCode) and the multi mode are per thread: each thread has its own
// plain thread_local copy, so a thread that fills the buffer reads back its own contents, and a
// composition on one thread never sees another thread's sequence or mode. Both start at zero.
#ifndef ZEL_CODETABLES_HANGUL_H
#define ZEL_CODETABLES_HANGUL_H

#include <zel/codetables.h>
#include <zel/wintypes.h>

// Sizes of the constant tables.
constexpr int kZelKsCount = 2350;
constexpr int kZelJasoCount = 42;
constexpr int kZelMultiCodeUnits = 10;

// Columns of the Jamo tables.
constexpr int kZelJamoInitial = 0;
constexpr int kZelJamoMedial = 1;
constexpr int kZelJamoFinal = 2;

// The Uni index of "no initial", the filler U+115F; no medial and no final are 0.
constexpr int kZelNoInitial = 0x5F;

// Limits of the SUni indexes, the sizes of the private-use Jamo ranges.
constexpr int kZelSUniInitialLimit = 130;
constexpr int kZelSUniMedialLimit = 100;
constexpr int kZelSUniFinalLimit = 150;

// Bases of the private-use Jamo ranges.
constexpr WCHAR kZelPuaInitialBase = 0xF784;
constexpr WCHAR kZelPuaMedialBase = 0xF806;
constexpr WCHAR kZelPuaFinalBase = 0xF86A;
constexpr WCHAR kZelPuaJamoLast = 0xF8FF;

// Result meaning "the sequence is in the multi-code buffer".
constexpr WCHAR kZelMultiCodeResult = 0xFFFE;

// The constant tables, unsigned 16-bit, read-only.
extern const WORD KsTbl[kZelKsCount];      // KS X 1001 syllables as Johab codes, ascending
extern const WORD JasoTbl[kZelJasoCount];  // Johab codes of the KS Jamo, ascending
extern const WORD SUni2UniTbl[160][3];     // by SUni index: Uni index, 0xFFFF for none
extern const WORD Uni2SUniTbl[96][3];      // by Uni index: SUni index, 0xFFFF for none
extern const WORD CompatChoTbl[96];        // by code - U+3130: Uni index as initial, 0x5F none
extern const WORD CompatJungTbl[96];       // ... as medial, 0 none
extern const WORD CompatJongTbl[96];       // ... as final, 0 none
extern const WORD JamoToCompatTbl[256];    // by code - U+1100: offset from U+3130, 0 none

// True for a composed old Hangul syllable of the private-use area: U+E0BC to U+F66E without
// U+F000 to U+F0FF.
bool ZelIsPuaOldSyllable(UINT u);

// The multi mode of this thread (0 or 1), read by step 6 of ComposeHangul.
int ZelMultiMode();
void ZelSetMultiMode(int mode);

// Fills the three Uni indexes of u; where u lies in no Hangul form they stay as the caller set
// them.
void DecomposeHangul(UINT u, int* initial, int* medial, int* final);
// The same with SUni indexes; a private-use Jamo writes only its own column.
void DecomposeToSUni(UINT u, int* initial, int* medial, int* final);
// The three Jamo fields of the record of u (from U+E000) in Uni2KCharPuaTbl, or 0, 0, 0 when the
// table is absent or u lies outside it.
void PuaJamoFields(UINT u, int* initial, int* medial, int* final);

// Syllable or single Jamo of Uni indexes, or U+FFFD. splitFlag (may be null) is set to 1 when the
// multi mode picked one Jamo out of a sequence that has no syllable, else 0.
WCHAR ComposeHangul(int initial, int medial, int final, int* splitFlag);
// Old Hangul of SUni indexes: a code point, or U+FFFE with the sequence in the multi-code buffer.
WCHAR ComposeOldHangul(int initial, int medial, int final);
// Composes the multi-code buffer: a code point, U+FFFD or U+FFFE.
WCHAR MultiCodeToUnicode(int* splitFlag);
// Stores the private-use Jamo of Uni indexes in the multi-code buffer; gives U+FFFE.
WCHAR IndexesToMultiCode(int initial, int medial, int final);
// The composed old Hangul syllable of SUni indexes from the "pua" records: a code point, 0 for the
// empty key, U+FFFD when there is none or the table is absent.
WCHAR SortedPuaSearch(int initial, int medial, int final);

#endif  // ZEL_CODETABLES_HANGUL_H
