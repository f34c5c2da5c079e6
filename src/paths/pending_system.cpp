// Placeholder bodies, replaced one by one by the real ones; this file goes when it is empty.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#include <zel/paths.h>

int ZelGetWinVersion() { return {}; }
WCHAR* ZelGetOSVersion() { return {}; }
int ZelGetOS() { return {}; }
int ZelGetEndian() { return {}; }
int ZelGetApplicationBit() { return {}; }
BOOL IsWinWow64() { return {}; }
BOOL ZelGetArgV(int index, WCHAR* buffer, int size) { return {}; }
BOOL ZelGetFiletime(FILETIME* time) { return {}; }
BOOL ZelGetFiletimeStr(WCHAR* buffer, const FILETIME* time, BOOL withTime) { return {}; }
int ZelGetDateFormat(LCID locale, DWORD flags, const SYSTEMTIME* date, const WCHAR* format, WCHAR* buffer, int size) { return {}; }
int ZelGetTimeFormat(LCID locale, DWORD flags, const SYSTEMTIME* time, const WCHAR* format, WCHAR* buffer, int size) { return {}; }
DWORD ZelGetVolumeSerialNumber(const WCHAR* path) { return {}; }
int ZelIntMulDiv(int a, int b, int c) { return {}; }
std::map<HWND, void*>& GetWMSWindowMap() { static std::map<HWND, void*> map; return map; }
