// The registry's hives on disk: where their files live, the lock that orders the processes that
// share them, and the cache of each hive in memory, kept in step with its files.
//
// Every call of the registry holds RegistryMutex() while it uses anything here.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_STORE_H
#define ZEL_PLATFORM_POSIX_REGISTRY_STORE_H

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/registry_tree.h"

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

// The keys that every hive of the user and of the machine has ("Software"). They are there even
// before the hive's file is, and cannot be deleted.
bool IsDefaultKey(int hive, const RegKey& key);

std::mutex& RegistryMutex();

// The directory of the hive files (ZEL_REGISTRY_DIR, or the default below the user's configuration
// directory) and the directory of the volatile files for it, read afresh on every call.
std::string RegistryDirectory();
std::string VolatileDirectory(const std::string& registryDirectory);

// The hive, brought up to date with its files first when they changed since it was read.
Hive& CurrentHive(int hive);

// Applies a change to a hive under the hive's file lock: the hive is brought up to date, apply runs,
// and every file whose keys apply marked as changed is written at once. The status is apply's, or
// the save's when the save failed; then the hive is read back from its files, which still hold
// what they held before.
LONG ChangeHive(int hive, const std::function<LONG(Hive&)>& apply);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_STORE_H
