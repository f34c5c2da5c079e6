// Temporary names and paths, and the short and long forms of a path (the same here).
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"

namespace {

// The longest number of a name, which fixes the longest name for a directory and prefix.
constexpr UINT kLargestNumber = 0xFFFF;

// dir\ + up to three characters of the prefix + the number's low 16 bits in hexadecimal, upper
// case and without leading zeros (one to four digits) + .tmp
std::u16string TempName(const std::u16string& directory, LPCWSTR prefix, UINT number) {
    std::u16string name = directory;
    if (!name.empty() && name.back() != u'\\' && name.back() != u'/') name += u'\\';
    for (int i = 0; prefix && i < 3 && prefix[i]; ++i) name += prefix[i];
    static const char16_t digits[] = u"0123456789ABCDEF";
    number &= kLargestNumber;
    int shift = 12;
    while (shift > 0 && (number >> shift) == 0) shift -= 4;
    for (; shift >= 0; shift -= 4) name += digits[(number >> shift) & 0xF];
    return name + u".tmp";
}

// A number to start from that differs between calls and processes.
UINT StartNumber() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    UINT number = static_cast<UINT>(now.tv_nsec / 1000 ^ now.tv_sec * 1000 ^ getpid()) & 0xFFFF;
    return number ? number : 1;
}

// The path itself, when it exists: this system keeps no short names.
DWORD SamePathWhenExists(LPCWSTR path, LPWSTR buffer, DWORD size) {
    if (!path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::string file = ZelPlatformPathToSystem(path);
    struct stat status;
    if (file.empty() || stat(file.c_str(), &status) != 0) {
        ZelSetPathError(file, file.empty() ? ENOENT : errno);
        return 0;
    }
    return ZelGiveText(std::u16string(path), buffer, size);  // a copy: buffer may be path itself
}

}  // namespace

UINT GetTempFileNameW(LPCWSTR pathName, LPCWSTR prefix, UINT unique, LPWSTR tempFileName) {
    if (!pathName || !tempFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::u16string directory(pathName);
    if (TempName(directory, prefix, kLargestNumber).size() >= MAX_PATH) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return 0;
    }
    if (unique != 0) {
        std::u16string name = TempName(directory, prefix, unique);
        std::copy(name.c_str(), name.c_str() + name.size() + 1, tempFileName);
        return unique;
    }
    std::string systemDirectory = ZelPlatformPathToSystem(directory.empty() ? u"." : directory.c_str());
    struct stat status;
    if (stat(systemDirectory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        SetLastError(ERROR_DIRECTORY);
        return 0;
    }
    // Step from a time-based number past the names taken, as CREATE_NEW finds them; 0 is skipped.
    UINT number = StartNumber();
    for (int tries = 0; tries < 0xFFFF; ++tries, number = (number & 0xFFFF) == 0xFFFF ? 1 : number + 1) {
        std::u16string name = TempName(directory, prefix, number);
        HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            std::copy(name.c_str(), name.c_str() + name.size() + 1, tempFileName);
            SetLastError(ERROR_SUCCESS);
            return number;
        }
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS) return 0;
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}

UINT GetTempFileNameA(LPCSTR pathName, LPCSTR prefix, UINT unique, LPSTR tempFileName) {
    if (!tempFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    WCHAR wide[MAX_PATH];
    UINT result = GetTempFileNameW(ZelPlatformAnsiToWide(pathName).get(), ZelPlatformAnsiToWide(prefix).get(),
                                   unique, wide);
    if (result == 0) return 0;
    std::string name = ZelPlatformWideToAnsi(wide);
    size_t length = std::min(name.size(), size_t{MAX_PATH - 1});
    std::memcpy(tempFileName, name.data(), length);
    tempFileName[length] = '\0';
    return result;
}

// TMP, then TEMP, then TMPDIR, then /tmp, in the Windows form with a backslash at its end.
DWORD GetTempPathW(DWORD size, LPWSTR buffer) {
    const char* value = nullptr;
    for (const char* name : {"TMP", "TEMP", "TMPDIR"}) {
        value = getenv(name);
        if (value && *value) break;
        value = nullptr;
    }
    std::u16string path = ZelPlatformPathFromSystem(value ? value : "/tmp");
    if (path.empty() || path.back() != u'\\') path += u'\\';
    return ZelGiveText(path, buffer, size);
}

DWORD GetTempPathA(DWORD size, LPSTR buffer) {
    return ZelGiveAnsiFromWide(buffer, size, [](LPWSTR wide, DWORD wideSize) { return GetTempPathW(wideSize, wide); });
}

DWORD GetShortPathNameW(LPCWSTR longPath, LPWSTR shortPath, DWORD size) {
    return SamePathWhenExists(longPath, shortPath, size);
}

DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD size) {
    ZelAnsiArg path = ZelPlatformAnsiToWide(longPath);
    return ZelGiveAnsiFromWide(shortPath, size, [&](LPWSTR wide, DWORD wideSize) {
        return GetShortPathNameW(path.get(), wide, wideSize);
    });
}

DWORD GetLongPathNameW(LPCWSTR shortPath, LPWSTR longPath, DWORD size) {
    return SamePathWhenExists(shortPath, longPath, size);
}

DWORD GetLongPathNameA(LPCSTR shortPath, LPSTR longPath, DWORD size) {
    ZelAnsiArg path = ZelPlatformAnsiToWide(shortPath);
    return ZelGiveAnsiFromWide(longPath, size, [&](LPWSTR wide, DWORD wideSize) {
        return GetLongPathNameW(path.get(), wide, wideSize);
    });
}
