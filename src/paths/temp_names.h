// The two counters behind the temporary names.
#ifndef ZEL_PATHS_TEMP_NAMES_H
#define ZEL_PATHS_TEMP_NAMES_H

#include <zel/wintypes.h>

// The sequence counter of ZelPathMakeTempEx: 0 until the first search seeds it from the clock.
WORD ZelTempSequenceCounter();
void ZelSetTempSequenceCounter(WORD value);

#endif  // ZEL_PATHS_TEMP_NAMES_H
