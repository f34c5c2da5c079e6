// The registry's key handles. A handle names its key by hive and path, with the key's identity, so
// it keeps working when the hive is read again from its files and answers ERROR_KEY_DELETED once
// its key is gone, even when a new key of the same path has taken its place.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H
#define ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H

#include <string>
#include <vector>

#include "platform/posix/registry_tree.h"

namespace zelreg {

// The standard right to delete the object itself.
constexpr REGSAM kDeleteAccess = 0x00010000;

struct KeyRef {
    int hive = -1;
    std::vector<std::u16string> path;
    uint64_t id = 0;  // unused for a hive's root
    REGSAM access = 0;
};

// The rights a handle opened with access holds: generic rights and MAXIMUM_ALLOWED become the
// key rights they stand for.
REGSAM GrantedAccess(REGSAM access);

// The reference behind a predefined handle or a handle of the table; false for any other value.
bool LookUpHandle(HKEY key, KeyRef& ref);
// A reference to key, as a new handle of the table.
HKEY AddHandle(int hive, const RegKey& key, REGSAM access);
// False when key is not a handle of the table.
bool RemoveHandle(HKEY key);

// The key that ref names in its hive, or null with status ERROR_KEY_DELETED.
RegKey* ResolveRef(Hive& hive, const KeyRef& ref, LONG& status);

// For a call that reads: looks up handle, checks that it holds the rights in need, brings its hive
// up to date and finds its key. The caller holds RegistryMutex(); key stays valid until it is
// released or the hive changes.
LONG KeyForReading(HKEY handle, REGSAM need, KeyRef& ref, RegKey*& key);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_HANDLES_H
