// The registry's key handles. A handle names its key by hive and identity, so it answers
// ERROR_KEY_DELETED once its key is gone, even when a new key of the same path has taken its place.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H
#define ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H

#include "platform/posix/registry/registry_database.h"

namespace zelreg {

struct KeyRef {
    int hive = -1;
    int64_t id = kRootId;
    bool isVolatile = false;
    size_t depth = 0;  // components below the hive's root
    REGSAM access = 0;
};

// The rights a handle opened with access holds: generic rights and MAXIMUM_ALLOWED become the key
// rights they stand for.
REGSAM GrantedAccess(REGSAM access);

// The reference behind a predefined handle or a handle of the table; false for any other value.
bool LookUpHandle(HKEY key, KeyRef& ref);
// Looks up handle and checks that it holds the rights in need.
LONG CheckHandle(HKEY handle, REGSAM need, KeyRef& ref);
// A reference to key, depth components below its hive's root, as a new handle of the table.
HKEY AddHandle(int hive, const KeyRow& key, size_t depth, REGSAM access);
// False when key is not a handle of the table.
bool RemoveHandle(HKEY key);

// The key that ref names, read in the caller's transaction; ERROR_KEY_DELETED when it is gone.
LONG ResolveRef(HiveDatabase& db, const KeyRef& ref, KeyRow& key);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H
