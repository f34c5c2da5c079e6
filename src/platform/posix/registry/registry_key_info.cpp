// What a registry key tells about itself: its sub-keys one by one, its counts and sizes, and a copy
// of it and everything below it in a file.
#include <algorithm>
#include <cstring>

#include "platform/posix/registry/registry_files.h"
#include "platform/posix/registry/registry_format.h"
#include "platform/posix/registry/registry_handles.h"
#include "platform/posix/registry/registry_store.h"
#include "platform/win32.h"

using namespace zelreg;

LONG RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize) {
    if (!name) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    LONG status = CheckHandle(key, KEY_ENUMERATE_SUB_KEYS, ref);
    if (status != ERROR_SUCCESS) return status;
    return WithHive(ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        KeyRow node;
        LONG found = ResolveRef(db, ref, node);
        if (found != ERROR_SUCCESS) return found;
        std::u16string subName;
        if (!db.ChildAt(node.id, index, subName)) return ERROR_NO_MORE_ITEMS;
        if (subName.size() + 1 > nameSize) return ERROR_MORE_DATA;
        std::copy(subName.begin(), subName.end(), name);
        name[subName.size()] = 0;
        return ERROR_SUCCESS;
    });
}

LONG RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                      LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime) {
    if (reserved || (keyClass && !classSize)) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    LONG status = CheckHandle(key, KEY_QUERY_VALUE, ref);
    if (status != ERROR_SUCCESS) return status;
    KeyRow node;
    KeyCounts counts;
    status = WithHive(ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        LONG found = ResolveRef(db, ref, node);
        if (found == ERROR_SUCCESS) counts = db.Counts(node);
        return found;
    });
    if (status != ERROR_SUCCESS) return status;

    if (subKeys) *subKeys = static_cast<DWORD>(counts.subKeys);
    if (maxSubKeyLen) *maxSubKeyLen = static_cast<DWORD>(counts.longestSubKey);
    if (maxClassLen) *maxClassLen = static_cast<DWORD>(counts.longestClass);
    if (values) *values = static_cast<DWORD>(counts.values);
    if (maxValueNameLen) *maxValueNameLen = static_cast<DWORD>(counts.longestValueName);
    if (maxValueLen) *maxValueLen = static_cast<DWORD>(counts.largestData);
    // Keys carry no security descriptor here.
    if (securityDescriptorSize) *securityDescriptorSize = 0;
    if (lastWriteTime) *lastWriteTime = ToFileTime(counts.lastWrite);

    if (classSize) {
        const std::u16string& own = node.keyClass;
        if (keyClass) {
            if (own.size() + 1 > *classSize) {
                *classSize = static_cast<DWORD>(own.size());
                return ERROR_MORE_DATA;
            }
            std::copy(own.begin(), own.end(), keyClass);
            keyClass[own.size()] = 0;
        }
        *classSize = static_cast<DWORD>(own.size());
    }
    return ERROR_SUCCESS;
}

LONG RegSaveKeyW(HKEY key, LPCWSTR fileName, const SECURITY_ATTRIBUTES* security) {
    (void)security;
    if (!fileName) return ERROR_INVALID_PARAMETER;
    std::vector<uint8_t> bytes;
    {
        std::lock_guard<std::mutex> lock(RegistryMutex());
        KeyRef ref;
        LONG status = CheckHandle(key, 0, ref);
        if (status != ERROR_SUCCESS) return status;
        RegKey top;
        status = WithHive(ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
            KeyRow node;
            LONG found = ResolveRef(db, ref, node);
            if (found == ERROR_SUCCESS) db.ReadSubtree(node, top);
            return found;
        });
        if (status != ERROR_SUCCESS) return status;
        bytes = WriteHiveFile(top, FileKind::Saved, NewKeyId());
    }
    return WriteNewFile(ZelPlatformPathToSystem(fileName), bytes);
}
