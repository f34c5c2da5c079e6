// The system's calls on windows and window classes with 16-bit names. Class records stay 8-bit.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

HWND ZelFindWindow(const WCHAR* className, const WCHAR* windowName) {
    if (!ZelAnsiMode()) return FindWindowW(className, windowName);
    return FindWindowA(ZelNarrowArg(className).get(), ZelNarrowArg(windowName).get());
}

// 1 when the call gave a name, in both modes.
int ZelGetClassName(HWND window, WCHAR* buffer, int size) {
    if (!ZelAnsiMode()) return GetClassNameW(window, buffer, size) > 0 ? 1 : 0;
    char local[kZelAnsiResultBytes + 1] = {};
    const int localSize = size < static_cast<int>(kZelAnsiResultBytes) ? size : kZelAnsiResultBytes;
    if (GetClassNameA(window, local, localSize) <= 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size > 0 ? static_cast<size_t>(size) : 0);
    return 1;
}

BOOL ZelGetClassInfo(HINSTANCE instance, const WCHAR* className, LPWNDCLASSA record) {
    return GetClassInfoA(instance, ZelNarrowArg(className).get(), record);
}

BOOL ZelGetClassInfoEx(HINSTANCE instance, const WCHAR* className, LPWNDCLASSEXA record) {
    return GetClassInfoExA(instance, ZelNarrowArg(className).get(), record);
}
