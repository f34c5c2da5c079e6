// Copies, moves, renames and deletes lists of names through the shell. A list is a run of names,
// each with its terminator, and one more terminator behind the last.
#include <zel/paths.h>

#include <cstdlib>
#include <cstring>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

// The 16-bit list as an 8-bit list on the heap, or null when there is no memory. A null list
// becomes a list of the final terminator alone.
char* NarrowList(const WCHAR* list) {
    size_t bytes = 1;
    for (const WCHAR* name = list; name && *name; name += wcslen(name) + 1)
        bytes += std::strlen(ZelNarrowArg(name).get()) + 1;
    char* narrow = static_cast<char*>(std::calloc(bytes, 1));
    if (!narrow) return nullptr;
    // Each name converts the same way twice, so the second walk fills exactly what the first counted.
    char* out = narrow;
    for (const WCHAR* name = list; name && *name; name += wcslen(name) + 1) {
        ZelNarrowArg converted(name);
        const size_t length = std::strlen(converted.get()) + 1;
        std::memcpy(out, converted.get(), length);
        out += length;
    }
    return narrow;
}

}  // namespace

// In ANSI mode the aborted flag and the name mappings of the call aren't copied back.
int ZelSHFileOperation(LPSHFILEOPSTRUCTW operation) {
    if (!ZelAnsiMode()) return SHFileOperationW(operation);
    if (!operation) return SHFileOperationA(nullptr);
    SHFILEOPSTRUCTA local = {};
    local.hwnd = operation->hwnd;
    local.wFunc = operation->wFunc;
    local.fFlags = operation->fFlags;
    local.fAnyOperationsAborted = operation->fAnyOperationsAborted;
    local.hNameMappings = operation->hNameMappings;
    ZelNarrowArg title(operation->lpszProgressTitle);
    local.lpszProgressTitle = title.get();

    char* from = NarrowList(operation->pFrom);
    char* to = from ? NarrowList(operation->pTo) : nullptr;
    if (!from || !to) {
        std::free(from);
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    local.pFrom = from;
    local.pTo = to;
    const int result = SHFileOperationA(&local);
    std::free(from);
    std::free(to);
    return result;
}
