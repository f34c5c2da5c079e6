// What the sources of CZelRegistry share: the two access masks and a value read that keeps to the
// buffer it is given on both registries.
#ifndef ZEL_SETTINGS_REGISTRY_CLASS_INTERNAL_H
#define ZEL_SETTINGS_REGISTRY_CLASS_INTERNAL_H

#include <zel/settings.h>

constexpr REGSAM kZelKeyRead = KEY_READ;                   // 0x20019, for reads
constexpr REGSAM kZelKeyReadWrite = KEY_READ | KEY_WRITE;  // 0x2001F, for everything else

// Names and paths that the class reads back hold 259 characters and their terminator.
constexpr DWORD kZelRegNameUnits = MAX_PATH;

// ZelRegQueryValueEx of one value into data, which holds capacity bytes; size comes back as the
// value's length in bytes. The tree copies a dword as four bytes and a string as 16-bit units with
// one zero unit more, whatever the capacity: a value that would reach past the buffer is read
// through a scratch block, and what fits is copied.
LONG ZelRegReadValueBounded(HKEY key, const WCHAR* name, BYTE* data, DWORD capacity, DWORD* size, int useVirtual);

#endif  // ZEL_SETTINGS_REGISTRY_CLASS_INTERNAL_H
