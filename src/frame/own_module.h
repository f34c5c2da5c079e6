// The library's own module record: its handles are the library's module handle and resource handle.
#ifndef ZEL_FRAME_OWN_MODULE_H
#define ZEL_FRAME_OWN_MODULE_H

#include <zel/frame.h>

extern ZelModuleDef g_zelOwnModule;

#endif  // ZEL_FRAME_OWN_MODULE_H
