// The per-thread record of errors and warnings, in the library's one thread slot.
#ifndef ZEL_FRAME_THREAD_DATA_H
#define ZEL_FRAME_THREAD_DATA_H

#include <zel/frame.h>

// The thread slot; 0xFFFFFFFF when none could be allocated.
extern DWORD g_zelThreadSlot;

// The calling thread's record, made at first use; null without a slot or without memory.
ZelThreadData* ZelGetThreadData();
// The calling thread's record if it has one; never makes one.
ZelThreadData* ZelPeekThreadData();
// Thread detach: empties the warning queue, frees the record and clears the slot.
void ZelFreeThreadData();

#endif  // ZEL_FRAME_THREAD_DATA_H
