// CZelIOMemory: a cursor over a caller's block. The block has no known end; without a block,
// reads, writes, peeks and seeks do nothing.
#include <zel/streams.h>

#include <cstddef>
#include <cstring>

#include "streams/byte_order.h"

namespace {

template <typename T>
T Peek(const BYTE* cursor, int byteOrder) {
    if (!cursor) return 0;
    return static_cast<T>(zelstreams::LoadValue(cursor, sizeof(T), byteOrder));
}

}  // namespace

CZelIOMemory::CZelIOMemory(int order) : CZelIOBase(order), base(nullptr), cursor(nullptr), readOnly(1) {}

CZelIOMemory::CZelIOMemory(const void* block, int order) : CZelIOBase(order) { Attach(block); }

CZelIOMemory::CZelIOMemory(void* block, int order) : CZelIOBase(order) { Attach(block); }

CZelIOMemory::CZelIOMemory(CZelIOMemory& other)
    : CZelIOBase(other), base(other.base), cursor(other.cursor), readOnly(other.readOnly) {}

CZelIOMemory& CZelIOMemory::operator=(const CZelIOMemory& other) {
    CZelIOBase::operator=(other);
    base = other.base;
    cursor = other.cursor;
    readOnly = other.readOnly;
    return *this;
}

CZelIOMemory::~CZelIOMemory() { Detach(); }

// The block is never written through a read-only binding, so dropping const here is safe.
void CZelIOMemory::Attach(const void* block) {
    base = cursor = static_cast<BYTE*>(const_cast<void*>(block));
    readOnly = 1;
}

void CZelIOMemory::Attach(void* block) {
    base = cursor = static_cast<BYTE*>(block);
    readOnly = 0;
}

void CZelIOMemory::Detach() {
    base = cursor = nullptr;
    readOnly = 1;
}

BYTE* CZelIOMemory::GetPtr() { return cursor; }

signed char CZelIOMemory::PeekInt8() { return Peek<signed char>(cursor, byteOrder); }
short CZelIOMemory::PeekInt16() { return Peek<short>(cursor, byteOrder); }
int CZelIOMemory::PeekInt32() { return Peek<int>(cursor, byteOrder); }
long long CZelIOMemory::PeekInt64() { return Peek<long long>(cursor, byteOrder); }
unsigned char CZelIOMemory::PeekUInt8() { return Peek<unsigned char>(cursor, byteOrder); }
unsigned short CZelIOMemory::PeekUInt16() { return Peek<unsigned short>(cursor, byteOrder); }
unsigned int CZelIOMemory::PeekUInt32() { return Peek<unsigned int>(cursor, byteOrder); }
unsigned long long CZelIOMemory::PeekUInt64() { return Peek<unsigned long long>(cursor, byteOrder); }

bool CZelIOMemory::SeekFromBegin(LONG offset) {
    if (offset < 0 || !base) return false;
    cursor = base + offset;
    return true;
}

bool CZelIOMemory::SeekFromCurrent(LONG offset) {
    if (!base || (cursor - base) + static_cast<ptrdiff_t>(offset) < 0) return false;
    cursor += offset;
    return true;
}

DWORD CZelIOMemory::_Read(void* buffer, DWORD size) {
    if (!cursor || !buffer || size == 0) return 0;
    std::memcpy(buffer, cursor, size);
    cursor += size;
    return size;
}

DWORD CZelIOMemory::_Write(const void* buffer, DWORD size) {
    if (readOnly || !cursor || !buffer || size == 0) return 0;
    std::memcpy(cursor, buffer, size);
    cursor += size;
    return size;
}
