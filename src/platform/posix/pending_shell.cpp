// Placeholder bodies, replaced one by one by the real ones; this file goes when it is empty.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#include "platform/win32.h"

int SHFileOperationA(LPSHFILEOPSTRUCTA operation) { return {}; }
int SHFileOperationW(LPSHFILEOPSTRUCTW operation) { return {}; }
BOOL SHGetSpecialFolderPathA(HWND owner, LPSTR path, int folder, BOOL create) { return {}; }
BOOL SHGetSpecialFolderPathW(HWND owner, LPWSTR path, int folder, BOOL create) { return {}; }
HRESULT SHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path) { return {}; }
HRESULT SHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PIDLIST_ABSOLUTE* list) { return {}; }
void SHGetSettings(LPSHELLFLAGSTATE state, DWORD mask) {}
HINSTANCE ShellExecuteA(HWND owner, LPCSTR operation, LPCSTR file, LPCSTR parameters, LPCSTR directory, int show) { return {}; }
HINSTANCE ShellExecuteW(HWND owner, LPCWSTR operation, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory, int show) { return {}; }
HRESULT SHGetDesktopFolder(IShellFolder** folder) { return {}; }
HRESULT SHGetMalloc(IMalloc** allocator) { return {}; }
BOOL SHGetPathFromIDListA(LPCITEMIDLIST list, LPSTR path) { return {}; }
BOOL SHGetPathFromIDListW(LPCITEMIDLIST list, LPWSTR path) { return {}; }
HRESULT SHGetDataFromIDListA(IShellFolder* folder, LPCITEMIDLIST list, int format, void* data, int size) { return {}; }
HRESULT SHGetDataFromIDListW(IShellFolder* folder, LPCITEMIDLIST list, int format, void* data, int size) { return {}; }
DWORD_PTR SHGetFileInfoA(LPCSTR path, DWORD attributes, SHFILEINFOA* info, UINT size, UINT flags) { return {}; }
DWORD_PTR SHGetFileInfoW(LPCWSTR path, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags) { return {}; }
void* CoTaskMemAlloc(SIZE_T size) { return {}; }
void CoTaskMemFree(void* memory) {}
HGLOBAL GlobalFree(HGLOBAL memory) { return {}; }
HLOCAL LocalFree(HLOCAL memory) { return {}; }
HWND FindWindowA(LPCSTR className, LPCSTR windowName) { return {}; }
HWND FindWindowW(LPCWSTR className, LPCWSTR windowName) { return {}; }
int GetClassNameA(HWND window, LPSTR className, int size) { return {}; }
int GetClassNameW(HWND window, LPWSTR className, int size) { return {}; }
BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, LPWNDCLASSA windowClass) { return {}; }
BOOL GetClassInfoExA(HINSTANCE instance, LPCSTR className, LPWNDCLASSEXA windowClass) { return {}; }
UINT DragQueryFileA(HDROP drop, UINT index, LPSTR file, UINT size) { return {}; }
UINT DragQueryFileW(HDROP drop, UINT index, LPWSTR file, UINT size) { return {}; }
void GetSystemTime(LPSYSTEMTIME time) {}
void GetLocalTime(LPSYSTEMTIME time) {}
void GetSystemTimeAsFileTime(LPFILETIME time) {}
BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, LPFILETIME fileTime) { return {}; }
BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime) { return {}; }
BOOL FileTimeToLocalFileTime(const FILETIME* fileTime, LPFILETIME localFileTime) { return {}; }
BOOL FileTimeToDosDateTime(const FILETIME* fileTime, LPWORD dosDate, LPWORD dosTime) { return {}; }
FILETIME ZelPlatformFileTimeFromUnix(int64_t seconds, long nanoseconds) { return {}; }
int64_t ZelPlatformUnixFromFileTime(const FILETIME& time) { return {}; }
BOOL GetVersionExA(LPOSVERSIONINFOA info) { return {}; }
HANDLE GetCurrentProcess() { return {}; }
DWORD GetCurrentThreadId() { return {}; }
BOOL IsWow64Process(HANDLE process, PBOOL wow64) { return {}; }
LPWSTR GetCommandLineW() { return {}; }
LPSTR GetCommandLineA() { return {}; }
LPWSTR* CommandLineToArgvW(LPCWSTR commandLine, int* count) { return {}; }
int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR format, LPWSTR buffer, int size) { return {}; }
int GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR buffer, int size) { return {}; }
int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR format, LPWSTR buffer, int size) { return {}; }
int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR buffer, int size) { return {}; }
HMODULE ZelPlatformSystemModule(const std::u16string& name) { return {}; }
FARPROC ZelPlatformSystemProc(HMODULE module, LPCSTR name) { return {}; }
namespace crt {
int ArgumentCount() { return {}; }
const char* Argument(int index) { return {}; }
}  // namespace crt
