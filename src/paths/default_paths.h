// The default paths that process attach registers, and the two tests they are chosen by.
#ifndef ZEL_PATHS_DEFAULT_PATHS_H
#define ZEL_PATHS_DEFAULT_PATHS_H

#include <zel/wintypes.h>

// Whether a directory can take temporary files: on a fixed drive, not a network path, and a file
// can be made in it (and is removed again).
BOOL ZelIsUsableDir(const WCHAR* directory);

// The "SharedData Path" of the installation, with a trailing backslash, when it holds
// Fonts\FontInfo.dat. 1 with the directory in buffer (size characters), else 0.
BOOL ZelFindSharedData(WCHAR* buffer, int size);

#endif  // ZEL_PATHS_DEFAULT_PATHS_H
