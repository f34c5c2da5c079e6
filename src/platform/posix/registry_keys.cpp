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

// A call's key handle and sub-key, taken apart.
struct Located {
    std::vector<std::u16string> parts;  // of the sub-key
    KeyRef ref;                         // of the handle
    RegKey* base = nullptr;             // the handle's key
};

// Under the registry's lock: splits subKey and finds the key that handle names. For a call that may
// create the sub-key, every name must fit the system's limit.
LONG Locate(HKEY handle, LPCWSTR subKey, bool creating, Located& at) {
    LONG status = SplitPath(subKey, at.parts);
    if (status != ERROR_SUCCESS) return status;
    if (creating)
        for (const auto& part : at.parts)
            if (part.size() > kMaxKeyNameLength) return ERROR_INVALID_PARAMETER;
    return KeyForReading(handle, 0, at.ref, at.base);
}

}  // namespace

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    (void)options;
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    Located at;
    LONG status = Locate(key, subKey, false, at);
    if (status != ERROR_SUCCESS) return status;
    RegKey* target = FindPath(at.base, at.parts);
    if (!target) return ERROR_FILE_NOT_FOUND;
    *result = AddHandle(at.ref.hive, *target, access);
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
    std::u16string newClass = keyClass ? std::u16string(keyClass) : std::u16string();
    if (newClass.size() > kMaxClassLength) return ERROR_INVALID_PARAMETER;
    bool makeVolatile = (options & REG_OPTION_VOLATILE) != 0;

    std::lock_guard<std::mutex> lock(RegistryMutex());
    Located at;
    LONG status = Locate(key, subKey, true, at);
    if (status != ERROR_SUCCESS) return status;
    if (at.ref.path.size() + at.parts.size() > kMaxKeyDepth) return ERROR_INVALID_PARAMETER;
    // A key that is there already opens without the lock for changes.
    if (RegKey* existing = FindPath(at.base, at.parts)) {
        *result = AddHandle(at.ref.hive, *existing, access);
        if (disposition) *disposition = REG_OPENED_EXISTING_KEY;
        return ERROR_SUCCESS;
    }

    RegKey* target = nullptr;
    DWORD how = REG_OPENED_EXISTING_KEY;
    status = ChangeHive(at.ref.hive, [&](Hive& hive) -> LONG {
        LONG found = ERROR_SUCCESS;
        RegKey* node = ResolveRef(hive, at.ref, found);
        if (!node) return found;
        size_t i = 0;
        for (; i < at.parts.size(); ++i) {
            RegKey* sub = node->FindSubKey(at.parts[i]);
            if (!sub) break;
            node = sub;
        }
        if (i < at.parts.size()) {
            if (node->isVolatile && !makeVolatile) return ERROR_CHILD_MUST_BE_VOLATILE;
            for (; i < at.parts.size(); ++i) {
                bool last = i + 1 == at.parts.size();
                RegKey* sub = node->AddSubKey(at.parts[i], NewKeyId(), last ? makeVolatile : node->isVolatile);
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
    *result = AddHandle(at.ref.hive, *target, access);
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
    std::lock_guard<std::mutex> lock(RegistryMutex());
    Located at;
    LONG status = Locate(key, subKey, false, at);
    if (status != ERROR_SUCCESS) return status;
    // An empty sub-key deletes the handle's own key, which needs the right to delete on the handle.
    if (at.parts.empty() && !(at.ref.access & kDeleteAccess)) return ERROR_ACCESS_DENIED;
    if (!FindPath(at.base, at.parts)) return ERROR_FILE_NOT_FOUND;

    return ChangeHive(at.ref.hive, [&](Hive& hive) -> LONG {
        LONG found = ERROR_SUCCESS;
        RegKey* node = ResolveRef(hive, at.ref, found);
        if (!node) return found;
        RegKey* target = FindPath(node, at.parts);
        if (!target) return ERROR_FILE_NOT_FOUND;
        // A hive's root, a key with sub-keys and the default keys stay.
        if (!target->parent || !target->subKeys.empty() || IsDefaultKey(at.ref.hive, *target))
            return ERROR_ACCESS_DENIED;
        RegKey* parent = target->parent;
        hive.SubKeyChanged(parent, target);
        parent->subKeys.erase(Fold(target->name));
        return ERROR_SUCCESS;
    });
}
