// The main group: Unicode to KChar from the "gen", "com", "pua" and "cjk" files, and the two
// reverse tables built from them.
#include <pthread.h>

#include <atomic>
#include <cstdlib>

#include "codetables/code_table_file.h"
#include "codetables/code_table_groups.h"
#include "codetables/code_tables.h"

WORD* Uni2KCharGenTbl = nullptr;
WORD* Uni2KCharComTbl = nullptr;
WORD* Uni2KCharPuaTbl = nullptr;
WORD* Uni2KCharCjkTbl = nullptr;
WORD* KChar2UniGenTbl = nullptr;
WORD* KChar2UniCjkTbl = nullptr;

std::atomic<int> g_zelMainTableState{kZelTableNotTried};
pthread_mutex_t g_zelMainTableLock = PTHREAD_MUTEX_INITIALIZER;

namespace {

constexpr DWORD kGenCount = 16384;
constexpr DWORD kComCount = 3328;
constexpr DWORD kPuaRecords = 6400;
constexpr DWORD kCjkCount = 28416;
constexpr WORD kCjkKCharFirst = 0x4000;
constexpr WORD kCjkKCharLast = 0xAEFF;

// The six tables while they are built; published together when the group is complete.
struct MainTables {
    WORD* forward[4] = {};  // gen, com, pua, cjk
    WORD* genReverse = nullptr;
    WORD* cjkReverse = nullptr;

    void FreeAll() {
        for (WORD*& table : forward) {
            std::free(table);
            table = nullptr;
        }
        std::free(genReverse);
        std::free(cjkReverse);
        genReverse = cjkReverse = nullptr;
    }
};

DWORD RequiredCount(int kind) {
    switch (kind) {
        case kZelKindGen: return kGenCount;
        case kZelKindCom: return kComCount;
        case kZelKindPua: return kPuaRecords;
        default: return kCjkCount;
    }
}

// The code point that element (record, for "pua") i of a kind's payload stands for.
WORD CodePointOf(int kind, DWORD i) {
    switch (kind) {
        case kZelKindGen: return static_cast<WORD>(i);
        case kZelKindCom: return static_cast<WORD>(i < 0x700 ? 0xA000 + i : i < 0x800 ? 0xA100 + i : 0xF300 + i);
        case kZelKindPua: return static_cast<WORD>(0xE000 + i);
        default: return static_cast<WORD>(i < 0x6C00 ? 0x3400 + i : i < 0x6D00 ? 0x3B00 + i : 0x8C00 + i);
    }
}

// Stores each code point at its KChar in the reverse table; a later store overwrites, so the
// highest code point of a walk wins.
void WalkIntoReverse(int kind, const WORD* table, DWORD records, MainTables& tables) {
    DWORD stride = kind == kZelKindPua ? 4 : 1;
    for (DWORD i = 0; i < records; ++i) {
        WORD kchar = table[i * stride];
        if (kchar == kZelNoKChar) continue;
        if (kind == kZelKindCjk) {
            if (kchar >= kCjkKCharFirst && kchar <= kCjkKCharLast)
                tables.cjkReverse[kchar - kCjkKCharFirst] = CodePointOf(kind, i);
        } else if (tables.genReverse && kchar < kCjkKCharFirst) {
            tables.genReverse[kchar] = CodePointOf(kind, i);
        }
    }
}

// Reads one kind into tables; false makes the whole load fail.
bool LoadMainKind(int kind, int number, const WCHAR* path, MainTables& tables) {
    int descriptor = ZelOpenTableFileWide(path);
    if (descriptor < 0) return false;
    CZelIOFileDesc file(1234);
    file.Attach(descriptor);
    ZelTableHeader header;
    bool good = ZelReadTableHeader(file, number, &header) && header.count == RequiredCount(kind);
    if (!good) {
        ZelCloseTableFile(descriptor);
        return false;
    }
    DWORD records = header.count;
    DWORD count = kind == kZelKindPua ? records * 4 : records;
    WORD* table = static_cast<WORD*>(std::malloc(count * sizeof(WORD)));
    WORD* reverse = static_cast<WORD*>(std::malloc(count * sizeof(WORD)));
    if (!table || !reverse) {
        std::free(table);
        std::free(reverse);
        ZelCloseTableFile(descriptor);
        return false;
    }
    for (DWORD i = 0; i < count; ++i) {
        table[i] = kZelNoKChar;
        reverse[i] = kZelNoUnicode;
    }
    ZelReadTableWords(file, header.payloadOffset, table, count);
    ZelCloseTableFile(descriptor);

    tables.forward[kind] = table;
    if (kind == kZelKindGen) {
        tables.genReverse = reverse;
    } else if (kind == kZelKindCjk) {
        tables.cjkReverse = reverse;
    } else {
        std::free(reverse);  // "com" and "pua" map back through the "gen" reverse table
    }
    WalkIntoReverse(kind, table, records, tables);
    return true;
}

int LoadLocked() {
    g_zelMainTableState.store(kZelTableBusyOrFailed, std::memory_order_release);
    int number = 0;
    MainTables tables;
    for (int kind = kZelKindGen; kind <= kZelKindCjk; ++kind) {
        WCHAR path[MAX_PATH];
        // The first file found fixes the number; every later kind must exist under it.
        if (!FindCodeTableFile(kind, &number, path)) continue;
        if (!LoadMainKind(kind, number, path, tables)) {
            tables.FreeAll();
            return kZelTableBusyOrFailed;
        }
    }
    if (!tables.forward[kZelKindGen] || !tables.forward[kZelKindCjk]) {
        tables.FreeAll();
        return kZelTableBusyOrFailed;
    }
    Uni2KCharGenTbl = tables.forward[kZelKindGen];
    Uni2KCharComTbl = tables.forward[kZelKindCom];
    Uni2KCharPuaTbl = tables.forward[kZelKindPua];
    Uni2KCharCjkTbl = tables.forward[kZelKindCjk];
    KChar2UniGenTbl = tables.genReverse;
    KChar2UniCjkTbl = tables.cjkReverse;
    // The variants merge into the "cjk" table, so they are read before the group is published:
    // once the state is 2, nothing of the group is written again.
    LoadVariantTbls(number);
    g_zelMainTableState.store(kZelTableReady, std::memory_order_release);
    LoadAuxTbl();
    LoadUniYi2UniSurrogatePuaTbl();
    return kZelTableReady;
}

}  // namespace

int LoadUnicodeTbl() {
    int state = g_zelMainTableState.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    ZelTableLockGuard guard(&g_zelMainTableLock);
    state = g_zelMainTableState.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    return LoadLocked();
}

int ZelMainTableState() { return g_zelMainTableState.load(std::memory_order_acquire); }
