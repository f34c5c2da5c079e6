// Opening, creating, closing and deleting registry keys.
//
// Volatile keys: RegCreateKeyEx with REG_OPTION_VOLATILE makes only the key it names volatile. The
// parents it has to make on the way are volatile only when they sit below a volatile key already;
// below a lasting key they last too, so that a lasting key can still be made beside the volatile one
// later. A lasting key cannot be made below a volatile one (ERROR_CHILD_MUST_BE_VOLATILE).
#include "platform/posix/registry_handles.h"
#include "platform/posix/registry_store.h"
#include "platform/win32.h"

using namespace zelreg;

namespace {

constexpr REGSAM kMaximumAllowed = 0x02000000;

// Splits a sub-key for a call that may create it: every name must fit the system's limit.
LONG SplitNewPath(LPCWSTR subKey, std::vector<std::u16string>& parts) {
    LONG status = SplitPath(subKey, parts);
    if (status != ERROR_SUCCESS) return status;
    for (const auto& part : parts)
        if (part.size() > kMaxKeyNameLength) return ERROR_INVALID_PARAMETER;
    return ERROR_SUCCESS;
}

}  // namespace

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    (void)options;
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::vector<std::u16string> parts;
    LONG status = SplitPath(subKey, parts);
    if (status != ERROR_SUCCESS) return status;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    RegKey* base = nullptr;
    status = KeyForReading(key, 0, ref, base);
    if (status != ERROR_SUCCESS) return status;
    RegKey* target = FindPath(base, parts);
    if (!target) return ERROR_FILE_NOT_FOUND;
    *result = AddHandle(ref.hive, *target, access);
    return ERROR_SUCCESS;
}

LONG RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    // Without a sub-key the system hands back the very handle it was given.
    if (!subKey || !*subKey) {
        *result = key;
        return ERROR_SUCCESS;
    }
    return RegOpenKeyExW(key, subKey, 0, kMaximumAllowed, result);
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition) {
    (void)reserved;
    (void)security;
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::vector<std::u16string> parts;
    LONG status = SplitNewPath(subKey, parts);
    if (status != ERROR_SUCCESS) return status;
    std::u16string newClass = keyClass ? std::u16string(keyClass) : std::u16string();
    if (newClass.size() > kMaxClassLength) return ERROR_INVALID_PARAMETER;
    bool makeVolatile = (options & REG_OPTION_VOLATILE) != 0;

    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    RegKey* base = nullptr;
    status = KeyForReading(key, 0, ref, base);
    if (status != ERROR_SUCCESS) return status;
    if (ref.path.size() + parts.size() > kMaxKeyDepth) return ERROR_INVALID_PARAMETER;
    // A key that is there already opens without the lock for changes.
    if (RegKey* existing = FindPath(base, parts)) {
        *result = AddHandle(ref.hive, *existing, access);
        if (disposition) *disposition = REG_OPENED_EXISTING_KEY;
        return ERROR_SUCCESS;
    }

    RegKey* target = nullptr;
    DWORD how = REG_OPENED_EXISTING_KEY;
    status = ChangeHive(ref.hive, [&](Hive& hive) -> LONG {
        LONG found = ERROR_SUCCESS;
        RegKey* node = ResolveRef(hive, ref, found);
        if (!node) return found;
        size_t i = 0;
        for (; i < parts.size(); ++i) {
            RegKey* sub = node->FindSubKey(parts[i]);
            if (!sub) break;
            node = sub;
        }
        if (i < parts.size()) {
            if (node->isVolatile && !makeVolatile) return ERROR_CHILD_MUST_BE_VOLATILE;
            for (; i < parts.size(); ++i) {
                bool last = i + 1 == parts.size();
                RegKey* sub = node->AddSubKey(parts[i], NewKeyId(), last ? makeVolatile : node->isVolatile);
                hive.SubKeyChanged(node, sub);
                node = sub;
            }
            node->keyClass = newClass;
            how = REG_CREATED_NEW_KEY;
        }
        target = node;
        return ERROR_SUCCESS;
    });
    if (status != ERROR_SUCCESS) return status;
    *result = AddHandle(ref.hive, *target, access);
    if (disposition) *disposition = how;
    return ERROR_SUCCESS;
}

LONG RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    if (!subKey || !*subKey) {
        *result = key;
        return ERROR_SUCCESS;
    }
    return RegCreateKeyExW(key, subKey, 0, nullptr, REG_OPTION_NON_VOLATILE, kMaximumAllowed, nullptr, result,
                           nullptr);
}

LONG RegCloseKey(HKEY key) {
    std::lock_guard<std::mutex> lock(RegistryMutex());
    if (HiveOfPredefined(key) >= 0) return ERROR_SUCCESS;
    return RemoveHandle(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
    if (!subKey) return ERROR_INVALID_PARAMETER;
    std::vector<std::u16string> parts;
    LONG status = SplitPath(subKey, parts);
    if (status != ERROR_SUCCESS) return status;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    KeyRef ref;
    RegKey* base = nullptr;
    status = KeyForReading(key, 0, ref, base);
    if (status != ERROR_SUCCESS) return status;
    // An empty sub-key deletes the handle's own key, which needs the right to delete on the handle.
    if (parts.empty() && !(ref.access & kDeleteAccess)) return ERROR_ACCESS_DENIED;
    if (!FindPath(base, parts)) return ERROR_FILE_NOT_FOUND;

    return ChangeHive(ref.hive, [&](Hive& hive) -> LONG {
        LONG found = ERROR_SUCCESS;
        RegKey* node = ResolveRef(hive, ref, found);
        if (!node) return found;
        RegKey* target = FindPath(node, parts);
        if (!target) return ERROR_FILE_NOT_FOUND;
        // A hive's root, a key with sub-keys and the default keys stay.
        if (!target->parent || !target->subKeys.empty() || IsDefaultKey(ref.hive, *target))
            return ERROR_ACCESS_DENIED;
        RegKey* parent = target->parent;
        hive.SubKeyChanged(parent, target);
        parent->subKeys.erase(Fold(target->name));
        return ERROR_SUCCESS;
    });
}
