// The cache of the hives in memory and its agreement with their files.
//
// Each hive has two files: the persistent one in the registry directory, with every key that is not
// volatile, and a volatile one in a directory of the runtime directory, with the volatile keys. One
// lock file beside the persistent file orders every process that uses the hive, for both files.
// A change takes the lock exclusively, reads the files again when another process wrote either
// since this one last read or wrote them, applies the change and writes at once each file whose
// keys it touched. A read compares the files' inode, size, time and stamp with what it last saw and,
// on a difference, reads them again under the lock shared.
#include "platform/posix/registry_store.h"

#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/registry_files.h"
#include "platform/posix/registry_format.h"
#include "platform/process_object.h"

namespace zelreg {
namespace {

std::mutex g_mutex;

struct HiveSlot {
    const char* fileName = nullptr;
    Hive hive;
    bool loaded = false;
    std::string directory;  // the registry directory the hive was read from
    FileVersion persistent;
    FileVersion volatileFile;
    LONG readError = ERROR_SUCCESS;
};

struct HiveSlots {
    HiveSlot slots[kHiveSlots];
    HiveSlots() {
        slots[kClassesRoot].fileName = "classes_root.hive";
        slots[kCurrentUser].fileName = "current_user.hive";
        slots[kLocalMachine].fileName = "local_machine.hive";
        slots[kUsers].fileName = "users.hive";
        slots[kCurrentConfig].fileName = "current_config.hive";
    }
};

// The library's entry reads and writes hives at load and at unload.
constinit ZelProcessObject<HiveSlots> hiveSlots;
HiveSlot* Slots() { return hiveSlots->slots; }

// The volatile directory is trusted only when it is this user's and no one else may write to it.
bool TrustedDirectory(const std::string& path) {
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == geteuid() &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

struct HivePaths {
    std::string persistent;
    std::string lock;
    std::string volatileDirectory;
    std::string volatileFile;
};

HivePaths PathsFor(const std::string& dir, const HiveSlot& slot) {
    HivePaths paths;
    paths.persistent = dir + "/" + slot.fileName;
    paths.lock = paths.persistent + ".lock";
    paths.volatileDirectory = VolatileDirectory(dir);
    paths.volatileFile = paths.volatileDirectory + "/" + slot.fileName;
    return paths;
}

constexpr char16_t kSoftware[] = u"Software";

void AddDefaultKeys(int hive, RegKey& root) {
    if (hive != kCurrentUser && hive != kLocalMachine) return;
    if (!root.FindSubKey(kSoftware)) root.AddSubKey(kSoftware, SyntheticKeyId({kSoftware}), false);
}

// Reads both files of a hive afresh; the caller holds the hive's lock, or there is no directory.
void Reload(int hive, HiveSlot& slot, const std::string& dir, const HivePaths& paths) {
    slot.hive.Clear();
    slot.readError = ERROR_SUCCESS;
    HiveLoader loader(*slot.hive.root);
    std::vector<uint8_t> bytes;

    LONG status = ReadWholeFile(paths.persistent, bytes, slot.persistent);
    if (status != ERROR_SUCCESS) slot.readError = status;
    slot.persistent.stamp = loader.Load(bytes.data(), bytes.size(), HiveLoader::Volatility::Off).stamp;

    slot.volatileFile = {};
    if (TrustedDirectory(paths.volatileDirectory)) {
        status = ReadWholeFile(paths.volatileFile, bytes, slot.volatileFile);
        if (status != ERROR_SUCCESS) slot.readError = status;
        slot.volatileFile.stamp = loader.Load(bytes.data(), bytes.size(), HiveLoader::Volatility::On).stamp;
    }

    AddDefaultKeys(hive, *slot.hive.root);
    slot.directory = dir;
    slot.loaded = true;
}

// Whether the hive in memory is what its files hold. The stamps settle the rare case of a file
// replaced by one of the same size and time that got the inode its predecessor freed.
bool UpToDate(const HiveSlot& slot, const std::string& dir, const HivePaths& paths) {
    if (!slot.loaded || slot.directory != dir) return false;
    FileVersion persistent = ProbeFile(paths.persistent);
    FileVersion volatileFile = TrustedDirectory(paths.volatileDirectory) ? ProbeFile(paths.volatileFile) : FileVersion{};
    return persistent.SameFile(slot.persistent) && volatileFile.SameFile(slot.volatileFile) &&
           persistent.stamp == slot.persistent.stamp && volatileFile.stamp == slot.volatileFile.stamp;
}

LONG SaveFile(const std::string& path, const RegKey& root, FileKind kind, FileVersion& version) {
    return ReplaceFile(path, WriteHiveFile(root, kind, NewKeyId()), version);
}

}  // namespace

std::mutex& RegistryMutex() { return g_mutex; }

bool IsDefaultKey(int hive, const RegKey& key) {
    return (hive == kCurrentUser || hive == kLocalMachine) && key.parent && !key.parent->parent &&
           Fold(key.name) == Fold(kSoftware);
}

int HiveOfPredefined(HKEY key) {
    auto value = reinterpret_cast<uintptr_t>(key);
    auto base = reinterpret_cast<uintptr_t>(HKEY_CLASSES_ROOT);
    if (value < base || value - base >= kHiveSlots) return -1;
    int hive = static_cast<int>(value - base);
    return HiveExists(hive) ? hive : -1;
}

bool HiveExists(int hive) { return hive >= 0 && hive < kHiveSlots && Slots()[hive].fileName; }

Hive& CurrentHive(int hive) {
    HiveSlot& slot = Slots()[hive];
    std::string dir = RegistryDirectory();
    HivePaths paths = PathsFor(dir, slot);
    if (!UpToDate(slot, dir, paths)) {
        // Without a directory there is nothing to read and nothing to lock.
        struct stat st;
        if (stat(dir.c_str(), &st) == 0) {
            FileLock lock(paths.lock, false, true);
            Reload(hive, slot, dir, paths);
        } else {
            Reload(hive, slot, dir, paths);
        }
    }
    return slot.hive;
}

LONG ChangeHive(int hive, const std::function<LONG(Hive&)>& apply) {
    HiveSlot& slot = Slots()[hive];
    std::string dir = RegistryDirectory();
    HivePaths paths = PathsFor(dir, slot);
    LONG status = MakeDirectories(dir, 0777);
    if (status != ERROR_SUCCESS) return status;
    FileLock lock(paths.lock, true, true);
    if (lock.status() != ERROR_SUCCESS) return lock.status();
    if (!UpToDate(slot, dir, paths)) Reload(hive, slot, dir, paths);
    // A file that is there but cannot be read must not be replaced by what little was read.
    if (slot.readError != ERROR_SUCCESS) return slot.readError;

    status = apply(slot.hive);
    Hive& tree = slot.hive;
    if (tree.persistentDirty) {
        LONG saved = SaveFile(paths.persistent, *tree.root, FileKind::Persistent, slot.persistent);
        if (saved != ERROR_SUCCESS) {
            Reload(hive, slot, dir, paths);
            return saved;
        }
        tree.persistentDirty = false;
    }
    if (tree.volatileDirty) {
        LONG saved = MakeDirectories(paths.volatileDirectory, 0700);
        if (saved == ERROR_SUCCESS && !TrustedDirectory(paths.volatileDirectory)) saved = ERROR_ACCESS_DENIED;
        if (saved == ERROR_SUCCESS)
            saved = SaveFile(paths.volatileFile, *tree.root, FileKind::Volatile, slot.volatileFile);
        if (saved != ERROR_SUCCESS) {
            Reload(hive, slot, dir, paths);
            return saved;
        }
        tree.volatileDirty = false;
    }
    return status;
}

}  // namespace zelreg
