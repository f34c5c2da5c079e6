// CZelIOFileDesc: a run-time file descriptor. Descriptor 0 is taken as "not open" like -1, so an
// object never closes standard input. The object never closes on its own, so copies may share it.
#include <zel/paths.h>
#include <zel/streams.h>

#include "platform/win32.h"

CZelIOFileDesc::CZelIOFileDesc(int order) : CZelIOBase(order), descriptor(-1) {}
CZelIOFileDesc::CZelIOFileDesc(const CZelIOFileDesc& other) = default;
CZelIOFileDesc& CZelIOFileDesc::operator=(const CZelIOFileDesc& other) = default;
CZelIOFileDesc::~CZelIOFileDesc() = default;

bool CZelIOFileDesc::ReadOpen(const char* path, int flags) {
    descriptor = path ? crt::_open(path, flags, 0) : -1;
    return descriptor > 0;
}

bool CZelIOFileDesc::ReadOpen(const WCHAR* path, int flags) {
    descriptor = path ? u__wopen(path, flags, 0) : -1;
    return descriptor > 0;
}

bool CZelIOFileDesc::WriteOpen(const char* path, int flags, int permission) {
    descriptor = path ? crt::_open(path, flags, permission) : -1;
    return descriptor > 0;
}

bool CZelIOFileDesc::WriteOpen(const WCHAR* path, int flags, int permission) {
    descriptor = path ? u__wopen(path, flags, permission) : -1;
    return descriptor > 0;
}

bool CZelIOFileDesc::Create(const char* path, int flags, int permission) {
    return WriteOpen(path, flags, permission);
}

bool CZelIOFileDesc::Create(const WCHAR* path, int flags, int permission) {
    return WriteOpen(path, flags, permission);
}

void CZelIOFileDesc::Attach(int fd) { descriptor = fd; }

void CZelIOFileDesc::Detach(bool close) {
    if (!close || descriptor <= 0) return;
    crt::_close(descriptor);
    descriptor = -1;
}

void CZelIOFileDesc::Close() { Detach(true); }

bool CZelIOFileDesc::IsOpened() { return descriptor > 0; }

bool CZelIOFileDesc::SeekFromBegin(LONG offset) { return crt::_lseek(descriptor, offset, SEEK_SET) != -1; }
bool CZelIOFileDesc::SeekFromCurrent(LONG offset) { return crt::_lseek(descriptor, offset, SEEK_CUR) != -1; }
bool CZelIOFileDesc::SeekFromEnd(LONG offset) { return crt::_lseek(descriptor, offset, SEEK_END) != -1; }

LONG CZelIOFileDesc::Tell() { return crt::_lseek(descriptor, 0, SEEK_CUR); }

LONG CZelIOFileDesc::GetFileSize() { return crt::_filelength(descriptor); }

// The run-time's -1 passes through as 0xFFFFFFFF: the typed reads take it as a wrong count.
DWORD CZelIOFileDesc::_Read(void* buffer, DWORD size) {
    return static_cast<DWORD>(crt::_read(descriptor, buffer, size));
}

DWORD CZelIOFileDesc::_Write(const void* buffer, DWORD size) {
    return static_cast<DWORD>(crt::_write(descriptor, buffer, size));
}
