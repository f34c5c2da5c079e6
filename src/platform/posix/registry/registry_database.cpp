// The queries of a hive's databases. Every statement is prepared once per connection; a query that
// fails records the failure on the connection and reads as "nothing found", so that the call's
// transaction is rolled back as a whole once the call sees it.
#include "platform/posix/registry/registry_database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace zelreg {
namespace {

// One use of a prepared statement: binds in order, steps, reads columns, and resets the statement
// when it goes.
class Query {
public:
    Query(HiveDatabase& db, const char* sql) : db_(db), stmt_((db.BeginIfPending(), db.Prepare(sql))) {}
    ~Query() {
        if (!stmt_) return;
        sqlite3_reset(stmt_);
        sqlite3_clear_bindings(stmt_);
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& Int(int64_t value) {
        if (stmt_) sqlite3_bind_int64(stmt_, ++bound_, value);
        return *this;
    }
    // Data that outlives the query is bound as it is; a folded name, made for the query, is copied.
    Query& Bytes(const void* data, size_t size, sqlite3_destructor_type keep = SQLITE_STATIC) {
        // A zero-length blob, not NULL, for empty data.
        if (stmt_) sqlite3_bind_blob64(stmt_, ++bound_, size ? data : "", size, keep);
        return *this;
    }
    Query& Text(std::u16string_view text) { return Bytes(text.data(), text.size() * sizeof(char16_t)); }
    Query& Folded(const std::string& folded) { return Bytes(folded.data(), folded.size(), SQLITE_TRANSIENT); }

    // True for a row; false when done or failed.
    bool Row() {
        if (!stmt_) return false;
        int rc = sqlite3_step(stmt_);
        if (rc == SQLITE_ROW) return true;
        if (rc != SQLITE_DONE) db_.Fail(rc);
        return false;
    }
    void Run() {
        while (Row()) {
        }
    }

    int64_t IntAt(int column) const { return sqlite3_column_int64(stmt_, column); }
    std::u16string TextAt(int column) const {
        const void* data = sqlite3_column_blob(stmt_, column);
        size_t size = static_cast<size_t>(sqlite3_column_bytes(stmt_, column)) / sizeof(char16_t);
        std::u16string text(size, 0);
        if (size) memcpy(text.data(), data, size * sizeof(char16_t));
        return text;
    }
    // A blob as bytes in a string, as folded names are kept.
    std::string BytesAsText(int column) const {
        const char* data = static_cast<const char*>(sqlite3_column_blob(stmt_, column));
        return data ? std::string(data, static_cast<size_t>(sqlite3_column_bytes(stmt_, column))) : std::string();
    }
    std::vector<BYTE> BytesAt(int column) const {
        auto data = static_cast<const BYTE*>(sqlite3_column_blob(stmt_, column));
        size_t size = static_cast<size_t>(sqlite3_column_bytes(stmt_, column));
        return data ? std::vector<BYTE>(data, data + size) : std::vector<BYTE>();
    }

private:
    HiveDatabase& db_;
    sqlite3_stmt* stmt_;
    int bound_ = 0;
};

// A fresh id for a key: positive, as SQLite's integers are signed, and never the root's.
int64_t FreshId() {
    auto id = static_cast<int64_t>(NewKeyId() & 0x7FFFFFFFFFFFFFFFull);
    return id == kRootId ? 1 : id;
}

// The columns that make a KeyRow, after its id: parent, name, class, written.
#define ZEL_KEY_COLUMNS "parent, name, class, written"

// The columns name, type and data, first in the row.
void ReadValueColumns(const Query& q, RegValue& value) {
    value.name = q.TextAt(0);
    value.type = static_cast<DWORD>(q.IntAt(1));
    value.data = q.BytesAt(2);
}

void ReadKeyColumns(const Query& q, int first, KeyRow& row) {
    row.parent = q.IntAt(first);
    row.name = q.TextAt(first + 1);
    row.keyClass = q.TextAt(first + 2);
    row.lastWrite = static_cast<uint64_t>(q.IntAt(first + 3));
}

// The keys of what is kept: a kind, an id and a folded name.
std::string CacheKey(char kind, int64_t id, bool isVolatile, const std::string& folded = {}) {
    std::string key(1, kind);
    key.append(reinterpret_cast<const char*>(&id), sizeof id);
    key += isVolatile ? '1' : '0';
    return key + folded;
}

constexpr size_t kMostKept = 65536;

}  // namespace

std::string FoldedKey(std::u16string_view name) {
    std::string folded(name.size() * 2, '\0');
    for (size_t i = 0; i < name.size(); ++i) {
        char16_t unit = UpcaseUnit(name[i]);
        folded[2 * i] = static_cast<char>(unit >> 8);
        folded[2 * i + 1] = static_cast<char>(unit & 0xFF);
    }
    return folded;
}

void HiveDatabase::BeginIfPending() {
    if (!pendingBegin) return;
    pendingBegin = false;
    sqlite3_stmt* begin = Prepare("BEGIN");
    if (!begin) return;
    int rc = sqlite3_step(begin);
    sqlite3_reset(begin);
    if (rc == SQLITE_DONE)
        began = true;
    else
        Fail(rc);
}

void HiveDatabase::Watch(Watched& watched, const std::string& database) {
    watched.header = nullptr;
    int fd = open((database + "-shm").c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    struct stat st;
    // The index is mapped whole by SQLite's own connection first; a smaller file is not one in use.
    if (fstat(fd, &st) == 0 && st.st_size >= 4096) {
        void* mapped = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fd, 0);
        if (mapped != MAP_FAILED) watched.header = static_cast<const uint8_t*>(mapped);
    }
    close(fd);
    Changed(watched);
}

void HiveDatabase::WatchChanges() {
    Watch(watched_[0], path);
    if (!volatilePath.empty()) Watch(watched_[1], volatilePath);
}

bool HiveDatabase::Differs(const Watched& watched, uint64_t (&now)[6]) {
    if (!watched.header) return true;
    const auto* words = reinterpret_cast<const uint64_t*>(watched.header);
    for (int i = 0; i < 6; ++i) now[i] = __atomic_load_n(words + i, __ATOMIC_ACQUIRE);
    return memcmp(now, watched.seen, sizeof now) != 0;
}

bool HiveDatabase::Changed(Watched& watched) {
    uint64_t now[6];
    if (!Differs(watched, now)) return false;
    if (watched.header) memcpy(watched.seen, now, sizeof now);
    return true;
}

void HiveDatabase::CheckForChanges() {
    bool changed = Changed(watched_[0]);
    if (!volatilePath.empty()) changed = Changed(watched_[1]) || changed;
    if (changed || keys_.size() + values_.size() + cursors_.size() > kMostKept) Forget();
}

bool HiveDatabase::Unchanged() const {
    uint64_t now[6];
    return !Differs(watched_[0], now) && (volatilePath.empty() || !Differs(watched_[1], now));
}

void HiveDatabase::Forget() {
    keys_.clear();
    values_.clear();
    cursors_.clear();
}

// A cursor serves only a call that reads, for its own index again (a caller that asks for the
// size first) or for the next one, and only while no process has committed since the call
// checked: the step from it is then taken in the same state of the databases as the walk so far,
// and finds what counting from the start would.
bool HiveDatabase::CursorAt(const std::string& kept, size_t index, Cursor*& cursor) {
    cursor = nullptr;
    if (!caching) return false;
    auto found = cursors_.find(kept);
    if (found == cursors_.end() || (found->second.index != index && found->second.index + 1 != index)) return false;
    cursor = &found->second;
    return true;
}

void HiveDatabase::KeepCursor(std::string kept, Cursor cursor) {
    if (caching) cursors_.insert_or_assign(std::move(kept), std::move(cursor));
}

void HiveDatabase::Fail(int code) {
    if (failed_) return;
    failed_ = code;
    failure_ = db ? sqlite3_errmsg(db) : sqlite3_errstr(code);
}

sqlite3_stmt* HiveDatabase::Prepare(const char* sql) {
    for (const auto& [text, stmt] : statements_)
        if (text == sql) return stmt;
    sqlite3_stmt* stmt = nullptr;
    int rc = sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
    if (rc != SQLITE_OK) {
        Fail(rc);
        return nullptr;
    }
    statements_.emplace_back(sql, stmt);
    return stmt;
}

void HiveDatabase::Close(bool keepJournal) {
    for (Watched& watched : watched_) {
        if (watched.header) munmap(const_cast<uint8_t*>(watched.header), 4096);
        watched = Watched{};
    }
    Forget();
    pendingBegin = began = false;
    for (const auto& entry : statements_) sqlite3_finalize(entry.second);
    statements_.clear();
    if (db) {
        // A database that was moved away must not take the journal of the one now at its path.
        int persist = keepJournal ? 1 : 0;
        sqlite3_file_control(db, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
        sqlite3_file_control(db, "vol", SQLITE_FCNTL_PERSIST_WAL, &persist);
        sqlite3_close_v2(db);
        db = nullptr;
    }
}

bool HiveDatabase::FindKey(int64_t id, bool isVolatile, KeyRow* row) {
    std::string kept = caching ? CacheKey('k', id, isVolatile) : std::string();
    if (caching)
        if (auto hit = keys_.find(kept); hit != keys_.end()) {
            if (row && hit->second) *row = *hit->second;
            return hit->second.has_value();
        }
    Query q(*this, isVolatile ? "SELECT " ZEL_KEY_COLUMNS " FROM vol.keys WHERE id = ?1"
                              : "SELECT " ZEL_KEY_COLUMNS " FROM main.keys WHERE id = ?1");
    std::optional<KeyRow> found;
    if (q.Int(id).Row()) {
        found.emplace();
        found->id = id;
        found->isVolatile = isVolatile;
        ReadKeyColumns(q, 0, *found);
    }
    if (failed_) return false;
    if (row && found) *row = *found;
    if (caching) keys_.emplace(std::move(kept), found);
    return found.has_value();
}

bool HiveDatabase::FindChild(int64_t parent, std::u16string_view name, KeyRow* row) {
    std::string folded = FoldedKey(name);
    std::string kept = caching ? CacheKey('c', parent, false, folded) : std::string();
    if (caching)
        if (auto hit = keys_.find(kept); hit != keys_.end()) {
            if (row && hit->second) *row = *hit->second;
            return hit->second.has_value();
        }
    Query q(*this, "SELECT id, 0, " ZEL_KEY_COLUMNS
                   " FROM main.keys WHERE parent = ?1 AND folded = ?2 "
                   "UNION ALL SELECT id, 1, " ZEL_KEY_COLUMNS " FROM vol.keys WHERE parent = ?1 AND folded = ?2");
    std::optional<KeyRow> found;
    if (q.Int(parent).Folded(folded).Row()) {
        found.emplace();
        found->id = q.IntAt(0);
        found->isVolatile = q.IntAt(1) != 0;
        ReadKeyColumns(q, 2, *found);
    }
    if (failed_) return false;
    if (row && found) *row = *found;
    const bool exists = found.has_value();
    if (caching) keys_.emplace(std::move(kept), std::move(found));
    return exists;
}

bool HiveDatabase::ChildFrom(int64_t parent, const std::string& from, bool past, std::string& folded,
                             std::u16string& name) {
    // Each database in its index from the cursor on, and the lower of the two.
    static const char* const kPast[] = {
        "SELECT folded, name FROM main.keys WHERE parent = ?1 AND folded > ?2 ORDER BY folded LIMIT 1",
        "SELECT folded, name FROM vol.keys WHERE parent = ?1 AND folded > ?2 ORDER BY folded LIMIT 1"};
    static const char* const kAt[] = {
        "SELECT folded, name FROM main.keys WHERE parent = ?1 AND folded >= ?2 ORDER BY folded LIMIT 1",
        "SELECT folded, name FROM vol.keys WHERE parent = ?1 AND folded >= ?2 ORDER BY folded LIMIT 1"};
    bool found = false;
    for (const char* sql : past ? kPast : kAt) {
        Query q(*this, sql);
        if (!q.Int(parent).Folded(from).Row()) continue;
        std::string candidate = q.BytesAsText(0);
        if (found && candidate >= folded) continue;
        folded = std::move(candidate);
        name = q.TextAt(1);
        found = true;
    }
    return found;
}

bool HiveDatabase::ChildAt(int64_t parent, size_t index, std::u16string& name) {
    const std::string kept = caching ? CacheKey('e', parent, false) : std::string();
    Cursor* cursor = nullptr;
    if (CursorAt(kept, index, cursor)) {
        std::string folded;
        const bool found = ChildFrom(parent, cursor->folded, cursor->index != index, folded, name);
        // A commit since the check may have moved what lies before the cursor.
        if (!failed_ && Unchanged()) {
            if (!found) return false;
            cursor->index = index;
            cursor->folded = std::move(folded);
            return true;
        }
        cursors_.erase(kept);
    }
    Query q(*this,
            "SELECT name, folded FROM (SELECT folded, name FROM main.keys WHERE parent = ?1 "
            "UNION ALL SELECT folded, name FROM vol.keys WHERE parent = ?1) ORDER BY "
            "folded LIMIT 1 OFFSET ?2");
    if (!q.Int(parent).Int(static_cast<int64_t>(index)).Row()) return false;
    name = q.TextAt(0);
    KeepCursor(kept, Cursor{index, q.BytesAsText(1), 0});
    return true;
}

bool HiveDatabase::HasChildren(int64_t parent) {
    Query q(*this,
            "SELECT EXISTS (SELECT 1 FROM main.keys WHERE parent = ?1) OR "
            "EXISTS (SELECT 1 FROM vol.keys WHERE parent = ?1)");
    return q.Int(parent).Row() && q.IntAt(0) != 0;
}

bool HiveDatabase::AddKey(const KeyRow& parent, std::u16string_view name, bool isVolatile,
                          const std::u16string& keyClass, KeyRow& made) {
    made = KeyRow{};
    made.id = FreshId();
    made.parent = parent.id;
    made.isVolatile = isVolatile;
    made.name = name;
    made.keyClass = keyClass;
    made.lastWrite = NowFileTime();
    Query q(*this, isVolatile ? "INSERT INTO vol.keys (id, parent, folded, name, class, "
                                "written) VALUES (?1, ?2, ?3, ?4, ?5, ?6)"
                              : "INSERT INTO main.keys (id, parent, folded, name, "
                                "class, written) VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
    q.Int(made.id).Int(parent.id).Folded(FoldedKey(name)).Text(name).Text(keyClass);
    q.Int(static_cast<int64_t>(made.lastWrite)).Run();
    return !failed_;
}

void HiveDatabase::DeleteKey(const KeyRow& key) {
    Query(*this, key.isVolatile ? "DELETE FROM vol.vals WHERE key = ?1" : "DELETE FROM main.vals WHERE key = ?1")
        .Int(key.id)
        .Run();
    Query(*this, key.isVolatile ? "DELETE FROM vol.keys WHERE id = ?1" : "DELETE FROM main.keys WHERE id = ?1")
        .Int(key.id)
        .Run();
}

void HiveDatabase::Touch(int64_t id, bool isVolatile) {
    Query(*this, isVolatile ? "UPDATE vol.keys SET written = ?2 WHERE id = ?1"
                            : "UPDATE main.keys SET written = ?2 WHERE id = ?1")
        .Int(id)
        .Int(static_cast<int64_t>(NowFileTime()))
        .Run();
}

KeyCounts HiveDatabase::Counts(const KeyRow& key) {
    KeyCounts counts;
    {
        Query q(*this,
                "SELECT count(*), max(length(name)), max(length(class)) "
                "FROM (SELECT name, class FROM main.keys "
                "WHERE parent = ?1 UNION ALL SELECT name, class FROM "
                "vol.keys WHERE parent = ?1)");
        if (q.Int(key.id).Row()) {
            counts.subKeys = static_cast<size_t>(q.IntAt(0));
            counts.longestSubKey = static_cast<size_t>(q.IntAt(1)) / sizeof(char16_t);
            counts.longestClass = static_cast<size_t>(q.IntAt(2)) / sizeof(char16_t);
        }
    }
    Query q(*this, key.isVolatile ? "SELECT count(*), max(length(name)), max(length(data)), max(written) "
                                    "FROM vol.vals WHERE key = ?1"
                                  : "SELECT count(*), max(length(name)), max(length(data)), max(written) "
                                    "FROM main.vals WHERE key = ?1");
    if (q.Int(key.id).Row()) {
        counts.values = static_cast<size_t>(q.IntAt(0));
        counts.longestValueName = static_cast<size_t>(q.IntAt(1)) / sizeof(char16_t);
        counts.largestData = static_cast<size_t>(q.IntAt(2));
        counts.lastWrite = std::max(key.lastWrite, static_cast<uint64_t>(q.IntAt(3)));
    }
    return counts;
}

bool HiveDatabase::FindValue(const KeyRow& key, std::u16string_view name, RegValue* value) {
    std::string folded = FoldedKey(name);
    std::string kept = caching ? CacheKey('v', key.id, key.isVolatile, folded) : std::string();
    if (caching)
        if (auto hit = values_.find(kept); hit != values_.end()) {
            if (value && hit->second) *value = *hit->second;
            return hit->second.has_value();
        }
    Query q(*this, key.isVolatile ? "SELECT name, type, data FROM vol.vals WHERE key = ?1 AND folded = ?2"
                                  : "SELECT name, type, data FROM main.vals WHERE key = ?1 AND folded = ?2");
    std::optional<RegValue> found;
    if (q.Int(key.id).Folded(folded).Row()) {
        found.emplace();
        ReadValueColumns(q, *found);
    }
    if (failed_) return false;
    if (value && found) *value = *found;
    const bool exists = found.has_value();
    if (caching) values_.emplace(std::move(kept), std::move(found));
    return exists;
}

bool HiveDatabase::ValueAt(const KeyRow& key, size_t index, RegValue& value) {
    const std::string kept = caching ? CacheKey('f', key.id, key.isVolatile) : std::string();
    Cursor* cursor = nullptr;
    if (CursorAt(kept, index, cursor)) {
        Query q(*this, key.isVolatile ? "SELECT name, type, data, seq FROM vol.vals WHERE key = ?1 AND seq > ?2 "
                                        "ORDER BY seq LIMIT 1"
                                      : "SELECT name, type, data, seq FROM main.vals WHERE key = ?1 AND seq > ?2 "
                                        "ORDER BY seq LIMIT 1");
        // seq > seq - 1 reads the cursor's own value again.
        const bool found = q.Int(key.id).Int(cursor->index != index ? cursor->seq : cursor->seq - 1).Row();
        // As for sub-keys: a commit since the check sends the call back to counting.
        if (!failed_ && Unchanged()) {
            if (!found) return false;
            ReadValueColumns(q, value);
            cursor->index = index;
            cursor->seq = q.IntAt(3);
            return true;
        }
        cursors_.erase(kept);
    }
    Query q(*this, key.isVolatile ? "SELECT name, type, data, seq FROM vol.vals WHERE key = ?1 "
                                    "ORDER BY seq LIMIT 1 OFFSET ?2"
                                  : "SELECT name, type, data, seq FROM main.vals WHERE key = ?1 "
                                    "ORDER BY seq LIMIT 1 OFFSET ?2");
    if (!q.Int(key.id).Int(static_cast<int64_t>(index)).Row()) return false;
    ReadValueColumns(q, value);
    KeepCursor(kept, Cursor{index, {}, q.IntAt(3)});
    return true;
}

void HiveDatabase::SetValue(const KeyRow& key, std::u16string_view name, DWORD type, const BYTE* data, DWORD size) {
    // A value set again keeps its name as first written and its place in the order of creation. Its
    // time of writing stands for its key's, which then need not be written as well.
    Query q(*this, key.isVolatile
                       ? "INSERT INTO vol.vals (key, folded, seq, name, type, data, written) VALUES (?1, ?2, "
                         "(SELECT coalesce(max(seq), 0) + 1 FROM vol.vals WHERE key = ?1), ?3, ?4, ?5, ?6) "
                         "ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data, "
                         "written = excluded.written"
                       : "INSERT INTO main.vals (key, folded, seq, name, type, data, written) VALUES (?1, ?2, "
                         "(SELECT coalesce(max(seq), 0) + 1 FROM main.vals WHERE key = ?1), ?3, ?4, ?5, ?6) "
                         "ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data, "
                         "written = excluded.written");
    q.Int(key.id).Folded(FoldedKey(name)).Text(name).Int(type).Bytes(data, size);
    q.Int(static_cast<int64_t>(NowFileTime())).Run();
}

bool HiveDatabase::DeleteValue(const KeyRow& key, std::u16string_view name) {
    Query(*this, key.isVolatile ? "DELETE FROM vol.vals WHERE key = ?1 AND folded = ?2"
                                : "DELETE FROM main.vals WHERE key = ?1 AND folded = ?2")
        .Int(key.id)
        .Folded(FoldedKey(name))
        .Run();
    return sqlite3_changes(db) > 0;
}

void HiveDatabase::ReadSubtree(const KeyRow& key, RegKey& top) {
    top.keyClass = key.keyClass;
    top.lastWrite = Counts(key).lastWrite;
    top.isVolatile = key.isVolatile;
    top.id = static_cast<uint64_t>(key.id);
    RegValue value;
    for (size_t i = 0; ValueAt(key, i, value); ++i) top.values.push_back(std::move(value));
    std::vector<KeyRow> children;
    {
        Query q(*this, "SELECT id, 0, " ZEL_KEY_COLUMNS
                       " FROM main.keys WHERE parent = ?1 "
                       "UNION ALL SELECT id, 1, " ZEL_KEY_COLUMNS " FROM vol.keys WHERE parent = ?1");
        q.Int(key.id);
        while (q.Row()) {
            KeyRow& row = children.emplace_back();
            row.id = q.IntAt(0);
            row.isVolatile = q.IntAt(1) != 0;
            ReadKeyColumns(q, 2, row);
        }
    }
    for (const KeyRow& child : children) {
        if (failed_) return;
        RegKey* sub = top.AddSubKey(child.name, static_cast<uint64_t>(child.id), child.isVolatile);
        ReadSubtree(child, *sub);
    }
}

void HiveDatabase::WriteTree(const RegKey& top, int64_t id) {
    int64_t seq = 0;
    for (const RegValue& value : top.values) {
        Query(*this,
              "INSERT OR REPLACE INTO main.vals (key, folded, seq, name, type, data, written) "
              "VALUES (?1, ?2, ?3, ?4, ?5, ?6, 0)")
            .Int(id)
            .Folded(FoldedKey(value.name))
            .Int(++seq)
            .Text(value.name)
            .Int(value.type)
            .Bytes(value.data.data(), value.data.size())
            .Run();
    }
    for (const auto& entry : top.subKeys) {
        const RegKey& sub = *entry.second;
        auto subId = static_cast<int64_t>(sub.id & 0x7FFFFFFFFFFFFFFFull);
        if (subId == kRootId || FindKey(subId, false, nullptr)) subId = FreshId();
        Query(*this,
              "INSERT INTO main.keys (id, parent, folded, name, class, "
              "written) VALUES (?1, ?2, ?3, ?4, ?5, ?6)")
            .Int(subId)
            .Int(id)
            .Folded(FoldedKey(sub.name))
            .Text(sub.name)
            .Text(sub.keyClass)
            .Int(static_cast<int64_t>(sub.lastWrite))
            .Run();
        if (failed_) return;
        WriteTree(sub, subId);
    }
}

}  // namespace zelreg
