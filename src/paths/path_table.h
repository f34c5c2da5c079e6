// The process-wide table of named paths, as the macro operations and the temporary names see it.
#ifndef ZEL_PATHS_PATH_TABLE_H
#define ZEL_PATHS_PATH_TABLE_H

#include <zel/paths.h>

#include <cstddef>

// Longest name and value that a row holds, without terminator.
constexpr size_t kZelPathNameMax = 15;
constexpr size_t kZelPathValueMax = MAX_PATH - 1;

// The rows in registration order, ended by an all-zero row; null until the first registration.
const ZelPathEntry* ZelPathTableRows();

// The row whose name is exactly the length units at name, compared blind to the case of a to z;
// null when there is none.
const ZelPathEntry* ZelFindPathRow(const WCHAR* name, size_t length);

// ZelPathToAbsolute that tells whether the whole result fitted: false when it was cut at 259
// characters. destination holds 260 characters.
bool ZelExpandPathMacros(const WCHAR* source, WCHAR* destination);

#endif  // ZEL_PATHS_PATH_TABLE_H
