// Placeholder bodies, replaced one by one by the real ones; this file goes when it is empty.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#include <zel/paths.h>

int u__waccess(const WCHAR* path, int mode) { return {}; }
int u__wchdir(const WCHAR* path) { return {}; }
int u__wchmod(const WCHAR* path, int mode) { return {}; }
int u__wcreat(const WCHAR* path, int mode) { return {}; }
FILE* u__wfopen(const WCHAR* path, const WCHAR* mode) { return {}; }
FILE* u__wfreopen(const WCHAR* path, const WCHAR* mode, FILE* stream) { return {}; }
FILE* u__wfsopen(const WCHAR* path, const WCHAR* mode, int shareFlag) { return {}; }
WCHAR* u__wfullpath(WCHAR* buffer, const WCHAR* path, size_t maxLength) { return {}; }
WCHAR* u__wgetcwd(WCHAR* buffer, int maxLength) { return {}; }
int u__wmkdir(const WCHAR* path) { return {}; }
int u__wopen(const WCHAR* path, int flags, int permission) { return {}; }
int u__wremove(const WCHAR* path) { return {}; }
int u__wrename(const WCHAR* oldPath, const WCHAR* newPath) { return {}; }
int u__wrmdir(const WCHAR* path) { return {}; }
void u__wsearchenv(const WCHAR* fileName, const WCHAR* variable, WCHAR* buffer) {}
int u__wsopen(const WCHAR* path, int flags, int shareFlag, int permission) { return {}; }
int u__wstat(const WCHAR* path, struct _stat* record) { return {}; }
int u__wunlink(const WCHAR* path) { return {}; }
intptr_t u__wfindfirst(const WCHAR* path, struct _finddata_t* record) { return {}; }
int u__wfindnext(intptr_t handle, struct _finddata_t* record) { return {}; }
BOOL ZelCreateDirectory(const WCHAR* path, LPSECURITY_ATTRIBUTES security) { return {}; }
BOOL ZelCreateDirectoryEx(const WCHAR* templateDirectory, const WCHAR* path, LPSECURITY_ATTRIBUTES security) { return {}; }
HANDLE ZelCreateFile(const WCHAR* path, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security, DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) { return {}; }
BOOL ZelDeleteFile(const WCHAR* path) { return {}; }
HWND ZelFindWindow(const WCHAR* className, const WCHAR* windowName) { return {}; }
BOOL ZelGetBinaryType(const WCHAR* path, LPDWORD binaryType) { return {}; }
int ZelGetClassName(HWND window, WCHAR* buffer, int size) { return {}; }
BOOL ZelGetCurrentDirectory(DWORD size, WCHAR* buffer) { return {}; }
BOOL ZelGetDiskFreeSpace(const WCHAR* root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters, LPDWORD totalClusters) { return {}; }
BOOL ZelGetDiskFreeSpaceEx(const WCHAR* directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total, ULARGE_INTEGER* totalFree) { return {}; }
UINT ZelGetDriveType(const WCHAR* root) { return {}; }
DWORD ZelGetFileAttributes(const WCHAR* path) { return {}; }
BOOL ZelGetFileAttributesEx(const WCHAR* path, GET_FILEEX_INFO_LEVELS level, LPVOID information) { return {}; }
DWORD ZelGetModuleFileName(HMODULE module, WCHAR* buffer, DWORD size) { return {}; }
HMODULE ZelGetModuleHandle(const WCHAR* name) { return {}; }
DWORD ZelGetShortPathName(const WCHAR* path, WCHAR* buffer, DWORD size) { return {}; }
UINT ZelGetTempFileName(const WCHAR* directory, const WCHAR* prefix, UINT number, WCHAR* buffer) { return {}; }
DWORD ZelGetTempPath(DWORD size, WCHAR* buffer) { return {}; }
BOOL ZelGetUserName(WCHAR* buffer, LPDWORD size) { return {}; }
UINT ZelGetWindowsDirectory(WCHAR* buffer, UINT size) { return {}; }
HMODULE ZelLoadLibrary(const WCHAR* name) { return {}; }
HMODULE ZelLoadLibraryEx(const WCHAR* name, HANDLE file, DWORD flags) { return {}; }
BOOL ZelMoveFile(const WCHAR* oldPath, const WCHAR* newPath) { return {}; }
BOOL ZelRemoveDirectory(const WCHAR* path) { return {}; }
BOOL ZelSetCurrentDirectory(const WCHAR* path) { return {}; }
BOOL ZelSetFileAttributes(const WCHAR* path, DWORD attributes) { return {}; }
BOOL ZelLockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) { return {}; }
UINT ZelDragQueryFile(HDROP drop, UINT index, WCHAR* buffer, UINT size) { return {}; }
HINSTANCE ZelShellExecute(HWND owner, const WCHAR* operation, const WCHAR* file, const WCHAR* parameters, const WCHAR* directory, int show) { return {}; }
BOOL ZelSHGetPathFromIDList(LPCITEMIDLIST list, WCHAR* buffer) { return {}; }
HANDLE ZelFindFirstFile(const WCHAR* path, LPWIN32_FIND_DATAA record) { return {}; }
BOOL ZelCopyFileA(const WCHAR* newPath, const WCHAR* existingPath) { return {}; }
BOOL ZelGetClassInfo(HINSTANCE instance, const WCHAR* className, LPWNDCLASSA record) { return {}; }
BOOL ZelGetClassInfoEx(HINSTANCE instance, const WCHAR* className, LPWNDCLASSEXA record) { return {}; }
UINT ZelGetSystemDirectory(WCHAR* buffer, UINT size) { return {}; }
HANDLE ZelFindFirstFileW(const WCHAR* path, LPWIN32_FIND_DATAW record) { return {}; }
BOOL ZelFindNextFileW(HANDLE find, LPWIN32_FIND_DATAW record) { return {}; }
HRESULT ZelSHGetDataFromIDList(IShellFolder* folder, LPCITEMIDLIST list, int format, void* record, int size) { return {}; }
DWORD_PTR ZelSHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFOW* record, UINT size, UINT flags) { return {}; }
DWORD ZelGetLongPathName(const WCHAR* path, WCHAR* buffer, DWORD size) { return {}; }
BOOL ZelSHGetSpecialFolderPath(HWND owner, WCHAR* buffer, int folder, BOOL create) { return {}; }
BOOL ZelSHGetSettings(LPSHELLFLAGSTATE record, DWORD mask) { return {}; }
HRESULT ZelSHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path) { return {}; }
HRESULT ZelSHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PIDLIST_ABSOLUTE* list) { return {}; }
int ZelSHFileOperation(LPSHFILEOPSTRUCTW operation) { return {}; }
BOOL ZelCopyFile(const WCHAR* destination, const WCHAR* source) { return {}; }
DWORD ZelExistDir(const WCHAR* path) { return {}; }
BOOL ZelFileExist(const WCHAR* path) { return {}; }
BOOL ZelCheckRemovableDrive(const WCHAR* path) { return {}; }
