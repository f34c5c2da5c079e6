// CZelIOFilePtr: a stdio stream. The object never closes the stream on its own, so copies may
// share it; without a stream every call gives its failure result.
#include <zel/paths.h>
#include <zel/streams.h>

#include <climits>
#include <cstdio>

#include "platform/win32.h"

CZelIOFilePtr::CZelIOFilePtr(int order) : CZelIOBase(order), stream(nullptr) {}
CZelIOFilePtr::CZelIOFilePtr(const CZelIOFilePtr& other) = default;
CZelIOFilePtr& CZelIOFilePtr::operator=(const CZelIOFilePtr& other) = default;
CZelIOFilePtr::~CZelIOFilePtr() = default;

// The 8-bit path goes to the system as it is, with no code page or drive translation.
bool CZelIOFilePtr::Open(const char* path, const char* mode) {
    stream = path && mode ? std::fopen(path, mode) : nullptr;
    return stream != nullptr;
}

bool CZelIOFilePtr::Open(const WCHAR* path, const WCHAR* mode) {
    stream = path && mode ? u__wfopen(path, mode) : nullptr;
    return stream != nullptr;
}

bool CZelIOFilePtr::Create(const char* path, const char* mode) { return Open(path, mode); }
bool CZelIOFilePtr::Create(const WCHAR* path, const WCHAR* mode) { return Open(path, mode); }

void CZelIOFilePtr::Attach(FILE* file) { stream = file; }

void CZelIOFilePtr::Detach(bool close) {
    if (!close || !stream) return;
    std::fclose(stream);
    stream = nullptr;
}

void CZelIOFilePtr::Close() { Detach(true); }

bool CZelIOFilePtr::IsOpened() { return stream != nullptr; }

bool CZelIOFilePtr::SeekFromBegin(LONG offset) { return stream && std::fseek(stream, offset, SEEK_SET) == 0; }
bool CZelIOFilePtr::SeekFromCurrent(LONG offset) { return stream && std::fseek(stream, offset, SEEK_CUR) == 0; }
bool CZelIOFilePtr::SeekFromEnd(LONG offset) { return stream && std::fseek(stream, offset, SEEK_END) == 0; }

// A position beyond what a LONG holds is reported as the failure -1, never cut.
LONG CZelIOFilePtr::Tell() {
    if (!stream) return -1;
    long position = std::ftell(stream);
    return position > INT32_MAX ? -1 : static_cast<LONG>(position);
}

LONG CZelIOFilePtr::GetFileSize() { return stream ? crt::_filelength(fileno(stream)) : -1; }

DWORD CZelIOFilePtr::_Read(void* buffer, DWORD size) {
    if (!stream || !buffer) return 0;
    return static_cast<DWORD>(std::fread(buffer, 1, size, stream));
}

DWORD CZelIOFilePtr::_Write(const void* buffer, DWORD size) {
    if (!stream || !buffer) return 0;
    return static_cast<DWORD>(std::fwrite(buffer, 1, size, stream));
}
