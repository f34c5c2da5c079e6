// Paths toward the system: the library's Windows form is the system's, so names go out as they
// are, in UTF-8 where the system side takes bytes (the way in: common/files).
#include "platform/win32.h"

std::string ZelPlatformPathToSystem(LPCWSTR path) { return path ? ZelPlatformWideToUtf8(path) : std::string(); }
