// The bounds of the library's buffers that a caller keeps: zel refuses what would not fit before
// the library cuts it.
#ifndef ZEL_CLI_LIMITS_H
#define ZEL_CLI_LIMITS_H

#include <zel/wintypes.h>

#include <cstddef>
#include <string>

// A path buffer holds MAX_PATH units with the terminator.
constexpr size_t kPathUnits = MAX_PATH - 1;
// A registry key path below its hive, as the registry class keeps it: 520 units with the terminator.
constexpr size_t kKeyPathUnits = 2 * MAX_PATH - 1;

// True when text (UTF-8) is at most most units of UTF-16; otherwise a message that names what,
// its length and the limit with its reason, and false.
bool Fits(const std::string& what, const std::u16string& text, size_t most, const std::string& reason);

// A path for the library's path buffers, with reserve units to spare (the suffix of a new copy
// beside it). A path with ${Name} macros is measured as they expand.
bool PathFits(const std::string& what, const std::string& path, size_t reserve = 0);

#endif  // ZEL_CLI_LIMITS_H
