// Placeholder bodies, replaced one by one by the real ones; this file goes when it is empty.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#include "platform/win32.h"

HANDLE CreateFileA(LPCSTR fileName, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security, DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) { return {}; }
HANDLE CreateFileW(LPCWSTR fileName, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security, DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) { return {}; }
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD toRead, LPDWORD read, LPOVERLAPPED overlapped) { return {}; }
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD toWrite, LPDWORD written, LPOVERLAPPED overlapped) { return {}; }
DWORD GetFileSize(HANDLE file, LPDWORD sizeHigh) { return {}; }
DWORD SetFilePointer(HANDLE file, LONG distance, PLONG distanceHigh, DWORD method) { return {}; }
BOOL CloseHandle(HANDLE object) { return {}; }
BOOL LockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) { return {}; }
BOOL UnlockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) { return {}; }
BOOL GetBinaryTypeA(LPCSTR applicationName, LPDWORD binaryType) { return {}; }
BOOL GetBinaryTypeW(LPCWSTR applicationName, LPDWORD binaryType) { return {}; }
BOOL CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES security) { return {}; }
BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security) { return {}; }
BOOL CreateDirectoryExA(LPCSTR templateDirectory, LPCSTR path, LPSECURITY_ATTRIBUTES security) { return {}; }
BOOL CreateDirectoryExW(LPCWSTR templateDirectory, LPCWSTR path, LPSECURITY_ATTRIBUTES security) { return {}; }
BOOL RemoveDirectoryA(LPCSTR path) { return {}; }
BOOL RemoveDirectoryW(LPCWSTR path) { return {}; }
BOOL DeleteFileA(LPCSTR fileName) { return {}; }
BOOL DeleteFileW(LPCWSTR fileName) { return {}; }
BOOL MoveFileA(LPCSTR existingName, LPCSTR newName) { return {}; }
BOOL MoveFileW(LPCWSTR existingName, LPCWSTR newName) { return {}; }
BOOL CopyFileA(LPCSTR existingName, LPCSTR newName, BOOL failIfExists) { return {}; }
BOOL CopyFileW(LPCWSTR existingName, LPCWSTR newName, BOOL failIfExists) { return {}; }
DWORD GetFileAttributesA(LPCSTR fileName) { return {}; }
DWORD GetFileAttributesW(LPCWSTR fileName) { return {}; }
BOOL GetFileAttributesExA(LPCSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information) { return {}; }
BOOL GetFileAttributesExW(LPCWSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information) { return {}; }
BOOL SetFileAttributesA(LPCSTR fileName, DWORD attributes) { return {}; }
BOOL SetFileAttributesW(LPCWSTR fileName, DWORD attributes) { return {}; }
DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) { return {}; }
DWORD GetCurrentDirectoryW(DWORD size, LPWSTR buffer) { return {}; }
BOOL SetCurrentDirectoryA(LPCSTR path) { return {}; }
BOOL SetCurrentDirectoryW(LPCWSTR path) { return {}; }
HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findData) { return {}; }
HANDLE FindFirstFileW(LPCWSTR fileName, LPWIN32_FIND_DATAW findData) { return {}; }
BOOL FindNextFileA(HANDLE find, LPWIN32_FIND_DATAA findData) { return {}; }
BOOL FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW findData) { return {}; }
BOOL FindClose(HANDLE find) { return {}; }
bool ZelPlatformMaskMatches(const std::u16string& mask, const std::u16string& name) { return {}; }
UINT GetTempFileNameA(LPCSTR pathName, LPCSTR prefix, UINT unique, LPSTR tempFileName) { return {}; }
UINT GetTempFileNameW(LPCWSTR pathName, LPCWSTR prefix, UINT unique, LPWSTR tempFileName) { return {}; }
DWORD GetTempPathA(DWORD size, LPSTR buffer) { return {}; }
DWORD GetTempPathW(DWORD size, LPWSTR buffer) { return {}; }
DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD size) { return {}; }
DWORD GetShortPathNameW(LPCWSTR longPath, LPWSTR shortPath, DWORD size) { return {}; }
DWORD GetLongPathNameA(LPCSTR shortPath, LPSTR longPath, DWORD size) { return {}; }
DWORD GetLongPathNameW(LPCWSTR shortPath, LPWSTR longPath, DWORD size) { return {}; }
UINT GetDriveTypeA(LPCSTR rootPath) { return {}; }
UINT GetDriveTypeW(LPCWSTR rootPath) { return {}; }
BOOL GetDiskFreeSpaceA(LPCSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters, LPDWORD totalClusters) { return {}; }
BOOL GetDiskFreeSpaceW(LPCWSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters, LPDWORD totalClusters) { return {}; }
BOOL GetDiskFreeSpaceExA(LPCSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total, ULARGE_INTEGER* totalFree) { return {}; }
BOOL GetDiskFreeSpaceExW(LPCWSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total, ULARGE_INTEGER* totalFree) { return {}; }
BOOL GetVolumeInformationA(LPCSTR rootPath, LPSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber, LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPSTR fileSystemName, DWORD fileSystemNameSize) { return {}; }
BOOL GetVolumeInformationW(LPCWSTR rootPath, LPWSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber, LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPWSTR fileSystemName, DWORD fileSystemNameSize) { return {}; }
BOOL GetUserNameA(LPSTR buffer, LPDWORD size) { return {}; }
BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) { return {}; }
UINT GetWindowsDirectoryA(LPSTR buffer, UINT size) { return {}; }
UINT GetWindowsDirectoryW(LPWSTR buffer, UINT size) { return {}; }
UINT GetSystemDirectoryA(LPSTR buffer, UINT size) { return {}; }
UINT GetSystemDirectoryW(LPWSTR buffer, UINT size) { return {}; }

namespace crt {
int _access(const char* path, int mode) { return {}; }
int _waccess(LPCWSTR path, int mode) { return {}; }
int _chdir(const char* path) { return {}; }
int _wchdir(LPCWSTR path) { return {}; }
int _chmod(const char* path, int mode) { return {}; }
int _wchmod(LPCWSTR path, int mode) { return {}; }
int _creat(const char* path, int mode) { return {}; }
int _wcreat(LPCWSTR path, int mode) { return {}; }
FILE* fopen(const char* path, const char* mode) { return {}; }
FILE* _wfopen(LPCWSTR path, LPCWSTR mode) { return {}; }
FILE* freopen(const char* path, const char* mode, FILE* stream) { return {}; }
FILE* _wfreopen(LPCWSTR path, LPCWSTR mode, FILE* stream) { return {}; }
FILE* _fsopen(const char* path, const char* mode, int shareFlag) { return {}; }
FILE* _wfsopen(LPCWSTR path, LPCWSTR mode, int shareFlag) { return {}; }
char* _fullpath(char* buffer, const char* path, size_t maxLength) { return {}; }
LPWSTR _wfullpath(LPWSTR buffer, LPCWSTR path, size_t maxLength) { return {}; }
char* _getcwd(char* buffer, int maxLength) { return {}; }
LPWSTR _wgetcwd(LPWSTR buffer, int maxLength) { return {}; }
int _mkdir(const char* path) { return {}; }
int _wmkdir(LPCWSTR path) { return {}; }
int _open(const char* path, int flags, ...) { return {}; }
int _wopen(LPCWSTR path, int flags, ...) { return {}; }
int _sopen(const char* path, int flags, int shareFlag, ...) { return {}; }
int _wsopen(LPCWSTR path, int flags, int shareFlag, ...) { return {}; }
int remove(const char* path) { return {}; }
int _wremove(LPCWSTR path) { return {}; }
int rename(const char* oldPath, const char* newPath) { return {}; }
int _wrename(LPCWSTR oldPath, LPCWSTR newPath) { return {}; }
int _rmdir(const char* path) { return {}; }
int _wrmdir(LPCWSTR path) { return {}; }
void _searchenv(const char* fileName, const char* variable, char* buffer) {}
void _wsearchenv(LPCWSTR fileName, LPCWSTR variable, LPWSTR buffer) {}
int _stat(const char* path, struct ::_stat* record) { return {}; }
int _wstat(LPCWSTR path, struct ::_stat* record) { return {}; }
int _unlink(const char* path) { return {}; }
int _wunlink(LPCWSTR path) { return {}; }
intptr_t _findfirst(const char* mask, struct ::_finddata_t* record) { return {}; }
int _findnext(intptr_t handle, struct ::_finddata_t* record) { return {}; }
int _findclose(intptr_t handle) { return {}; }
int _read(int fd, void* buffer, unsigned int count) { return {}; }
int _write(int fd, const void* buffer, unsigned int count) { return {}; }
LONG _lseek(int fd, LONG offset, int origin) { return {}; }
int _close(int fd) { return {}; }
LONG _filelength(int fd) { return {}; }
}  // namespace crt
