// The connection of this process to each hive, and the transaction of each call.
//
// A hive's persistent database is <registry directory>/<hive>.db, in WAL mode, so that readers
// never wait for a writer and a process killed at any instant loses nothing that was committed. Its
// volatile database is <runtime directory>/zel-registry-<uid>-<hash>/<hive>.db, which a new login
// session finds gone. Writers wait for each other up to the busy timeout.
//
// A database is made under a temporary name and renamed into place once it holds its tables (and
// the keys of a hive file of the older format beside it, which is then renamed to
// <hive>.hive.imported), so a database at its path is never half made. Making, setting aside and
// renaming happen under an advisory lock on the directory, which orders the processes that start at
// once.
//
// A database that is empty, is no database, is damaged or (for the volatile one) belongs to a hive
// database that is no longer there, is set aside: renamed to <name>.damaged-<time>, with its
// write-ahead log, and made afresh, with one line on standard error. Damage met in the middle of a
// call costs that call's transaction, which then runs again on the fresh database.
#include "platform/posix/registry/registry_store.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/posix/registry/registry_files.h"
#include "platform/posix/registry/registry_format.h"
#include "platform/process_object.h"

namespace zelreg {
namespace {

constexpr int kApplicationId = 0x5A524442;  // "ZRDB"
constexpr int kBusyTimeoutMs = 30000;

constexpr const char* kFileBases[kHiveSlots] = {"classes_root", "current_user", "local_machine",
                                                "users",        nullptr,        "current_config"};

constexpr char16_t kSoftware[] = u"Software";

std::mutex g_mutex;

// The connections of this process, made at first use, as the library's entry writes the registry at
// load whatever the order of other files' constructors; freed only by CloseAll.
constinit HiveDatabase* g_hives[kHiveSlots] = {};

// The last answer of VolatileDirectoryOf and what it rested on.
constinit std::string* g_lastVolatile = nullptr;

// Forks this process went through: a connection never crosses a fork (the parent's is left alone).
constinit std::atomic<unsigned> g_forks{0};

// Whether CloseAll is noted for the unload since the connections were last closed.
constinit bool g_closeNoted = false;

// Seconds of the monotonic clock, cheap to read.
int64_t Seconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return now.tv_sec;
}

const char* const kSchema[] = {
    "CREATE TABLE %smeta (name TEXT PRIMARY KEY, value) WITHOUT ROWID",
    "CREATE TABLE %skeys (id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, folded BLOB NOT NULL, "
    "name BLOB NOT NULL, class BLOB NOT NULL, written INTEGER NOT NULL)",
    "CREATE UNIQUE INDEX %skeys_by_name ON keys (parent, folded)",
    "CREATE TABLE %svals (key INTEGER NOT NULL, folded BLOB NOT NULL, seq INTEGER NOT NULL, "
    "name BLOB NOT NULL, type INTEGER NOT NULL, data BLOB NOT NULL, written INTEGER NOT NULL, "
    "PRIMARY KEY (key, folded)) WITHOUT ROWID",
    "CREATE UNIQUE INDEX %svals_in_order ON vals (key, seq)",
};

bool Exec(sqlite3* db, const std::string& sql) {
    return sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool MakeTables(sqlite3* db, const char* schema) {
    for (const char* statement : kSchema) {
        char sql[512];
        snprintf(sql, sizeof sql, statement, schema);
        if (!Exec(db, sql)) return false;
    }
    return true;
}

// The volatile directory is trusted only when it is this user's and no one else may write to it.
bool TrustedDirectory(const std::string& path) {
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == geteuid() &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

// An advisory lock on a directory, held until destruction.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::string& dir) : fd_(open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (fd_ >= 0)
            while (flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
            }
    }
    ~DirectoryLock() {
        if (fd_ >= 0) close(fd_);
    }
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

private:
    int fd_;
};

void SyncDirectoryOf(const std::string& path) {
    size_t slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : path.substr(0, slash ? slash : 1);
    int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

// Renames a database and its log out of the way, and says so once on standard error.
void SetAside(const std::string& path, const std::string& why) {
    char stamp[32];
    time_t now = time(nullptr);
    struct tm parts;
    localtime_r(&now, &parts);
    strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &parts);
    std::string aside = path + ".damaged-" + stamp;
    for (int n = 2; access(aside.c_str(), F_OK) == 0; ++n) aside = path + ".damaged-" + stamp + "-" + std::to_string(n);
    if (rename(path.c_str(), aside.c_str()) != 0 && errno != ENOENT) {
        fprintf(stderr, "zel: registry: %s %s, and could not be set aside: %s\n", path.c_str(), why.c_str(),
                strerror(errno));
        unlink(path.c_str());
    } else {
        fprintf(stderr, "zel: registry: %s %s; set aside as %s, starting afresh\n", path.c_str(), why.c_str(),
                aside.c_str());
    }
    rename((path + "-wal").c_str(), (aside + "-wal").c_str());
    unlink((path + "-shm").c_str());
    SyncDirectoryOf(path);
}

// Removes what a maker killed half-way left of a database under its temporary name.
void RemoveLeftovers(const std::string& temp) {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) unlink((temp + suffix).c_str());
}

int64_t NewGeneration() { return static_cast<int64_t>(NewKeyId() >> 1); }

// Moves a finished database from temp to path.
bool Publish(const std::string& temp, const std::string& path) {
    if (rename(temp.c_str(), path.c_str()) != 0) {
        RemoveLeftovers(temp);
        return false;
    }
    SyncDirectoryOf(path);
    return true;
}

// Makes the persistent database of a hive at path: the root, the default keys and what a hive file
// of the older format beside it holds. The caller holds the directory's lock.
bool MakeHiveDatabase(int hive, const std::string& dir, const std::string& path) {
    std::string temp = path + ".new";
    RemoveLeftovers(temp);
    HiveDatabase made;
    if (sqlite3_open_v2(temp.c_str(), &made.db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, RegistryVfs()) !=
        SQLITE_OK) {
        made.Close(false);
        RemoveLeftovers(temp);
        return false;
    }
    std::string oldHive = dir + "/" + kFileBases[hive] + ".hive";
    RegKey imported;
    std::vector<uint8_t> bytes;
    FileVersion version;
    bool haveOld = ReadWholeFile(oldHive, bytes, version) == ERROR_SUCCESS && version.exists;
    if (haveOld) HiveLoader(imported).Load(bytes.data(), bytes.size(), HiveLoader::Volatility::Off);

    bool ok = Exec(made.db, "PRAGMA application_id = " + std::to_string(kApplicationId)) &&
              Exec(made.db, "PRAGMA journal_mode = WAL") && Exec(made.db, "BEGIN") && MakeTables(made.db, "") &&
              Exec(made.db, "INSERT INTO meta VALUES ('generation', " + std::to_string(NewGeneration()) + ")") &&
              Exec(made.db, "INSERT INTO keys VALUES (0, -1, x'', x'', x'', " + std::to_string(NowFileTime()) + ")");
    if (ok && (hive == kCurrentUser || hive == kLocalMachine) && !imported.FindSubKey(kSoftware))
        imported.AddSubKey(kSoftware, SyntheticKeyId({kSoftware}), false);
    if (ok) {
        made.WriteTree(imported, kRootId);
        ok = !made.failed() && Exec(made.db, "COMMIT");
    }
    made.Close(false);
    if (!ok || !Publish(temp, path)) {
        RemoveLeftovers(temp);
        return false;
    }
    if (haveOld) {
        rename(oldHive.c_str(), (oldHive + ".imported").c_str());
        unlink((oldHive + ".lock").c_str());
    }
    return true;
}

// Makes an empty volatile database at path for the hive database of the given generation.
bool MakeVolatileDatabase(const std::string& path, int64_t generation) {
    std::string temp = path + ".new";
    RemoveLeftovers(temp);
    sqlite3* db = nullptr;
    bool ok =
        sqlite3_open_v2(temp.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, RegistryVfs()) == SQLITE_OK &&
        Exec(db, "PRAGMA application_id = " + std::to_string(kApplicationId)) &&
        Exec(db, "PRAGMA journal_mode = WAL") && Exec(db, "BEGIN") && MakeTables(db, "") &&
        Exec(db, "INSERT INTO meta VALUES ('generation', " + std::to_string(generation) + ")") && Exec(db, "COMMIT");
    sqlite3_close_v2(db);
    if (!ok || !Publish(temp, path)) {
        RemoveLeftovers(temp);
        return false;
    }
    return true;
}

// Reads one integer; false when the statement fails. why receives SQLite's message then.
bool ReadInteger(sqlite3* db, const char* sql, int64_t& value, std::string& why, int& code) {
    sqlite3_stmt* stmt = nullptr;
    code = sqlite3_prepare_v2(db, sql, -1, &stmt, nullptr);
    if (code == SQLITE_OK) {
        code = sqlite3_step(stmt);
        if (code == SQLITE_ROW) {
            value = sqlite3_column_int64(stmt, 0);
            code = SQLITE_OK;
        } else if (code == SQLITE_DONE) {
            code = SQLITE_NOTFOUND;
        }
    }
    if (code != SQLITE_OK) why = sqlite3_errmsg(db);
    sqlite3_finalize(stmt);
    return code == SQLITE_OK;
}

bool Damaged(int code) { return (code & 0xFF) == SQLITE_CORRUPT || (code & 0xFF) == SQLITE_NOTADB; }

enum class Opened { Ok, SetAside, Failed };

// Checks that the database attached as schema is one of the registry's and gives its generation. A
// database that is not is set aside.
Opened CheckDatabase(sqlite3* db, const char* schema, const std::string& path, int64_t& generation) {
    std::string why;
    int code = 0;
    int64_t id = 0;
    std::string sql = std::string("PRAGMA ") + schema + ".application_id";
    if (!ReadInteger(db, sql.c_str(), id, why, code)) {
        if (!Damaged(code)) return Opened::Failed;
        SetAside(path, ((code & 0xFF) == SQLITE_NOTADB ? "is not a database (" : "is damaged (") + why + ")");
        return Opened::SetAside;
    }
    sql = std::string("SELECT value FROM ") + schema + ".meta WHERE name = 'generation'";
    if (id != kApplicationId || !ReadInteger(db, sql.c_str(), generation, why, code)) {
        if (id == kApplicationId && !Damaged(code) && code != SQLITE_NOTFOUND) return Opened::Failed;
        SetAside(path, id != kApplicationId ? "is not a registry database" : "is damaged (" + why + ")");
        return Opened::SetAside;
    }
    return Opened::Ok;
}

// Opens the persistent database of the hive, making it when it is not there. The caller holds the
// directory's lock.
LONG OpenHiveDatabase(int hive, HiveDatabase& db, int64_t& generation) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        struct stat st;
        if (stat(db.path.c_str(), &st) != 0) {
            if (errno != ENOENT) return IoStatus(errno);
            if (!MakeHiveDatabase(hive, db.directory, db.path)) return ERROR_REGISTRY_IO_FAILED;
            continue;
        }
        if (st.st_size == 0) {
            SetAside(db.path, "is empty");
            db.hiveSetAside = true;
            continue;
        }
        if (sqlite3_open_v2(db.path.c_str(), &db.db, SQLITE_OPEN_READWRITE, RegistryVfs()) != SQLITE_OK) {
            LONG status = IoStatus(errno);
            db.Close(true);
            return status;
        }
        db.device = st.st_dev;
        db.inode = st.st_ino;
        sqlite3_busy_timeout(db.db, kBusyTimeoutMs);
        Exec(db.db, "PRAGMA synchronous = NORMAL");
        Opened opened = CheckDatabase(db.db, "main", db.path, generation);
        if (opened == Opened::Ok) return ERROR_SUCCESS;
        db.Close(true);
        if (opened == Opened::Failed) return ERROR_REGISTRY_IO_FAILED;
        db.hiveSetAside = true;
    }
    return ERROR_REGISTRY_CORRUPT;
}

// Attaches the volatile database as "vol": the one in the runtime directory when that can be
// trusted, else an empty one in memory that takes no volatile key.
LONG AttachVolatile(HiveDatabase& db, int64_t generation) {
    const std::string& vdir = db.volatileDirectory;
    db.volatilePath.clear();
    if (MakeDirectories(vdir, 0700) == ERROR_SUCCESS && TrustedDirectory(vdir)) {
        DirectoryLock lock(vdir);
        std::string path = vdir + "/" + kFileBases[db.hive] + ".db";
        for (int attempt = 0; attempt < 3; ++attempt) {
            struct stat st;
            if (stat(path.c_str(), &st) != 0) {
                if (!MakeVolatileDatabase(path, generation)) break;
                continue;
            }
            if (st.st_size == 0) {
                SetAside(path, "is empty");
                continue;
            }
            sqlite3_stmt* attach = nullptr;
            sqlite3_prepare_v2(db.db, "ATTACH DATABASE ?1 AS vol", -1, &attach, nullptr);
            sqlite3_bind_text(attach, 1, path.c_str(), -1, SQLITE_TRANSIENT);
            int rc = sqlite3_step(attach);
            sqlite3_finalize(attach);
            if (rc != SQLITE_DONE) {
                Exec(db.db, "DETACH DATABASE vol");
                if (!Damaged(rc)) break;
                SetAside(path, std::string("is not a database (") + sqlite3_errstr(rc) + ")");
                continue;
            }
            Exec(db.db, "PRAGMA vol.synchronous = NORMAL");
            int64_t own = 0;
            Opened opened = CheckDatabase(db.db, "vol", path, own);
            if (opened == Opened::Ok && own == generation) {
                db.volatilePath = path;
                return ERROR_SUCCESS;
            }
            Exec(db.db, "DETACH DATABASE vol");
            if (opened == Opened::Failed) break;
            // Volatile keys of a hive that was just set aside go with it, unsaid: one line tells of both.
            if (opened == Opened::Ok && db.hiveSetAside)
                RemoveLeftovers(path);
            else if (opened == Opened::Ok)
                SetAside(path, "belongs to a hive database that is gone");
        }
    }
    // An untrusted or unusable runtime directory: volatile keys cannot be made.
    return Exec(db.db, "ATTACH DATABASE ':memory:' AS vol") && MakeTables(db.db, "vol.") ? ERROR_SUCCESS
                                                                                         : ERROR_REGISTRY_IO_FAILED;
}

// A hive that cannot have a database, because its directory cannot be made: it reads as a fresh
// hive and refuses every change with the reason.
LONG OpenUnwritable(HiveDatabase& db, LONG why) {
    db.path.clear();
    db.unwritable = why;
    bool ok = sqlite3_open_v2(":memory:", &db.db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
              MakeTables(db.db, "") && Exec(db.db, "INSERT INTO keys VALUES (0, -1, x'', x'', x'', 0)") &&
              Exec(db.db, "ATTACH DATABASE ':memory:' AS vol") && MakeTables(db.db, "vol.");
    if (ok && (db.hive == kCurrentUser || db.hive == kLocalMachine)) {
        RegKey defaults;
        defaults.AddSubKey(kSoftware, SyntheticKeyId({kSoftware}), false);
        db.WriteTree(defaults, kRootId);
        ok = !db.failed();
    }
    return ok ? ERROR_SUCCESS : ERROR_REGISTRY_IO_FAILED;
}

LONG Open(HiveDatabase& db) {
    db.Close(false);
    db.Reset();
    db.owner = getpid();
    db.forkGeneration = g_forks;
    db.checkedAt = Seconds();
    db.unwritable = ERROR_SUCCESS;
    db.path = db.directory + "/" + kFileBases[db.hive] + ".db";
    LONG status = MakeDirectories(db.directory, 0777);
    if (status != ERROR_SUCCESS) return OpenUnwritable(db, status);
    int64_t generation = 0;
    {
        DirectoryLock lock(db.directory);
        status = OpenHiveDatabase(db.hive, db, generation);
    }
    if (status == ERROR_SUCCESS) status = AttachVolatile(db, generation);
    db.hiveSetAside = false;
    if (status == ERROR_SUCCESS)
        db.WatchChanges();
    else
        db.Close(true);
    return status;
}

// At the end of the process, or when this copy of the library is unloaded.
// What is made at first use goes too, for a copy of the library that is unloaded; a call after
// this makes it again.
void CloseAll() {
    std::lock_guard<std::mutex> lock(g_mutex);
    g_closeNoted = false;
    for (HiveDatabase*& db : g_hives) {
        if (db && db->forkGeneration == g_forks) db->Close(false);
        delete db;
        db = nullptr;
    }
    delete[] g_lastVolatile;
    g_lastVolatile = nullptr;
    ForgetRegistryVfs();
}

// VolatileDirectory, worked out again only when what it rests on changed: the registry directory
// (when absolute) and the variables that name the runtime and temporary directories.
std::string VolatileDirectoryOf(const std::string& dir) {
    if (!g_lastVolatile) g_lastVolatile = new std::string[4];
    std::string* last = g_lastVolatile;
    const char* runtime = getenv("XDG_RUNTIME_DIR");
    const char* temp = getenv("TMPDIR");
    std::string runtimeText = runtime ? runtime : "", tempText = temp ? temp : "";
    if (dir.empty() || dir[0] != '/' || last[0] != dir || last[1] != runtimeText || last[2] != tempText ||
        last[3].empty()) {
        last[0] = dir;
        last[1] = runtimeText;
        last[2] = tempText;
        last[3] = VolatileDirectory(dir);
    }
    return last[3];
}

// The hive's connection, opened or opened again as needed: when the directories changed, when this
// process is a fork of the one that opened it (a connection never crosses a fork; the parent's is
// left alone), and when its database was removed or replaced.
HiveDatabase* Connect(int hive, LONG& status) {
    static const bool forksCounted = pthread_atfork(nullptr, nullptr, [] { ++g_forks; }) == 0;
    (void)forksCounted;
    // The connections close at the end of the library's unload, after the last call its entry makes.
    if (!g_closeNoted) {
        g_closeNoted = true;
        ZelPlatformReleaseAtUnload([](void*) { CloseAll(); }, nullptr);
    }
    status = ERROR_SUCCESS;
    HiveDatabase*& slot = g_hives[hive];
    if (slot && slot->forkGeneration != g_forks) slot = nullptr;
    if (!slot) {
        slot = new HiveDatabase;
        slot->hive = hive;
    }
    HiveDatabase& db = *slot;
    std::string dir = RegistryDirectory();
    std::string vdir = VolatileDirectoryOf(dir);
    if (db.db && db.directory == dir && db.volatileDirectory == vdir && !db.unwritable) {
        // Whether the path still leads to the file opened is asked once a second at most.
        int64_t now = Seconds();
        if (now == db.checkedAt) return &db;
        struct stat st;
        if (stat(db.path.c_str(), &st) == 0 && st.st_dev == db.device && st.st_ino == db.inode) {
            db.checkedAt = now;
            return &db;
        }
        if (errno == ENOENT)
            fprintf(stderr, "zel: registry: %s was removed while in use; starting afresh\n", db.path.c_str());
        // Another process set it aside or it was removed: the log at the path is not this file's.
        db.Close(true);
    }
    db.directory = dir;
    db.volatileDirectory = vdir;
    status = Open(db);
    return status == ERROR_SUCCESS ? &db : nullptr;
}

// After damage met in a call: finds which database is damaged, and sets it aside.
bool Recover(HiveDatabase& db) {
    auto intact = [&](const char* sql) {
        sqlite3_stmt* stmt = nullptr;
        bool ok = sqlite3_prepare_v2(db.db, sql, -1, &stmt, nullptr) == SQLITE_OK && sqlite3_step(stmt) == SQLITE_ROW &&
                  std::string(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0))) == "ok";
        sqlite3_finalize(stmt);
        return ok;
    };
    bool mainBad = !intact("PRAGMA main.quick_check(1)");
    bool volatileBad = !db.volatilePath.empty() && !intact("PRAGMA vol.quick_check(1)");
    if (!mainBad && !volatileBad) return false;
    std::string why = "is damaged (" + db.failure() + ")";
    dev_t device = db.device;
    ino_t inode = db.inode;
    db.Close(true);
    if (mainBad) {
        DirectoryLock lock(db.directory);
        struct stat st;
        // Another process may have set it aside already.
        if (stat(db.path.c_str(), &st) == 0 && st.st_dev == device && st.st_ino == inode) SetAside(db.path, why);
        db.hiveSetAside = true;
    }
    if (volatileBad) {
        DirectoryLock lock(db.volatileDirectory);
        SetAside(db.volatilePath, why);
    }
    return true;
}

LONG StatusOf(int code) {
    switch (code & 0xFF) {
        case SQLITE_FULL:
            return ERROR_DISK_FULL;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ERROR_BUSY;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_CANTOPEN:
            return ERROR_ACCESS_DENIED;
        case SQLITE_NOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return ERROR_REGISTRY_CORRUPT;
        default:
            return ERROR_REGISTRY_IO_FAILED;
    }
}

void Step(HiveDatabase& db, const char* sql) {
    sqlite3_stmt* stmt = db.Prepare(sql);
    if (!stmt) return;
    int rc = sqlite3_step(stmt);
    sqlite3_reset(stmt);
    if (rc != SQLITE_DONE) db.Fail(rc);
}

// A call's transaction: a write transaction at once for a call that writes; for a call that reads,
// one begun by its first query, if it needs one at all.
LONG Transaction(HiveDatabase& db, Access access, HiveBody body, void* context) {
    const bool write = access != Access::Read;
    db.began = false;
    db.caching = db.pendingBegin = !write;
    if (write) {
        Step(db, "BEGIN");
        if (db.failed()) return ERROR_SUCCESS;
        db.began = true;
        // A write of nothing takes the database's write lock, waiting for other writers.
        if (access != Access::WriteVolatile) Step(db, "UPDATE main.meta SET value = value WHERE 0");
        if (access != Access::Write && !db.failed()) Step(db, "UPDATE vol.meta SET value = value WHERE 0");
    } else {
        db.CheckForChanges();
    }
    LONG status = db.failed() ? ERROR_SUCCESS : body(context, db);
    db.caching = db.pendingBegin = false;
    if (!db.began) return status;
    db.began = false;
    if (status == ERROR_SUCCESS && !db.failed()) {
        Step(db, "COMMIT");
        if (!db.failed()) return status;
    }
    // The rollback runs after a failure too, and keeps that failure.
    if (!sqlite3_get_autocommit(db.db))
        if (sqlite3_stmt* rollback = db.Prepare("ROLLBACK")) {
            sqlite3_step(rollback);
            sqlite3_reset(rollback);
        }
    return status;
}

}  // namespace

std::mutex& RegistryMutex() { return g_mutex; }

const char* HiveFileBase(int hive) { return HiveExists(hive) ? kFileBases[hive] : nullptr; }

bool IsDefaultKey(int hive, const KeyRow& key) {
    return (hive == kCurrentUser || hive == kLocalMachine) && key.parent == kRootId && !key.isVolatile &&
           FoldedKey(key.name) == FoldedKey(kSoftware);
}

int HiveOfPredefined(HKEY key) {
    auto value = reinterpret_cast<uintptr_t>(key);
    auto base = reinterpret_cast<uintptr_t>(HKEY_CLASSES_ROOT);
    if (value < base || value - base >= kHiveSlots) return -1;
    int hive = static_cast<int>(value - base);
    return HiveExists(hive) ? hive : -1;
}

bool HiveExists(int hive) { return hive >= 0 && hive < kHiveSlots && kFileBases[hive]; }

bool VolatileKeysAllowed(const HiveDatabase& db) { return !db.volatilePath.empty(); }

LONG RunOnHive(int hive, Access access, HiveBody body, void* context) {
    for (int attempt = 0;; ++attempt) {
        LONG status = ERROR_SUCCESS;
        HiveDatabase* db = Connect(hive, status);
        if (!db) return status;
        if (access != Access::Read && db->unwritable) return db->unwritable;
        db->Reset();
        status = Transaction(*db, access, body, context);
        if (!db->failed()) return status;
        int failed = db->failed();
        if (attempt == 0 && Damaged(failed) && Recover(*db)) continue;
        return StatusOf(failed);
    }
}

}  // namespace zelreg
