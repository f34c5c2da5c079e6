// Modules loaded as data files (data_modules.cpp), for the module calls of each system.
#ifndef ZEL_PLATFORM_COMMON_DATA_MODULES_H
#define ZEL_PLATFORM_COMMON_DATA_MODULES_H

#include <cstdint>
#include <filesystem>

#include "platform/win32.h"

// A data module's handle has the low bit set, as Win32 marks data files; a handle so marked need
// not be one that is still loaded.
inline bool ZelPlatformHasDataMark(HMODULE module) { return (reinterpret_cast<uintptr_t>(module) & 1) != 0; }

// A file's bytes under a new handle, or null with the last error set.
HMODULE ZelPlatformLoadDataModule(const std::filesystem::path& file);
// Whether a handle is a data module still loaded.
bool ZelPlatformIsDataModule(HMODULE module);
// One release of a data module; false when the handle is none.
bool ZelPlatformFreeDataModule(HMODULE module);

#endif  // ZEL_PLATFORM_COMMON_DATA_MODULES_H
