// What the INI store's model, reader and writer share.
#ifndef ZEL_SETTINGS_INI_INTERNAL_H
#define ZEL_SETTINGS_INI_INTERNAL_H

#include <zel/settings.h>

#include <string_view>
#include <unordered_map>

// The error code for a record that could not be made.
constexpr DWORD kZelIniOutOfMemory = 2;

// A section name is read into a buffer of this many units: brackets and terminator included.
constexpr int kZelIniSectionNameSize = 258;

// The entry buffer of a load starts at, and grows by, this many units.
constexpr int kZelIniEntryBufferStep = 256;

constexpr WCHAR kZelIniByteOrderMark = 0xFEFF;

// Frees a section's entries, their array and the section itself. Null is allowed.
void ZelIniFreeSection(tagZELINISECTION* section);

// Positions by name, each name at its first position. Names are views into the records, which
// keep them while they are indexed: a renamed id or a removal makes the index forget.
using ZelIniPositions = std::unordered_map<std::u16string_view, int>;

// The index of one object. Each table covers the records in front of its count and catches up on
// those appended since at the next look-up, so that an append costs nothing here.
struct ZelIniNameIndex {
    struct Ids {
        ZelIniPositions first;
        size_t seen = 0;
    };
    ZelIniPositions sections;
    size_t sectionsSeen = 0;
    std::unordered_map<const tagZELINISECTION*, Ids> ids;
};

// Tell an object's index, when it has one, that section positions moved, or that a section's ids
// changed or moved (or that the section goes).
void ZelIniForgetPositions(ZelIniNameIndex* index);
void ZelIniForgetIds(ZelIniNameIndex* index, const tagZELINISECTION* section);

#endif  // ZEL_SETTINGS_INI_INTERNAL_H
