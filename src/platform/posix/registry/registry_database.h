// One hive's databases and the queries that the registry's calls make of them.
//
// A hive lives in two databases: the persistent one in the registry directory and the volatile one
// in the runtime directory, attached to it as "vol". Both have the same tables:
//
//   keys(id, parent, folded, name, class, written)   one row per key; parent is
//   the parent's id,
//                                                     folded the upper-cased
//                                                     name (UTF-16, high byte
//                                                     first, so that bytes sort
//                                                     as units do), name and
//                                                     class UTF-16 as given,
//                                                     written a FILETIME
//   vals(key, folded, seq, name, type, data)         one row per value; seq
//   orders a key's values
//                                                     by creation
//   meta(name, value)                                the database's generation;
//   the volatile
//                                                     database holds the
//                                                     generation of its hive
//
// The hive's root is the row of id 0 in the persistent database. A volatile key's parent may be a
// persistent key; a persistent key's parent never is volatile. Ids are random, so a handle to a
// deleted key never reaches a later key that took its path.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_DATABASE_H
#define ZEL_PLATFORM_POSIX_REGISTRY_DATABASE_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/posix/registry/registry_tree.h"

struct sqlite3;
struct sqlite3_stmt;

namespace zelreg {

constexpr int64_t kRootId = 0;

// A key as its row tells it.
struct KeyRow {
    int64_t id = kRootId;
    int64_t parent = -1;
    bool isVolatile = false;
    std::u16string name;
    std::u16string keyClass;
    uint64_t lastWrite = 0;
};

// Counts and longest sizes, for RegQueryInfoKey, and the key's time of last write: its own or that
// of its value written last, whichever is later.
struct KeyCounts {
    size_t subKeys = 0, longestSubKey = 0, longestClass = 0;
    size_t values = 0, longestValueName = 0, largestData = 0;
    uint64_t lastWrite = 0;
};

// The open connection to one hive. Queries record the first failure of the database; the caller
// reads it once its transaction is over (failed()) and then rolls the transaction back.
class HiveDatabase {
public:
    HiveDatabase() = default;
    HiveDatabase(const HiveDatabase&) = delete;
    HiveDatabase& operator=(const HiveDatabase&) = delete;

    // Where the databases are and what this connection was opened from.
    int hive = -1;
    std::string directory;          // the registry directory
    std::string volatileDirectory;  // the runtime directory's for it
    std::string path;               // the persistent database, or empty when it could not be made
    std::string volatilePath;       // the volatile database, or empty when it cannot be trusted
    LONG unwritable = 0;            // why nothing can be written, when path is empty
    dev_t device = 0;               // of the persistent database's file when it was opened
    ino_t inode = 0;
    pid_t owner = 0;              // the process that opened it
    unsigned forkGeneration = 0;  // and the number of forks it had gone through then
    int64_t checkedAt = 0;        // when the path last led to the file (seconds, monotonic)
    bool hiveSetAside = false;    // this process set the persistent database aside while opening it
    sqlite3* db = nullptr;

    // Keys.
    bool FindKey(int64_t id, bool isVolatile, KeyRow* row);
    bool FindChild(int64_t parent, std::u16string_view name, KeyRow* row);
    bool ChildAt(int64_t parent, size_t index, std::u16string& name);
    bool HasChildren(int64_t parent);
    bool AddKey(const KeyRow& parent, std::u16string_view name, bool isVolatile, const std::u16string& keyClass,
                KeyRow& made);
    void DeleteKey(const KeyRow& key);
    void Touch(int64_t id, bool isVolatile);
    KeyCounts Counts(const KeyRow& key);

    // Values.
    bool FindValue(const KeyRow& key, std::u16string_view name, RegValue* value);
    bool ValueAt(const KeyRow& key, size_t index, RegValue& value);
    void SetValue(const KeyRow& key, std::u16string_view name, DWORD type, const BYTE* data, DWORD size);
    bool DeleteValue(const KeyRow& key, std::u16string_view name);

    // The key and everything below it as a tree, ids and volatile flags kept.
    void ReadSubtree(const KeyRow& key, RegKey& top);
    // Adds the tree's keys and values below parent (the root: id 0) in the persistent database.
    void WriteTree(const RegKey& top, int64_t parent);

    // The first failure since the last Reset: an SQLite result code, 0 for none.
    int failed() const { return failed_; }
    const std::string& failure() const { return failure_; }
    void Reset() {
        failed_ = 0;
        failure_.clear();
    }
    void Fail(int code);

    // Statements are prepared once per connection and kept.
    sqlite3_stmt* Prepare(const char* sql);
    void Close(bool keepJournal);

    // Reads of keys and values are kept in memory for as long as no process commits to either
    // database. A commit changes the header of the database's shared-memory index, which every
    // process maps; a call compares it with the copy taken before the reads were made, so that
    // nothing read before a commit is answered after it. Only calls that read use what is kept.
    void WatchChanges();
    // Compares the headers with the copies and forgets what was read when they differ.
    void CheckForChanges();
    // Whether the headers still match the copies, which are left as they are.
    bool Unchanged() const;
    bool caching = false;
    // A call that reads begins its transaction with its first query, so that a call answered from
    // memory never touches the databases.
    bool pendingBegin = false;
    bool began = false;
    void BeginIfPending();

private:
    struct Watched {
        const uint8_t* header = nullptr;  // the mapped header, or null
        uint8_t seen[48] = {};
    };
    void Watch(Watched& watched, const std::string& database);
    // Reads the header into now; true when it is not the copy (or is not mapped).
    static bool Differs(const Watched& watched, uint64_t (&now)[6]);
    bool Changed(Watched& watched);
    void Forget();

    int failed_ = 0;
    std::string failure_;
    std::vector<std::pair<const char*, sqlite3_stmt*>> statements_;
    Watched watched_[2];
    std::unordered_map<std::string, std::optional<KeyRow>> keys_;      // by id or parent and name
    std::unordered_map<std::string, std::optional<RegValue>> values_;  // by key and name

    // Where the last walk by index over a key's sub-keys or values stood: the index and the sort
    // key of the item found there (the folded name, or the value's seq). The next index goes on
    // from it in one indexed step; any other index is counted from the start.
    struct Cursor {
        size_t index = 0;
        std::string folded;
        int64_t seq = 0;
    };
    bool CursorAt(const std::string& kept, size_t index, Cursor*& cursor);
    void KeepCursor(std::string kept, Cursor cursor);
    // The first sub-key whose folded name is past (or at) from, in both databases.
    bool ChildFrom(int64_t parent, const std::string& from, bool past, std::string& folded, std::u16string& name);
    std::unordered_map<std::string, Cursor> cursors_;  // by key
};

// The name of the file layer that the databases are opened with (registry_vfs.cpp), and its removal
// once every connection is closed, when the library is unloaded or the process ends.
const char* RegistryVfs();
void ForgetRegistryVfs();

// The upper-cased name as the databases keep it: units high byte first.
std::string FoldedKey(std::u16string_view name);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_DATABASE_H
