// The ANSI profile calls: their texts pass the ANSI code page both ways around the query of the
// wide calls, and what comes back is counted and cut in bytes, between two characters.
#include <string>
#include <vector>

#include "platform/mbcs.h"
#include "platform/posix/profile/profile_answer.h"
#include "platform/win32.h"

namespace {

// The longest prefix of at most limit bytes that ends between two characters of the code page.
size_t FitAnsi(const std::string& text, size_t limit) {
    if (limit >= text.size()) return text.size();
    const ZelMbcsPage& page = ZelPlatformMbcsPage();
    const auto bytes = reinterpret_cast<const BYTE*>(text.c_str());
    size_t at = 0;
    while (at < limit) {
        const size_t next = at + page.CharLength(bytes + at);
        if (next > limit) break;
        at = next;
    }
    return at;
}

}  // namespace

UINT GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue, LPCSTR fileName) {
    return GetPrivateProfileIntW(ZelPlatformAnsiToWide(section).get(), ZelPlatformAnsiToWide(key).get(),
                                 defaultValue, ZelPlatformAnsiToWide(fileName).get());
}

UINT GetProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue) {
    return GetProfileIntW(ZelPlatformAnsiToWide(section).get(), ZelPlatformAnsiToWide(key).get(), defaultValue);
}

DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                               LPCSTR fileName) {
    const zelprofile::ProfileAnswer answer = zelprofile::QueryProfile(
        ZelPlatformAnsiToWide(section).get(), ZelPlatformAnsiToWide(key).get(),
        ZelPlatformAnsiToWide(defaultValue).get(), ZelPlatformAnsiToWide(fileName).get());
    const DWORD status = GetLastError();
    std::vector<std::string> items;
    for (const std::u16string& item : answer.items) items.push_back(ZelPlatformWideToAnsi(item.c_str()));
    const DWORD result = zelprofile::DeliverProfileAnswer(items, answer.list, buffer, size, FitAnsi);
    SetLastError(status);
    return result;
}

DWORD GetProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size) {
    return GetPrivateProfileStringA(section, key, defaultValue, buffer, size, "win.ini");
}

BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName) {
    return WritePrivateProfileStringW(ZelPlatformAnsiToWide(section).get(), ZelPlatformAnsiToWide(key).get(),
                                      ZelPlatformAnsiToWide(value).get(), ZelPlatformAnsiToWide(fileName).get());
}

BOOL WriteProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value) {
    return WriteProfileStringW(ZelPlatformAnsiToWide(section).get(), ZelPlatformAnsiToWide(key).get(),
                               ZelPlatformAnsiToWide(value).get());
}
