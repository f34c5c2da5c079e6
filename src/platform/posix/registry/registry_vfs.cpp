// The file layer under the registry's databases: the system's own, with every write first offered
// to g_writeFile, so that what the registry writes can fail as a full disk does (the tests make it
// so). The write itself is the system layer's; g_writeFile only sees the bytes, on a descriptor of
// /dev/null, and a short answer fails the write.
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/posix/registry/registry_database.h"
#include "platform/posix/registry/registry_files.h"

namespace zelreg {
namespace {

constexpr int kMethodTables = 8;

struct Methods {
    const sqlite3_io_methods* original = nullptr;
    sqlite3_io_methods gated{};
};

struct GatedVfs {
    sqlite3_vfs vfs{};
    sqlite3_vfs* system = nullptr;
    Methods methods[kMethodTables];
    int devNull = -1;
    bool registered = false;
    char name[40] = {};
};

// Built at first use and never destroyed: SQLite keeps a pointer to it for the process's life.
GatedVfs* g_gated = nullptr;

int GatedWrite(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    const sqlite3_io_methods* original = nullptr;
    for (const Methods& entry : g_gated->methods)
        if (&entry.gated == file->pMethods) original = entry.original;
    if (!original) return SQLITE_IOERR_WRITE;
    if (g_writeFile != &::write) {
        ssize_t n = g_writeFile(g_gated->devNull, data, static_cast<size_t>(size));
        if (n != size) return errno == ENOSPC ? SQLITE_FULL : SQLITE_IOERR_WRITE;
    }
    return original->xWrite(file, data, size, offset);
}

int GatedOpen(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    sqlite3_vfs* system = g_gated->system;
    int rc = system->xOpen(system, name, file, flags, outFlags);
    if (rc != SQLITE_OK || !file->pMethods) return rc;
    for (Methods& entry : g_gated->methods) {
        if (!entry.original) {
            entry.original = file->pMethods;
            entry.gated = *file->pMethods;
            entry.gated.xWrite = GatedWrite;
        }
        if (entry.original == file->pMethods) {
            file->pMethods = &entry.gated;
            return rc;
        }
    }
    return rc;  // more kinds of file than foreseen: these write ungated
}

}  // namespace

// Registered under a name of this copy of the library alone, which lives in the heap: a process may
// load the library twice (a program linked with its objects that also opens the shared library),
// and a copy that is unloaded must leave no pointer into itself behind in SQLite's list.
const char* RegistryVfs() {
    if (!g_gated) {
        auto* gated = new GatedVfs;
        gated->system = sqlite3_vfs_find(nullptr);
        gated->vfs = *gated->system;
        gated->vfs.zName = gated->name;
        snprintf(gated->name, sizeof gated->name, "zel-registry-%p", static_cast<void*>(gated));
        gated->vfs.xOpen = GatedOpen;
        gated->vfs.pNext = nullptr;
        gated->devNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
        g_gated = gated;
    }
    if (!g_gated->registered) {
        sqlite3_vfs_register(&g_gated->vfs, 0);
        g_gated->registered = true;
    }
    return g_gated->name;
}

void ForgetRegistryVfs() {
    if (!g_gated) return;
    if (g_gated->registered) sqlite3_vfs_unregister(&g_gated->vfs);
    if (g_gated->devNull >= 0) close(g_gated->devNull);
    delete g_gated;
    g_gated = nullptr;
}

}  // namespace zelreg
