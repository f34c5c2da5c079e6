// System times as FILETIME and as text in the user's language. The text calls go through the
// 8-bit forms in every mode.
#include <zel/paths.h>
#include <zel/strings.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

using FormatCall = int (*)(LCID, DWORD, const SYSTEMTIME*, LPCSTR, LPSTR, int);

// The 8-bit call writes to a local buffer of MAX_PATH bytes, so a size above that is passed as
// MAX_PATH; the text comes back to the caller cut to the caller's size. A size of 0 asks for the
// size needed and copies nothing.
int Format(FormatCall call, LCID locale, DWORD flags, const SYSTEMTIME* time, const WCHAR* format, WCHAR* buffer,
           int size) {
    ZelNarrowArg formatA(format);
    char local[kZelAnsiResultBytes] = {};
    int result = call(locale, flags, time, formatA.get(), local, size > 0 ? static_cast<int>(ZelAnsiResultSize(size)) : size);
    if (result > 0 && size > 0 && buffer) ZelWideResult(local, sizeof(local)).CopyTo(buffer, static_cast<size_t>(size));
    return result;
}

}  // namespace

BOOL ZelGetFiletime(FILETIME* time) {
    if (!time) return FALSE;
    SYSTEMTIME now;
    GetSystemTime(&now);
    return SystemTimeToFileTime(&now, time);
}

int ZelGetDateFormat(LCID locale, DWORD flags, const SYSTEMTIME* date, const WCHAR* format, WCHAR* buffer, int size) {
    return Format(GetDateFormatA, locale, flags, date, format, buffer, size);
}

int ZelGetTimeFormat(LCID locale, DWORD flags, const SYSTEMTIME* time, const WCHAR* format, WCHAR* buffer, int size) {
    return Format(GetTimeFormatA, locale, flags, time, format, buffer, size);
}

BOOL ZelGetFiletimeStr(WCHAR* buffer, const FILETIME* time, BOOL withTime) {
    if (!time || !buffer) return FALSE;
    FILETIME local;
    SYSTEMTIME parts = {};
    FileTimeToLocalFileTime(time, &local);
    FileTimeToSystemTime(&local, &parts);
    WCHAR date[MAX_PATH] = {};
    ZelGetDateFormat(LOCALE_USER_DEFAULT, DATE_LONGDATE, &parts, nullptr, date, MAX_PATH);
    if (!withTime) {
        ustrlcpy(buffer, date, MAX_PATH);
        return TRUE;
    }
    WCHAR clock[MAX_PATH] = {};
    ZelGetTimeFormat(LOCALE_USER_DEFAULT, 0, &parts, nullptr, clock, MAX_PATH);
    if (_snwprintf(buffer, MAX_PATH, u"%s %s", date, clock) < 0) buffer[MAX_PATH - 1] = 0;
    return TRUE;
}
