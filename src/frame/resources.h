// The frame's reach into resource files. The module table loads and frees a module's resource
// file, and the error functions read strings from one. The resource service provides these
// operations through ZelSetResourceAccess; without it no module has a resource file, nothing is
// loaded and every string reads as empty.
#ifndef ZEL_FRAME_RESOURCES_H
#define ZEL_FRAME_RESOURCES_H

#include <zel/frame.h>

struct ZelResourceAccess {
    // Finds the resource file of a module; name holds a base name or is empty on entry, and the
    // full name on success. On failure it has set error 9 of the calling thread.
    BOOL (*getPath)(HMODULE module, WCHAR* name);
    HMODULE (*load)(const WCHAR* name);
    BOOL (*free)(HMODULE resource);
    // String number id of a module's string table: characters copied, 0 with an empty buffer when
    // there is none.
    int (*loadStringW)(HMODULE module, UINT id, WCHAR* buffer, int size);
    int (*loadStringA)(HMODULE module, UINT id, char* buffer, int size);
};

// Installs the operations; null restores "no resource files".
void ZelSetResourceAccess(const ZelResourceAccess* access);
// Whether resource files can be looked for at all.
bool ZelResourceFilesAvailable();

// Error 9 of the calling thread, with the module's file name as its detail.
void ZelSetResourceMissingError(HMODULE module);

BOOL ZelGetResourcePath(HMODULE module, WCHAR* name);
HMODULE ZelLoadResource(const WCHAR* name);
BOOL ZelFreeResource(HMODULE resource);
int ZelLoadStringW(HMODULE module, UINT id, WCHAR* buffer, int size);
int LoadStringA(HMODULE module, UINT id, char* buffer, int size);

#endif  // ZEL_FRAME_RESOURCES_H
