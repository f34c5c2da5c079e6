// The table of key handles. Values start well above zero, grow by four as the system's handles do
// and are never given twice in a process, so a closed handle cannot come to mean another key; they
// stay far below the predefined handles, whose values have the top bit set.
#include "platform/posix/registry/registry_handles.h"

#include <unordered_map>

#include "platform/posix/registry/registry_store.h"
#include "platform/process_object.h"

namespace zelreg {
namespace {

constexpr REGSAM kMaximumAllowed = 0x02000000;
constexpr REGSAM kGenericAll = 0x10000000;
constexpr REGSAM kGenericExecute = 0x20000000;
constexpr REGSAM kGenericWrite = 0x40000000;
constexpr REGSAM kGenericRead = 0x80000000;

struct HandleTable {
    uintptr_t next = 0x1000;
    std::unordered_map<uintptr_t, KeyRef> refs;
};

constinit ZelProcessObject<HandleTable> table;
HandleTable& Table() { return *table; }

}  // namespace

REGSAM GrantedAccess(REGSAM access) {
    REGSAM granted = access & 0x00FFFFFF & ~static_cast<REGSAM>(KEY_WOW64_32KEY | KEY_WOW64_64KEY);
    if (access & (kMaximumAllowed | kGenericAll)) granted |= KEY_ALL_ACCESS;
    if (access & kGenericRead) granted |= KEY_READ;
    if (access & kGenericWrite) granted |= KEY_WRITE;
    if (access & kGenericExecute) granted |= KEY_EXECUTE;
    return granted;
}

bool LookUpHandle(HKEY key, KeyRef& ref) {
    int hive = HiveOfPredefined(key);
    if (hive >= 0) {
        ref = KeyRef{};
        ref.hive = hive;
        ref.access = KEY_ALL_ACCESS;
        return true;
    }
    auto it = Table().refs.find(reinterpret_cast<uintptr_t>(key));
    if (it == Table().refs.end()) return false;
    ref = it->second;
    return true;
}

LONG CheckHandle(HKEY handle, REGSAM need, KeyRef& ref) {
    if (!LookUpHandle(handle, ref)) return ERROR_INVALID_HANDLE;
    return (ref.access & need) == need ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

HKEY AddHandle(int hive, const KeyRow& key, size_t depth, REGSAM access) {
    HandleTable& table = Table();
    KeyRef ref;
    ref.hive = hive;
    ref.id = key.id;
    ref.isVolatile = key.isVolatile;
    ref.depth = depth;
    ref.access = GrantedAccess(access);
    uintptr_t value = table.next;
    table.next += 4;
    table.refs.emplace(value, ref);
    return reinterpret_cast<HKEY>(value);
}

bool RemoveHandle(HKEY key) { return Table().refs.erase(reinterpret_cast<uintptr_t>(key)) != 0; }

LONG ResolveRef(HiveDatabase& db, const KeyRef& ref, KeyRow& key) {
    return db.FindKey(ref.id, ref.isVolatile, &key) ? ERROR_SUCCESS : ERROR_KEY_DELETED;
}

}  // namespace zelreg
