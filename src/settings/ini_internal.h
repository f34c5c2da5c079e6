// What the INI store's model, reader and writer share.
#ifndef ZEL_SETTINGS_INI_INTERNAL_H
#define ZEL_SETTINGS_INI_INTERNAL_H

#include <zel/settings.h>

#include <unordered_map>

#include "settings/ini_name_table.h"

// The error code for a record that could not be made.
constexpr DWORD kZelIniOutOfMemory = 2;

// A section name is read into a buffer of this many units: brackets and terminator included.
constexpr int kZelIniSectionNameSize = 258;

// The entry buffer of a load starts at, and grows by, this many units.
constexpr int kZelIniEntryBufferStep = 256;

constexpr WCHAR kZelIniByteOrderMark = 0xFEFF;

// Frees a section's entries, their array and the section itself. Null is allowed.
void ZelIniFreeSection(tagZELINISECTION* section);

// The index of one object: positions by name, each name at its first position. The tables point
// at the records, which keep their names while they are indexed: a renamed id or a removal makes
// the index forget. Each table covers the records in front of its count and catches up on those
// appended since at the next look-up, so that an append costs nothing here.
struct ZelIniNameIndex {
    struct Ids {
        ZelIniNameTable<tagZELINIVALUE> first;
        size_t seen = 0;
    };
    ZelIniNameTable<tagZELINISECTION> sections;
    size_t sectionsSeen = 0;
    std::unordered_map<const tagZELINISECTION*, Ids> ids;
};

// Tell an object's index, when it has one, that section positions moved, or that a section's ids
// changed or moved (or that the section goes).
void ZelIniForgetPositions(ZelIniNameIndex* index);
void ZelIniForgetIds(ZelIniNameIndex* index, const tagZELINISECTION* section);

#endif  // ZEL_SETTINGS_INI_INTERNAL_H
