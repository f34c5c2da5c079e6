// The profile calls: wide forms of the system's calls over its 8-bit INI files.
#include <zel/codetables.h>
#include <zel/settings.h>

#include <cstring>
#include <vector>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

namespace {

// The 95 family's road of the string readers: the ANSI call fills a local buffer of size bytes,
// whose strings (several, divided by zero bytes, when a list was asked for) are converted one by
// one into the caller's buffer. A string never gives more units than it has bytes, so the
// caller's position never passes the local one.
template <typename AnsiCall>
DWORD ReadThroughAnsi(WCHAR* buffer, DWORD size, AnsiCall call) {
    if (!buffer) size = 0;
    std::vector<char> local(size);
    const DWORD result = call(local.data(), size);
    if (result == 0) return 0;
    const size_t end = result < size ? result : size;
    size_t byte = 0, unit = 0;
    while (byte < end) {
        if (local[byte] == 0) {
            buffer[unit++] = 0;
            ++byte;
            continue;
        }
        const size_t length = strnlen(local.data() + byte, end - byte);
        const int units = ZelAnsiToUnicode(0, 0, local.data() + byte, static_cast<int>(length), buffer + unit,
                                           static_cast<int>(size - unit), 0);
        unit += units > 0 ? static_cast<size_t>(units) : 0;
        byte += length;
    }
    // The zero that closes the text or the list, which the count leaves out.
    if (unit < size) buffer[unit] = 0;
    return result;
}

}  // namespace

UINT ZelGetProfileInt(const WCHAR* section, const WCHAR* key, int defaultValue) {
    return GetProfileIntA(ZelNarrowArg(section).get(), ZelNarrowArg(key).get(), defaultValue);
}

BOOL ZelWriteProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* value) {
    return WriteProfileStringA(ZelNarrowArg(section).get(), ZelNarrowArg(key).get(), ZelNarrowArg(value).get());
}

UINT ZelGetPrivateProfileInt(const WCHAR* section, const WCHAR* key, int defaultValue, const WCHAR* fileName) {
    return GetPrivateProfileIntA(ZelNarrowArg(section).get(), ZelNarrowArg(key).get(), defaultValue,
                                 ZelNarrowArg(fileName).get());
}

BOOL ZelWritePrivateProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* value,
                                  const WCHAR* fileName) {
    return WritePrivateProfileStringA(ZelNarrowArg(section).get(), ZelNarrowArg(key).get(),
                                      ZelNarrowArg(value).get(), ZelNarrowArg(fileName).get());
}

DWORD ZelGetProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue, WCHAR* buffer,
                          DWORD size) {
    if (!ZelAnsiMode()) return GetProfileStringW(section, key, defaultValue, buffer, size);
    ZelNarrowArg narrowSection(section), narrowKey(key), narrowDefault(defaultValue);
    return ReadThroughAnsi(buffer, size, [&](char* local, DWORD localSize) {
        return GetProfileStringA(narrowSection.get(), narrowKey.get(), narrowDefault.get(), local, localSize);
    });
}

DWORD ZelGetPrivateProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue, WCHAR* buffer,
                                 DWORD size, const WCHAR* fileName) {
    if (!ZelAnsiMode()) return GetPrivateProfileStringW(section, key, defaultValue, buffer, size, fileName);
    ZelNarrowArg narrowSection(section), narrowKey(key), narrowDefault(defaultValue), narrowFile(fileName);
    return ReadThroughAnsi(buffer, size, [&](char* local, DWORD localSize) {
        return GetPrivateProfileStringA(narrowSection.get(), narrowKey.get(), narrowDefault.get(), local, localSize,
                                        narrowFile.get());
    });
}
