// The system's calls on modules with 16-bit names.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

// 1 when the call found a name, in both modes; the name is cut to the caller's size.
DWORD ZelGetModuleFileName(HMODULE module, WCHAR* buffer, DWORD size) {
    if (!ZelAnsiMode()) return GetModuleFileNameW(module, buffer, size) > 0 ? 1 : 0;
    char local[kZelAnsiResultBytes + 1] = {};
    if (GetModuleFileNameA(module, local, ZelAnsiResultSize(size)) == 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size);
    return 1;
}

HMODULE ZelGetModuleHandle(const WCHAR* name) {
    if (!ZelAnsiMode()) return GetModuleHandleW(name);
    return GetModuleHandleA(ZelNarrowArg(name).get());
}

HMODULE ZelLoadLibrary(const WCHAR* name) {
    if (!ZelAnsiMode()) return LoadLibraryW(name);
    return LoadLibraryA(ZelNarrowArg(name).get());
}

HMODULE ZelLoadLibraryEx(const WCHAR* name, HANDLE file, DWORD flags) {
    if (!ZelAnsiMode()) return LoadLibraryExW(name, file, flags);
    return LoadLibraryExA(ZelNarrowArg(name).get(), file, flags);
}
