// What a registry key tells about itself: its sub-keys one by one, its counts and sizes, and a copy
// of it and everything below it in a file.
#include <algorithm>
#include <cstring>

#include "platform/posix/registry_files.h"
#include "platform/posix/registry_format.h"
#include "platform/posix/registry_handles.h"
#include "platform/posix/registry_store.h"
#include "platform/win32.h"

using namespace zelreg;

LONG RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize) {
    if (!name) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    RegKey* node = nullptr;
    LONG status = KeyForReading(key, KEY_ENUMERATE_SUB_KEYS, ref, node);
    if (status != ERROR_SUCCESS) return status;
    if (index >= node->subKeys.size()) return ERROR_NO_MORE_ITEMS;
    const std::u16string& subName = std::next(node->subKeys.begin(), index)->second->name;
    if (subName.size() + 1 > nameSize) return ERROR_MORE_DATA;
    std::copy(subName.begin(), subName.end(), name);
    name[subName.size()] = 0;
    return ERROR_SUCCESS;
}

LONG RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                      LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime) {
    if (reserved || (keyClass && !classSize)) return ERROR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    RegKey* node = nullptr;
    LONG status = KeyForReading(key, KEY_QUERY_VALUE, ref, node);
    if (status != ERROR_SUCCESS) return status;

    size_t longestName = 0, longestClass = 0, longestValueName = 0, largestData = 0;
    for (const auto& [folded, sub] : node->subKeys) {
        longestName = std::max(longestName, sub->name.size());
        longestClass = std::max(longestClass, sub->keyClass.size());
    }
    for (const RegValue& value : node->values) {
        longestValueName = std::max(longestValueName, value.name.size());
        largestData = std::max(largestData, value.data.size());
    }
    if (subKeys) *subKeys = static_cast<DWORD>(node->subKeys.size());
    if (maxSubKeyLen) *maxSubKeyLen = static_cast<DWORD>(longestName);
    if (maxClassLen) *maxClassLen = static_cast<DWORD>(longestClass);
    if (values) *values = static_cast<DWORD>(node->values.size());
    if (maxValueNameLen) *maxValueNameLen = static_cast<DWORD>(longestValueName);
    if (maxValueLen) *maxValueLen = static_cast<DWORD>(largestData);
    // Keys carry no security descriptor here.
    if (securityDescriptorSize) *securityDescriptorSize = 0;
    if (lastWriteTime) *lastWriteTime = ToFileTime(node->lastWrite);

    if (classSize) {
        const std::u16string& own = node->keyClass;
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
        RegKey* node = nullptr;
        LONG status = KeyForReading(key, 0, ref, node);
        if (status != ERROR_SUCCESS) return status;
        bytes = WriteHiveFile(*node, FileKind::Saved, NewKeyId());
    }
    return WriteNewFile(ZelPlatformPathToSystem(fileName), bytes);
}
