// Making a whole directory chain, and asking the shell for the long form of a path.
#include <zel/paths.h>
#include <zel/strings.h>

#include "paths/path_table.h"
#include "platform/win32.h"
#include "strings/wstr.h"

BOOL ZelPathCreate(const WCHAR* path) {
    if (!path) return 0;
    WCHAR chain[MAX_PATH];
    if (!ZelExpandPathMacros(path, chain)) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return 0;
    }
    // A plain name, or nothing at all, has no directory to make.
    WCHAR* last = wcsrchr(chain, u'\\');
    if (!last) return 1;
    // The last component of a path without trailing backslash is a file name.
    if (last[1]) last[0] = 0;
    // Cutting made room for the one backslash that this may add.
    size_t length = wcslen(chain);
    if (length == 0 || chain[length - 1] != u'\\') {
        chain[length++] = u'\\';
        chain[length] = 0;
    }

    // A drive root or a share is never tested: the first directory is the component behind the
    // first backslash (after the two of a network path).
    size_t start = length >= 3 && chain[0] == u'\\' && chain[1] == u'\\' ? 2 : 0;
    WCHAR* first = wcschr(chain + start, u'\\');
    if (!first) return 1;
    for (WCHAR* p = wcschr(first + 1, u'\\'); p; p = wcschr(p + 1, u'\\')) {
        *p = 0;
        BOOL ok = ZelExistDir(chain) || ZelCreateDirectory(chain, nullptr);
        *p = u'\\';
        if (!ok) return 0;
    }
    return 1;
}

BOOL ZelPathToLongPath(const WCHAR* path, WCHAR* destination) {
    if (!path || !destination) return 0;
    WCHAR displayName[MAX_PATH];
    if (wcslen(path) > MAX_PATH - 1) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return 0;
    }
    ustrlcpy(displayName, path, MAX_PATH);

    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop)) || !desktop) return 0;
    IMalloc* allocator = nullptr;
    if (FAILED(SHGetMalloc(&allocator)) || !allocator) {
        desktop->Release();
        return 0;
    }
    ULONG eaten = 0;
    LPITEMIDLIST list = nullptr;
    BOOL result = 0;
    if (SUCCEEDED(desktop->ParseDisplayName(nullptr, nullptr, displayName, &eaten, &list, nullptr)))
        result = ZelSHGetPathFromIDList(list, destination);
    desktop->Release();
    if (list) allocator->Free(list);
    allocator->Release();
    return result;
}
