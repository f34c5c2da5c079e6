// Modules: the system's, but for files that are no executable image (the library's resource
// files), which load as data modules of the library's own, as they do on every system.
#include <cstring>
#include <fstream>

#include "platform/common/modules/data_modules.h"
#include "platform/win32.h"
#include "platform/windows/system_calls.h"

namespace {

std::filesystem::path Path(LPCWSTR text) { return std::filesystem::path(reinterpret_cast<const wchar_t*>(text)); }

// A file that exists and does not start as an executable image does ("MZ").
bool IsDataFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    char magic[2] = {};
    return in && !(in.read(magic, 2) && std::memcmp(magic, "MZ", 2) == 0);
}

// The file a name means, as the system would look for it; empty when there is none.
std::filesystem::path Find(LPCWSTR fileName) {
    WCHAR found[MAX_PATH];
    const DWORD length = sys::SearchPathW(nullptr, fileName, nullptr, MAX_PATH, found, nullptr);
    return length == 0 || length >= MAX_PATH ? std::filesystem::path() : Path(found);
}

}  // namespace

HMODULE LoadLibraryExW(LPCWSTR fileName, HANDLE reserved, DWORD flags) {
    if (fileName && *fileName && !reserved) {
        const std::filesystem::path file = Find(fileName);
        if (!file.empty() && IsDataFile(file)) return ZelPlatformLoadDataModule(file);
    }
    return sys::LoadLibraryExW(fileName, reserved, flags);
}

HMODULE LoadLibraryW(LPCWSTR fileName) { return LoadLibraryExW(fileName, nullptr, 0); }

HMODULE LoadLibraryA(LPCSTR fileName) { return LoadLibraryW(ZelPlatformAnsiToWide(fileName).get()); }

HMODULE LoadLibraryExA(LPCSTR fileName, HANDLE reserved, DWORD flags) {
    return LoadLibraryExW(ZelPlatformAnsiToWide(fileName).get(), reserved, flags);
}

BOOL FreeLibrary(HMODULE module) { return ZelPlatformFreeDataModule(module) || sys::FreeLibrary(module); }

// A data module has no file name of its own, as on every system.
template <typename Char>
DWORD ModuleFileName(HMODULE module, Char* fileName, DWORD size,
                     DWORD (*system)(HMODULE, Char*, DWORD)) {
    if (!ZelPlatformIsDataModule(module)) return system(module, fileName, size);
    SetLastError(ERROR_MOD_NOT_FOUND);
    return 0;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size) {
    return ModuleFileName(module, fileName, size, sys::GetModuleFileNameW);
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size) {
    return ModuleFileName(module, fileName, size, sys::GetModuleFileNameA);
}
