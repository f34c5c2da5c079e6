// The system calls that a program needs to use and release what the interface hands it: file and
// search handles, loaded modules, registry keys of the system registry, descriptors of the
// run-time and the memory of the shell's calls, and the last error. They carry their Win32 names,
// arguments and results. Here the library is their only implementation, so a handle that a Zel call
// gives goes back through these calls and through nothing else; on Windows the handles are the
// system's, and most of these names bind to the system's own calls.
//
// Paths are in the Windows form, as everywhere in the interface; failures set the last error.
#ifndef ZEL_PLATFORM_H
#define ZEL_PLATFORM_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// The last error of the calling thread

ZEL_SYSTEM_API DWORD GetLastError() ZEL_SYSTEM_CALL(GetLastError);
ZEL_SYSTEM_API void SetLastError(DWORD code) ZEL_SYSTEM_CALL(SetLastError);

// ---------------------------------------------------------------------------------------------
// Files: what CreateFile and ZelCreateFile open.

ZEL_SYSTEM_API HANDLE CreateFileA(LPCSTR fileName, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                           DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) ZEL_SYSTEM_CALL(CreateFileA);
ZEL_SYSTEM_API HANDLE CreateFileW(LPCWSTR fileName, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                           DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) ZEL_SYSTEM_CALL(CreateFileW);
ZEL_SYSTEM_API BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD toRead, LPDWORD read, LPOVERLAPPED overlapped)
    ZEL_SYSTEM_CALL(ReadFile);
ZEL_SYSTEM_API BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD toWrite, LPDWORD written, LPOVERLAPPED overlapped)
    ZEL_SYSTEM_CALL(WriteFile);
ZEL_SYSTEM_API DWORD GetFileSize(HANDLE file, LPDWORD sizeHigh) ZEL_SYSTEM_CALL(GetFileSize);
ZEL_SYSTEM_API DWORD SetFilePointer(HANDLE file, LONG distance, PLONG distanceHigh, DWORD method)
    ZEL_SYSTEM_CALL(SetFilePointer);
// What LockFile and ZelLockFile lock, UnlockFile releases.
ZEL_SYSTEM_API BOOL LockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh)
    ZEL_SYSTEM_CALL(LockFile);
ZEL_SYSTEM_API BOOL UnlockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh)
    ZEL_SYSTEM_CALL(UnlockFile);
ZEL_SYSTEM_API BOOL CloseHandle(HANDLE object) ZEL_SYSTEM_CALL(CloseHandle);

// ---------------------------------------------------------------------------------------------
// Searches that ZelFindFirstFile and ZelFindFirstFileW start, ended by FindClose (CloseHandle
// takes files only). The end of a search gives ERROR_NO_MORE_FILES.

ZEL_SYSTEM_API BOOL FindNextFileA(HANDLE find, LPWIN32_FIND_DATAA findData) ZEL_SYSTEM_CALL(FindNextFileA);
ZEL_SYSTEM_API BOOL FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW findData) ZEL_SYSTEM_CALL(FindNextFileW);
ZEL_SYSTEM_API BOOL FindClose(HANDLE find) ZEL_SYSTEM_CALL(FindClose);

// ---------------------------------------------------------------------------------------------
// The run-time's searches and descriptors: what u__wfindfirst starts and what u__wopen,
// u__wsopen and u__wcreat open. Origins of _lseek are 0, 1 and 2 as SEEK_SET, SEEK_CUR and
// SEEK_END; errors are given in errno.

#if !defined(_WIN32)  // Windows: the run-time's own, from <io.h>
ZEL_API int _findnext(intptr_t handle, struct _finddata_t* record);
ZEL_API int _findclose(intptr_t handle);
ZEL_API int _read(int fd, void* buffer, unsigned int count);
ZEL_API int _write(int fd, const void* buffer, unsigned int count);
ZEL_API LONG _lseek(int fd, LONG offset, int origin);
ZEL_API LONG _filelength(int fd);
ZEL_API int _close(int fd);
#endif

// ---------------------------------------------------------------------------------------------
// Modules that ZelLoadLibrary, ZelLoadLibraryEx, ZelLoadLibraryModulePath and ZelLoadResource
// load. Each load counts: a module stays until FreeLibrary has answered every load.

ZEL_SYSTEM_API FARPROC GetProcAddress(HMODULE module, LPCSTR procName) ZEL_SYSTEM_CALL(GetProcAddress);
ZEL_SYSTEM_API HMODULE GetModuleHandleA(LPCSTR moduleName) ZEL_SYSTEM_CALL(GetModuleHandleA);
ZEL_SYSTEM_API HMODULE GetModuleHandleW(LPCWSTR moduleName) ZEL_SYSTEM_CALL(GetModuleHandleW);
ZEL_API BOOL FreeLibrary(HMODULE module);

// ---------------------------------------------------------------------------------------------
// Keys of the system registry that the ZelReg calls open or create with useVirtual 0. Keys of the
// process's own tree never come here. Statuses are Win32's: ERROR_MORE_DATA, ERROR_NO_MORE_ITEMS ...

ZEL_SYSTEM_API LONG RegQueryValueExA(HKEY key, LPCSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data,
                              LPDWORD dataSize) ZEL_SYSTEM_CALL(RegQueryValueExA);
ZEL_SYSTEM_API LONG RegQueryValueExW(HKEY key, LPCWSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data,
                              LPDWORD dataSize) ZEL_SYSTEM_CALL(RegQueryValueExW);
ZEL_SYSTEM_API LONG RegEnumKeyA(HKEY key, DWORD index, LPSTR name, DWORD nameSize) ZEL_SYSTEM_CALL(RegEnumKeyA);
ZEL_SYSTEM_API LONG RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize) ZEL_SYSTEM_CALL(RegEnumKeyW);
ZEL_SYSTEM_API LONG RegEnumValueA(HKEY key, DWORD index, LPSTR valueName, LPDWORD valueNameSize, LPDWORD reserved,
                           LPDWORD type, LPBYTE data, LPDWORD dataSize) ZEL_SYSTEM_CALL(RegEnumValueA);
ZEL_SYSTEM_API LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR valueName, LPDWORD valueNameSize, LPDWORD reserved,
                           LPDWORD type, LPBYTE data, LPDWORD dataSize) ZEL_SYSTEM_CALL(RegEnumValueW);
ZEL_SYSTEM_API LONG RegQueryInfoKeyA(HKEY key, LPSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                              LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                              LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime)
    ZEL_SYSTEM_CALL(RegQueryInfoKeyA);
ZEL_SYSTEM_API LONG RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                              LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                              LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime)
    ZEL_SYSTEM_CALL(RegQueryInfoKeyW);
ZEL_SYSTEM_API LONG RegCloseKey(HKEY key) ZEL_SYSTEM_CALL(RegCloseKey);

// ---------------------------------------------------------------------------------------------
// Memory of the shell's calls: the path of ZelSHGetKnownFolderPath and the item list of
// ZelSHGetKnownFolderIDList go back through CoTaskMemFree or the Free of SHGetMalloc's allocator.
// SHGetDesktopFolder gives the folder that ZelSHGetDataFromIDList takes. Both objects live as long
// as the library; Release leaves them.

ZEL_SYSTEM_API void CoTaskMemFree(void* memory) ZEL_SYSTEM_CALL(CoTaskMemFree);
ZEL_SYSTEM_API HRESULT SHGetMalloc(IMalloc** allocator) ZEL_SYSTEM_CALL(SHGetMalloc);
ZEL_SYSTEM_API HRESULT SHGetDesktopFolder(IShellFolder** folder) ZEL_SYSTEM_CALL(SHGetDesktopFolder);

#endif  // ZEL_PLATFORM_H
