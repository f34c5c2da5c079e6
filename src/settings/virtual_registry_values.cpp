// Values of the tree: the default text of a key and its named, typed values.
#include <algorithm>
#include <cstring>

#include "settings/virtual_registry.h"
#include "strings/wstr.h"

namespace {

// Zero-terminated 16-bit text at an address that need not be aligned for 16-bit units.
std::u16string TextAt(const BYTE* data) {
    std::u16string text;
    if (!data) return text;
    for (;; data += sizeof(WCHAR)) {
        WCHAR unit;
        std::memcpy(&unit, data, sizeof unit);
        if (!unit) return text;
        text.push_back(unit);
    }
}

auto FindValue(VirtualRegKey* key, const WCHAR* name) {
    return std::find_if(key->values.begin(), key->values.end(),
                        [name](const VirtualRegValue& value) { return value.name == name; });
}

// The default text with its terminator into a buffer of capacity units.
int CopyDefault(const VirtualRegKey* key, WCHAR* buffer, DWORD capacity, LONG* length) {
    const std::u16string& text = key->defaultValue;
    if (!buffer || text.size() >= capacity) return 0;
    std::copy(text.c_str(), text.c_str() + text.size() + 1, buffer);
    if (length) *length = static_cast<LONG>(text.size());
    return text.empty() ? 0 : 1;
}

// How many bytes a read of the value writes at least; REG_SZ adds a zero unit only where there is room.
size_t BytesCopiedOut(const VirtualRegValue& value) {
    switch (value.type) {
    case REG_DWORD:
        return std::min<size_t>(value.data.size(), sizeof(DWORD));
    case REG_SZ:
        return value.data.size() / sizeof(WCHAR) * sizeof(WCHAR);
    case REG_BINARY:
        return value.data.size();
    default:
        return 0;
    }
}

void CopyOut(const VirtualRegValue& value, BYTE* data, DWORD room) {
    const size_t bytes = BytesCopiedOut(value);
    if (value.type != REG_SZ) {
        if (bytes) std::memcpy(data, value.data.data(), bytes);
        return;
    }
    // The units up to the first zero unit, zeros for the rest, and one more zero unit.
    const size_t units = bytes / sizeof(WCHAR);
    size_t kept = 0;
    while (kept < units && (value.data[kept * 2] || value.data[kept * 2 + 1])) ++kept;
    std::memcpy(data, value.data.data(), kept * sizeof(WCHAR));
    std::memset(data + kept * sizeof(WCHAR), 0, (units - kept) * sizeof(WCHAR));
    if (room >= bytes + sizeof(WCHAR)) std::memset(data + bytes, 0, sizeof(WCHAR));
}

// A blank record takes all; a filled one takes new data of its own type only.
int SetValueRecord(VirtualRegValue& record, const WCHAR* name, DWORD type, VirtualRegBytes&& data) {
    if (record.name.empty()) {
        record.name = name;
        record.type = type;
    } else if (record.type != type) {
        return 0;
    }
    record.data = std::move(data);
    return 1;
}

}  // namespace

int VirtualRegistry::QueryDefault(HKEY handle, const WCHAR* path, WCHAR* buffer, DWORD capacity, LONG* length) {
    VirtualRegKey* start = ResolveHandle(handle);
    if (!start) return 0;
    VirtualRegKey* key = nullptr;
    if (!FindKey(start, path, &key)) return 0;
    return CopyDefault(key, buffer, capacity, length);
}

int VirtualRegistry::SetDefault(HKEY handle, const WCHAR* path, const WCHAR* text) {
    VirtualRegKey* start = ResolveHandle(handle);
    if (!start) return 0;
    VirtualRegKey* key = nullptr;
    if (!FindKey(start, path, &key)) return 0;
    key->defaultValue = text ? text : u"";
    return 1;
}

int VirtualRegistry::SetValueEx(HKEY handle, const WCHAR* name, DWORD type, const BYTE* data, DWORD size) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key) return 0;
    if (!name) {
        key->defaultValue = TextAt(data);
        return 1;
    }
    if (!data && size > 0) return 0;
    VirtualRegBytes bytes(data, data ? size : 0);
    auto record = FindValue(key, name);
    if (record == key->values.end()) {
        // A new record is filled before it is appended, so that running out of memory on the
        // way leaves the key as it was.
        VirtualRegValue blank;
        SetValueRecord(blank, name, type, std::move(bytes));
        // One value, then room for four: most keys hold one or a few, and each move of the array
        // costs.
        if (!key->values.empty() && key->values.size() == key->values.capacity())
            key->values.reserve(std::max<size_t>(4, key->values.size() * 2));
        key->values.push_back(std::move(blank));
        ++key->valueCount;
        key->maxValueNameLength = std::max(key->maxValueNameLength, static_cast<DWORD>(wcslen(name)));
    } else if (!SetValueRecord(*record, name, type, std::move(bytes))) {
        return 0;
    }
    key->maxValueDataLength = std::max(key->maxValueDataLength, size);
    return 1;
}

int VirtualRegistry::QueryValueEx(HKEY handle, const WCHAR* name, DWORD* type, BYTE* data, DWORD* size) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key) return 0;
    if (!name) {
        if (type) *type = REG_SZ;
        if (!data || !size) return 0;
        LONG length = 0;
        const int result = CopyDefault(key, reinterpret_cast<WCHAR*>(data), *size / sizeof(WCHAR), &length);
        if (result) *size = static_cast<DWORD>(length);
        return result;
    }
    auto record = FindValue(key, name);
    if (record == key->values.end()) return 0;
    if (type) *type = record->type;
    if (!data) {
        if (size) *size = static_cast<DWORD>(record->data.size());
        return 1;
    }
    if (!size) return 0;
    const DWORD room = *size;
    *size = static_cast<DWORD>(record->data.size());
    if (BytesCopiedOut(*record) > room) return 0;
    CopyOut(*record, data, room);
    return 1;
}

int VirtualRegistry::EnumValue(HKEY handle, DWORD index, WCHAR* name, DWORD capacity, DWORD* type, BYTE* data,
                               DWORD* dataSize) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key || index >= key->values.size()) return 0;
    const VirtualRegValue& record = key->values[index];
    if (type) *type = record.type;
    if (!name || record.name.size() > capacity) return 0;
    std::copy(record.name.c_str(), record.name.c_str() + record.name.size() + 1, name);
    if (data && !dataSize) return 0;
    if (dataSize) {
        if (record.data.size() > *dataSize) return 0;
        *dataSize = static_cast<DWORD>(record.data.size());
    }
    if (data && !record.data.empty()) std::memcpy(data, record.data.data(), record.data.size());
    return 1;
}

int VirtualRegistry::DeleteValue(HKEY handle, const WCHAR* name) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key || !name) return 0;
    auto record = FindValue(key, name);
    if (record == key->values.end()) return 0;
    key->values.erase(record);
    --key->valueCount;
    return 1;
}
