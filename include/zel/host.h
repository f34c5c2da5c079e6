// What a host application may set for the library's dealings with the user.
#ifndef ZEL_HOST_H
#define ZEL_HOST_H

#include <zel/wintypes.h>

// The library shows a message box where a failure needs the user's attention. Without a handler
// the caption and the text go to standard error and the box answers IDOK; a handler installed
// here sees them instead and gives the answer. A null handler restores standard error.
typedef int (*ZelMessageBoxHandler)(const WCHAR* text, const WCHAR* caption, UINT style, void* context);
ZEL_API void ZelSetMessageBoxHandler(ZelMessageBoxHandler handler, void* context);

#endif  // ZEL_HOST_H
