// The steps behind the resource file and language services of zel/frame.h: the application's
// internal name, the "ResDllExt" extensions, and the probes for a module's file in one language.
#ifndef ZEL_FRAME_RESOURCE_LOOKUP_H
#define ZEL_FRAME_RESOURCE_LOOKUP_H

#include <zel/frame.h>

// The InternalName of the executable's version block, read until it is found; empty when the
// executable has none. The text lives as long as the library.
const WCHAR* ZelGetAppInternalName();

// The resource file extension stored for the language below "ResDllExt", into extension (260
// characters). 1 when the value was read, else 0. The last answer is kept.
BOOL ZelReadResourceExt(LANGID language, WCHAR* extension);

// Whether the file base "." extension exists for the language: the "ResDllExt" extension first,
// then the system's abbreviation. On success the name goes to name (260 characters).
BOOL ZelProbeResourceFile(LCID language, const WCHAR* base, WCHAR* name);

// ZelProbeResourceFile for the language, then for its sublanguage 1 unless it is that already.
BOOL ZelProbeResourceLanguage(LCID language, const WCHAR* base, WCHAR* name);

// The resource file's name without extension: the module's drive and directory, then name, or the
// module's own title when name is empty. False when the module's file name can't be read.
bool ZelResourceBaseName(HMODULE module, const WCHAR* name, WCHAR* base);

// Error 9 of the calling thread, with the module's file name and its terminator as the detail.
void ZelSetResourceMissingError(HMODULE module);

// Drops the language caches and the define list, so that a fresh process can be stood in for
// (a forked child) and the next calls read the registry and the environment again.
void ZelForgetLocaleCaches();
void ZelForgetResourceExt();
void ZelForgetDefines();

#endif  // ZEL_FRAME_RESOURCE_LOOKUP_H
