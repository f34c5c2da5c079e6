// CZelIOBase: integers, strings and blocks over the two primitives of a back end.
#include <zel/streams.h>

#include "streams/byte_order.h"

using zelstreams::LoadValue;
using zelstreams::StoreValue;

namespace {

// One _Read of the full width; the caller's variable changes only when all of it came.
template <typename T>
bool GetValue(CZelIOBase& io, T& value) {
    unsigned char bytes[sizeof(T)] = {};
    if (io.ReadBlock(bytes, sizeof(T)) != sizeof(T)) return false;
    value = static_cast<T>(LoadValue(bytes, sizeof(T), io.byteOrder));
    return true;
}

template <typename T>
bool PutValue(CZelIOBase& io, T value) {
    unsigned char bytes[sizeof(T)];
    StoreValue(static_cast<uint64_t>(value), bytes, sizeof(T), io.byteOrder);
    return io.WriteBlock(bytes, sizeof(T)) == sizeof(T);
}

// Strings move one unit per call so that a read stops right behind the terminator.
template <typename Unit>
DWORD ReadString(CZelIOBase& io, Unit* buffer, int length) {
    if (!buffer || length == 0) return 0;
    DWORD count = 0;
    Unit unit;
    if (length < 0) {
        while (GetValue(io, unit) && unit != 0) buffer[count++] = unit;
        buffer[count] = 0;
        return count;
    }
    while (count < static_cast<DWORD>(length) && GetValue(io, unit)) buffer[count++] = unit;
    return count;
}

template <typename Unit>
DWORD WriteString(CZelIOBase& io, const Unit* buffer, int length) {
    if (!buffer || length == 0) return 0;
    DWORD count = 0;
    if (length < 0) {
        for (; buffer[count] != 0; ++count)
            if (!PutValue(io, buffer[count])) return count;
        PutValue(io, Unit(0));
        return count;
    }
    while (count < static_cast<DWORD>(length) && PutValue(io, buffer[count])) ++count;
    return count;
}

}  // namespace

CZelIOBase::CZelIOBase(int order) : byteOrder(order) {}
CZelIOBase::CZelIOBase(const CZelIOBase& other) = default;
CZelIOBase& CZelIOBase::operator=(const CZelIOBase& other) = default;
CZelIOBase::~CZelIOBase() = default;

void CZelIOBase::SetByteOrder(int order) { byteOrder = order; }

DWORD CZelIOBase::ReadBlock(void* buffer, DWORD size) { return _Read(buffer, size); }
DWORD CZelIOBase::WriteBlock(const void* buffer, DWORD size) { return _Write(buffer, size); }

bool CZelIOBase::GetInt8(signed char& value) { return GetValue(*this, value); }
bool CZelIOBase::GetUInt8(unsigned char& value) { return GetValue(*this, value); }
bool CZelIOBase::GetInt16(short& value) { return GetValue(*this, value); }
bool CZelIOBase::GetUInt16(unsigned short& value) { return GetValue(*this, value); }
bool CZelIOBase::GetInt32(int& value) { return GetValue(*this, value); }
bool CZelIOBase::GetUInt32(unsigned int& value) { return GetValue(*this, value); }
bool CZelIOBase::GetInt64(long long& value) { return GetValue(*this, value); }
bool CZelIOBase::GetUInt64(unsigned long long& value) { return GetValue(*this, value); }

// The stream's value is 32 bits wide while long is 64 bits here: read it as int32_t so that only
// 4 bytes come off the stream, then widen it with its sign into the caller's long.
bool CZelIOBase::GetInt32(long& value) {
    int32_t narrow;
    if (!GetValue(*this, narrow)) return false;
    value = narrow;
    return true;
}

// Likewise for the unsigned form: 4 bytes, zero-extended.
bool CZelIOBase::GetUInt32(unsigned long& value) {
    uint32_t narrow;
    if (!GetValue(*this, narrow)) return false;
    value = narrow;
    return true;
}

bool CZelIOBase::PutInt8(signed char value) { return PutValue(*this, value); }
bool CZelIOBase::PutUInt8(unsigned char value) { return PutValue(*this, value); }
bool CZelIOBase::PutInt16(short value) { return PutValue(*this, value); }
bool CZelIOBase::PutUInt16(unsigned short value) { return PutValue(*this, value); }
bool CZelIOBase::PutInt32(int value) { return PutValue(*this, value); }
bool CZelIOBase::PutUInt32(unsigned int value) { return PutValue(*this, value); }
bool CZelIOBase::PutInt64(long long value) { return PutValue(*this, value); }
bool CZelIOBase::PutUInt64(unsigned long long value) { return PutValue(*this, value); }

DWORD CZelIOBase::ReadStringA(char* buffer, int length) { return ReadString(*this, buffer, length); }
DWORD CZelIOBase::ReadStringW(WCHAR* buffer, int length) { return ReadString(*this, buffer, length); }
DWORD CZelIOBase::WriteStringA(const char* buffer, int length) { return WriteString(*this, buffer, length); }
DWORD CZelIOBase::WriteStringW(const WCHAR* buffer, int length) { return WriteString(*this, buffer, length); }
