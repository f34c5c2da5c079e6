// The registry's hives on disk: where their databases live, the connection that each process keeps
// to them, and the transaction that every call of the registry runs in.
//
// Every call of the registry holds RegistryMutex() while it uses anything here.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_STORE_H
#define ZEL_PLATFORM_POSIX_REGISTRY_STORE_H

#include <mutex>
#include <string>
#include <type_traits>

#include "platform/posix/registry/registry_database.h"

namespace zelreg {

// The hives behind the predefined keys, in the order of their handles' values.
enum HiveIndex : int {
    kClassesRoot = 0,
    kCurrentUser = 1,
    kLocalMachine = 2,
    kUsers = 3,
    kCurrentConfig = 5,
    kHiveSlots = 6,
};
// The hive of a predefined handle, or -1.
int HiveOfPredefined(HKEY key);
bool HiveExists(int hive);
// The base of the hive's file names ("current_user").
const char* HiveFileBase(int hive);

// The keys that every hive of the user and of the machine has ("Software"). They are there from the
// making of the hive's database and cannot be deleted.
bool IsDefaultKey(int hive, const KeyRow& key);

std::mutex& RegistryMutex();

// The directory of the hive databases (ZEL_REGISTRY_DIR, or the default below the user's
// configuration directory) and the directory of the volatile databases for it, read afresh on every
// call.
std::string RegistryDirectory();
std::string VolatileDirectory(const std::string& registryDirectory);

// What a call does to a hive's databases: reads, or writes the persistent one, the volatile one or
// both. A call that writes takes the write lock of each database it names at its start, and of no
// other, so that writers of one database do not wait for writers of the other.
enum class Access { Read, Write, WriteVolatile, WriteBoth };
inline Access WriteTo(bool isVolatile) { return isVolatile ? Access::WriteVolatile : Access::Write; }

// Runs body in one transaction on the hive's databases: a write transaction when writing, else a
// read transaction. The transaction commits when body answers ERROR_SUCCESS and rolls back
// otherwise. A database found damaged on the way is set aside and made afresh, with a line on
// standard error, and body runs once more on the fresh one. The status is body's, or that of the
// database's failure.
template <typename Body>
LONG WithHive(int hive, Access access, Body&& body);

// What WithHive runs on: body behind a plain pointer, so that the store needs no template.
using HiveBody = LONG (*)(void* context, HiveDatabase& db);
LONG RunOnHive(int hive, Access access, HiveBody body, void* context);

template <typename Body>
LONG WithHive(int hive, Access access, Body&& body) {
    using Callable = std::remove_reference_t<Body>;
    return RunOnHive(
        hive, access, [](void* context, HiveDatabase& db) -> LONG { return (*static_cast<Callable*>(context))(db); },
        const_cast<void*>(static_cast<const void*>(&body)));
}

// Whether a volatile key can be made in the hive: false when the runtime directory cannot be
// trusted.
bool VolatileKeysAllowed(const HiveDatabase& db);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_STORE_H
