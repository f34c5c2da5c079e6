// What the INI store's model, reader and writer share.
#ifndef ZEL_SETTINGS_INI_INTERNAL_H
#define ZEL_SETTINGS_INI_INTERNAL_H

#include <zel/settings.h>

// The error code for a record that could not be made.
constexpr DWORD kZelIniOutOfMemory = 2;

// A section name is read into a buffer of this many units: brackets and terminator included.
constexpr int kZelIniSectionNameSize = 258;

// The entry buffer of a load starts at, and grows by, this many units.
constexpr int kZelIniEntryBufferStep = 256;

constexpr WCHAR kZelIniByteOrderMark = 0xFEFF;

// Frees a section's entries, their array and the section itself. Null is allowed.
void ZelIniFreeSection(tagZELINISECTION* section);

#endif  // ZEL_SETTINGS_INI_INTERNAL_H
