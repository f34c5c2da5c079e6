// The steps of process attach and detach that belong to other subsystems.
#ifndef ZEL_FRAME_ATTACH_STEPS_H
#define ZEL_FRAME_ATTACH_STEPS_H

#include <zel/codetables.h>  // UnloadUnicodeTbl: releases the code tables loaded since start

// Enters the default paths into the path table.
void ZelRegisterDefaultPaths();
// Frees the path table.
void ZelFreePathTable();

#endif  // ZEL_FRAME_ATTACH_STEPS_H
