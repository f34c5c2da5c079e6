// Opening, creating, closing and deleting registry keys.
//
// Volatile keys: RegCreateKeyEx with REG_OPTION_VOLATILE makes every key it creates volatile, the
// parents it has to make on the way included; keys that exist already keep what they are. A
// lasting key cannot be made below a volatile one (ERROR_CHILD_MUST_BE_VOLATILE).
#include "platform/posix/registry/registry_handles.h"
#include "platform/posix/registry/registry_store.h"
#include "platform/win32.h"

using namespace zelreg;

namespace {

constexpr REGSAM kMaximumAllowed = 0x02000000;

// A call's key handle and sub-key, taken apart.
struct Located {
    std::vector<std::u16string> parts;  // of the sub-key
    KeyRef ref;                         // of the handle
};

// Splits subKey and looks up the handle. For a call that may create the sub-key, every name must
// fit the system's limit.
LONG Locate(HKEY handle, LPCWSTR subKey, bool creating, Located& at) {
    LONG status = SplitPath(subKey, at.parts);
    if (status != ERROR_SUCCESS) return status;
    if (creating)
        for (const auto& part : at.parts)
            if (part.size() > kMaxKeyNameLength) return ERROR_INVALID_PARAMETER;
    return CheckHandle(handle, 0, at.ref);
}

// Follows parts from the handle's key as far as the keys exist. node receives the last key found,
// found the number of parts it took.
LONG Walk(HiveDatabase& db, const Located& at, KeyRow& node, size_t& found) {
    LONG status = ResolveRef(db, at.ref, node);
    found = 0;
    if (status != ERROR_SUCCESS) return status;
    for (KeyRow sub; found < at.parts.size() && db.FindChild(node.id, at.parts[found], &sub); ++found) node = sub;
    return ERROR_SUCCESS;
}

// Moves the time of last write of key's parent, when both live in the same database: a volatile
// key's coming and going never writes the persistent database.
void TouchParent(HiveDatabase& db, const KeyRow& key) {
    if (!key.isVolatile || db.FindKey(key.parent, true, nullptr)) db.Touch(key.parent, key.isVolatile);
}

}  // namespace

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    (void)options;
    if (!result) return ERROR_INVALID_PARAMETER;
    // A predefined key without a sub-key comes back as itself; any other key gets a new handle.
    if ((!subKey || !*subKey) && HiveOfPredefined(key) >= 0) {
        *result = key;
        return ERROR_SUCCESS;
    }
    *result = nullptr;
    std::lock_guard<std::mutex> lock(RegistryMutex());
    Located at;
    LONG status = Locate(key, subKey, false, at);
    if (status != ERROR_SUCCESS) return status;
    KeyRow target;
    status = WithHive(at.ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        size_t found = 0;
        LONG walked = Walk(db, at, target, found);
        if (walked != ERROR_SUCCESS) return walked;
        return found == at.parts.size() ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
    if (status != ERROR_SUCCESS) return status;
    *result = AddHandle(at.ref.hive, target, at.ref.depth + at.parts.size(), access);
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
    if (at.ref.depth + at.parts.size() > kMaxKeyDepth) return ERROR_INVALID_PARAMETER;

    KeyRow target;
    DWORD how = REG_OPENED_EXISTING_KEY;
    // A key that is there already opens without a write transaction.
    bool exists = false;
    status = WithHive(at.ref.hive, Access::Read, [&](HiveDatabase& db) -> LONG {
        size_t found = 0;
        LONG walked = Walk(db, at, target, found);
        exists = found == at.parts.size();
        return walked;
    });
    if (status == ERROR_SUCCESS && !exists) {
        status = WithHive(at.ref.hive, Access::WriteBoth, [&](HiveDatabase& db) -> LONG {
            size_t i = 0;
            LONG walked = Walk(db, at, target, i);
            if (walked != ERROR_SUCCESS || i == at.parts.size()) return walked;
            if (target.isVolatile && !makeVolatile) return ERROR_CHILD_MUST_BE_VOLATILE;
            if (makeVolatile && !VolatileKeysAllowed(db)) return ERROR_ACCESS_DENIED;
            for (; i < at.parts.size(); ++i) {
                bool last = i + 1 == at.parts.size();
                KeyRow sub;
                if (!db.AddKey(target, at.parts[i], makeVolatile, last ? newClass : std::u16string(), sub))
                    return ERROR_SUCCESS;  // the failure is the database's
                if (sub.isVolatile == target.isVolatile) db.Touch(target.id, target.isVolatile);
                target = sub;
            }
            how = REG_CREATED_NEW_KEY;
            return ERROR_SUCCESS;
        });
    }
    if (status != ERROR_SUCCESS) return status;
    *result = AddHandle(at.ref.hive, target, at.ref.depth + at.parts.size(), access);
    if (disposition) *disposition = how;
    return ERROR_SUCCESS;
}

LONG RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    if (!subKey || !*subKey) {
        *result = key;
        return ERROR_SUCCESS;
    }
    return RegCreateKeyExW(key, subKey, 0, nullptr, REG_OPTION_NON_VOLATILE, kMaximumAllowed, nullptr, result, nullptr);
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
    return WithHive(at.ref.hive, Access::WriteBoth, [&](HiveDatabase& db) -> LONG {
        KeyRow target;
        size_t found = 0;
        LONG walked = Walk(db, at, target, found);
        if (walked != ERROR_SUCCESS) return walked;
        // The rights the handle was opened with play no part: an empty sub-key deletes the
        // handle's own key whatever they are.
        if (found < at.parts.size()) return ERROR_FILE_NOT_FOUND;
        // A hive's root, a key with sub-keys and the default keys stay.
        if (target.id == kRootId || db.HasChildren(target.id) || IsDefaultKey(at.ref.hive, target))
            return ERROR_ACCESS_DENIED;
        TouchParent(db, target);
        db.DeleteKey(target);
        return ERROR_SUCCESS;
    });
}
