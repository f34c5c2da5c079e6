// The process's arguments as 16-bit text.
#include <zel/paths.h>

#include <cstdint>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "strings/wstr.h"

BOOL ZelGetArgV(int index, WCHAR* buffer, int size) {
    if (index < 0 || index >= crt::ArgumentCount()) return FALSE;
    size_t count = size > 0 ? static_cast<size_t>(size) : 0;
    if (ZelAnsiMode()) {
        const char* argument = crt::Argument(index);
        ZelWideResult wide(argument ? argument : "", SIZE_MAX);
        if (buffer) wcsncpy(buffer, wide.get(), count);
        return TRUE;
    }
    int argc = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argv && index < argc && buffer) wcsncpy(buffer, argv[index], count);
    GlobalFree(argv);
    return TRUE;
}
