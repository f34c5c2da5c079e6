// The code points of the basic plane that code page 936 writes in four bytes, as runs.
#ifndef ZEL_CODETABLES_GB_FOUR_BYTE_RUNS_H
#define ZEL_CODETABLES_GB_FOUR_BYTE_RUNS_H

#include <zel/wintypes.h>

struct ZelFourByteRun {
    WORD first;
    WORD last;
    WORD count;  // last - first + 1
};

// 207 runs, ascending; the run of the surrogates only carries the marker and is passed over
// by the sums.
constexpr int kZelFourByteRunCount = 207;
extern const ZelFourByteRun kZelFourByteRuns[207];
constexpr WORD kZelSurrogateRunFirst = 0xD800;

// The place of each run's end in the sequence of four-byte codes: the counts of the runs up to
// and including it, the surrogates' run left out. The last one is the number of four-byte codes
// of the basic plane.
struct ZelFourByteRunEnds {
    DWORD ends[207];
};
extern const ZelFourByteRunEnds kZelFourByteRunSums;
constexpr DWORD kZelFourByteBasicPlaneCodes = 39420;

#endif  // ZEL_CODETABLES_GB_FOUR_BYTE_RUNS_H
