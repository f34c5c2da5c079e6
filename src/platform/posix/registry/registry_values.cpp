// Reading, writing, listing and deleting the values of registry keys.
#include <algorithm>
#include <cstring>

#include "platform/posix/registry/registry_handles.h"
#include "platform/posix/registry/registry_store.h"
#include "platform/win32.h"
#include "strings/wstr.h"

using namespace zelreg;

namespace {

std::u16string_view NameOf(LPCWSTR name) { return name ? std::u16string_view(name) : std::u16string_view(); }

}  // namespace

LONG RegQueryValueExW(HKEY key, LPCWSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD dataSize) {
    if (reserved || (data && !dataSize)) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    LONG status = CheckHandle(key, KEY_QUERY_VALUE, ref);
    if (status != ERROR_SUCCESS) return status;
    return WithHive(ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        KeyRow node;
        LONG found = ResolveRef(db, ref, node);
        if (found != ERROR_SUCCESS) return found;
        RegValue value;
        if (!db.FindValue(node, NameOf(valueName), &value)) return ERROR_FILE_NOT_FOUND;
        if (type) *type = value.type;
        if (data) {
            if (value.data.size() > *dataSize) {
                *dataSize = static_cast<DWORD>(value.data.size());
                return ERROR_MORE_DATA;
            }
            std::copy(value.data.begin(), value.data.end(), data);
        }
        if (dataSize) *dataSize = static_cast<DWORD>(value.data.size());
        return ERROR_SUCCESS;
    });
}

LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR valueName, LPDWORD valueNameSize, LPDWORD reserved, LPDWORD type,
                   LPBYTE data, LPDWORD dataSize) {
    if (reserved || !valueName || !valueNameSize || (data && !dataSize)) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    LONG status = CheckHandle(key, KEY_QUERY_VALUE, ref);
    if (status != ERROR_SUCCESS) return status;
    return WithHive(ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        KeyRow node;
        LONG found = ResolveRef(db, ref, node);
        if (found != ERROR_SUCCESS) return found;
        RegValue value;
        if (!db.ValueAt(node, index, value)) return ERROR_NO_MORE_ITEMS;
        // When either buffer is short, neither is written; the type and the size of the data are.
        if (type) *type = value.type;
        if (value.name.size() + 1 > *valueNameSize || (data && value.data.size() > *dataSize)) {
            if (dataSize) *dataSize = static_cast<DWORD>(value.data.size());
            return ERROR_MORE_DATA;
        }
        std::copy(value.name.begin(), value.name.end(), valueName);
        valueName[value.name.size()] = 0;
        *valueNameSize = static_cast<DWORD>(value.name.size());
        if (data) std::copy(value.data.begin(), value.data.end(), data);
        if (dataSize) *dataSize = static_cast<DWORD>(value.data.size());
        return ERROR_SUCCESS;
    });
}

LONG RegSetValueExW(HKEY key, LPCWSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize) {
    (void)reserved;
    if (!data && dataSize) return ERROR_NOACCESS;
    std::u16string_view name = NameOf(valueName);
    if (name.size() > kMaxValueNameLength) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    if (!LookUpHandle(key, ref)) return ERROR_INVALID_HANDLE;
    if (!(ref.access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
    return WithHive(ref.hive, WriteTo(ref.isVolatile), [&](HiveDatabase& db) -> LONG {
        KeyRow node;
        LONG status = ResolveRef(db, ref, node);
        if (status != ERROR_SUCCESS) return status;
        db.SetValue(node, name, type, data, dataSize);
        return ERROR_SUCCESS;
    });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR valueName) {
    std::u16string_view name = NameOf(valueName);
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    LONG status = CheckHandle(key, KEY_SET_VALUE, ref);
    if (status != ERROR_SUCCESS) return status;
    return WithHive(ref.hive, WriteTo(ref.isVolatile), [&](HiveDatabase& db) -> LONG {
        KeyRow node;
        LONG found = ResolveRef(db, ref, node);
        if (found != ERROR_SUCCESS) return found;
        if (!db.DeleteValue(node, name)) return ERROR_FILE_NOT_FOUND;
        db.Touch(node.id, node.isVolatile);
        return ERROR_SUCCESS;
    });
}

// The old calls on a key's default value, the unnamed one, which the system treats as text.

LONG RegQueryValueW(HKEY key, LPCWSTR subKey, LPWSTR data, PLONG dataSize) {
    if (data && !dataSize) return ERROR_INVALID_PARAMETER;
    HKEY target = key;
    if (subKey && *subKey) {
        LONG status = RegOpenKeyExW(key, subKey, 0, KEY_QUERY_VALUE, &target);
        if (status != ERROR_SUCCESS) return status;
    }
    DWORD size = dataSize && *dataSize > 0 ? static_cast<DWORD>(*dataSize) : 0;
    LONG status = RegQueryValueExW(target, nullptr, nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size);
    if (status == ERROR_FILE_NOT_FOUND) {
        // A key without a default value reads as the empty text.
        size = sizeof(WCHAR);
        if (data && (!dataSize || *dataSize < static_cast<LONG>(size))) {
            status = ERROR_MORE_DATA;
        } else {
            if (data) *data = 0;
            status = ERROR_SUCCESS;
        }
    }
    if (dataSize && (status == ERROR_SUCCESS || status == ERROR_MORE_DATA)) *dataSize = static_cast<LONG>(size);
    if (target != key) RegCloseKey(target);
    return status;
}

LONG RegSetValueW(HKEY key, LPCWSTR subKey, DWORD type, LPCWSTR data, DWORD dataSize) {
    // The size given is not used: the system measures the text.
    (void)dataSize;
    if (type != REG_SZ || !data) return ERROR_INVALID_PARAMETER;
    HKEY target = key;
    if (subKey && *subKey) {
        LONG status = RegCreateKeyW(key, subKey, &target);
        if (status != ERROR_SUCCESS) return status;
    }
    DWORD bytes = static_cast<DWORD>((wcslen(data) + 1) * sizeof(WCHAR));
    LONG status = RegSetValueExW(target, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(data), bytes);
    if (target != key) RegCloseKey(target);
    return status;
}
