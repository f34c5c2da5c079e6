// Names that the system registry's ANSI calls write into a local buffer, given back to the caller
// as 16-bit text.
#ifndef ZEL_SETTINGS_REGISTRY_ADAPTERS_READ_BACK_H
#define ZEL_SETTINGS_REGISTRY_ADAPTERS_READ_BACK_H

#include <zel/wintypes.h>

// The local buffers of both sides: 8-bit names from the system, 16-bit names from the tree.
constexpr DWORD kZelRegNameBytes = MAX_PATH;
constexpr DWORD kZelRegNameUnits = MAX_PATH;

// Converts the text of a local buffer of ansiBytes bytes and gives it back by the places given:
// buffer and length, a copy cut to length units with length := the characters copied; buffer
// only, the whole text; length only, the text's length; neither, nothing.
void ZelGiveNameBack(const char* ansi, size_t ansiBytes, WCHAR* buffer, DWORD* length);
void ZelGiveNameBack(const char* ansi, size_t ansiBytes, WCHAR* buffer, LONG* length);

#endif  // ZEL_SETTINGS_REGISTRY_ADAPTERS_READ_BACK_H
