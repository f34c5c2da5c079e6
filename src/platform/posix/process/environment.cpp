// GetEnvironmentVariableW over the process's environment, whose names and values are UTF-8.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/win32.h"

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) {
    const char* value = name ? std::getenv(ZelPlatformWideToUtf8(name).c_str()) : nullptr;
    if (!value) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    const std::u16string wide = ZelPlatformUtf8ToWide(value);
    // Room for the terminator: the length without it; else the size needed, with it.
    if (!buffer || size <= wide.size()) return static_cast<DWORD>(wide.size() + 1);
    std::memcpy(buffer, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
    return static_cast<DWORD>(wide.size());
}
