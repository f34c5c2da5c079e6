// Item lists as the shell calls here make them: one item that holds the absolute path in the
// library's Windows form (16-bit, with its terminator), then the terminating zero item.
#ifndef ZEL_PLATFORM_POSIX_SHELL_ITEM_LIST_H
#define ZEL_PLATFORM_POSIX_SHELL_ITEM_LIST_H

#include <string>

#include "platform/win32.h"

// The absolute form of a path (current directory applied, "." and ".." resolved); false when
// the path is null or can't be made absolute.
bool ZelShellFullPath(LPCWSTR path, std::u16string& full);

// A new list, allocated with CoTaskMemAlloc, for a path taken as it is; null when out of memory.
LPITEMIDLIST ZelShellMakeItemList(const std::u16string& path);

// The path of a list; false for a null, empty or malformed list.
bool ZelShellItemPath(LPCITEMIDLIST list, std::u16string& path);

#endif  // ZEL_PLATFORM_POSIX_SHELL_ITEM_LIST_H
