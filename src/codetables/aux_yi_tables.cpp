// The two tables that come with the main group but have files of their own number: the pairs of
// the auxiliary area ("aux") and the code points of U+A700 to U+A7FF ("zel").
#include <pthread.h>

#include <atomic>
#include <cstdlib>

#include "codetables/code_table_file.h"
#include "codetables/code_table_groups.h"
#include "codetables/code_tables.h"

WORD* AuxPairTbl = nullptr;
DWORD AuxPairCount = 0;
DWORD* YiPuaTbl = nullptr;
DWORD YiPuaCount = 0;

std::atomic<int> g_zelAuxTableState{kZelTableNotTried};
std::atomic<int> g_zelYiPuaTableState{kZelTableNotTried};
pthread_mutex_t g_zelAuxTableLock = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t g_zelYiPuaTableLock = PTHREAD_MUTEX_INITIALIZER;

namespace {

// Opens the highest-numbered file of the kind and reads its header; -1 when there is none or
// the header is bad. elementSize bounds the count by what the file holds, so that a wild count
// can't ask for more memory than the file could fill.
int OpenWithHeader(int kind, DWORD elementSize, CZelIOFileDesc& file, ZelTableHeader* header, DWORD* kept) {
    int number = 0;
    WCHAR path[MAX_PATH];
    if (!FindCodeTableFile(kind, &number, path)) return -1;
    int descriptor = ZelOpenTableFileWide(path);
    if (descriptor < 0) return -1;
    file.Attach(descriptor);
    if (!ZelReadTableHeader(file, number, header)) {
        ZelCloseTableFile(descriptor);
        return -1;
    }
    DWORD held = ZelTableElementsInFile(file, header->payloadOffset, elementSize);
    *kept = header->count < held ? header->count : held;
    return descriptor;
}

// The table becomes ready only while the main group is ready; otherwise it is dropped and its
// state stays 1.
template <typename T>
int Publish(T* table, DWORD count, T** tableOut, DWORD* countOut, std::atomic<int>& state) {
    if (g_zelMainTableState.load(std::memory_order_acquire) != kZelTableReady) {
        std::free(table);
        return kZelTableBusyOrFailed;
    }
    *tableOut = table;
    *countOut = count;
    state.store(kZelTableReady, std::memory_order_release);
    return kZelTableReady;
}

int LoadAuxLocked() {
    g_zelAuxTableState.store(kZelTableBusyOrFailed, std::memory_order_release);
    CZelIOFileDesc file(1234);
    ZelTableHeader header;
    DWORD count = 0;
    int descriptor = OpenWithHeader(kZelKindAux, sizeof(WORD), file, &header, &count);
    if (descriptor < 0) return kZelTableBusyOrFailed;
    WORD* units = static_cast<WORD*>(std::malloc((count ? count : 1) * sizeof(WORD)));
    if (!units) {
        ZelCloseTableFile(descriptor);
        return kZelTableBusyOrFailed;
    }
    for (DWORD i = 0; i + 1 < count; i += 2) {
        units[i] = kZelNoUnicode;
        units[i + 1] = kZelNoKChar;
    }
    if (count % 2) units[count - 1] = kZelNoUnicode;
    ZelReadTableWords(file, header.payloadOffset, units, count);
    ZelCloseTableFile(descriptor);
    return Publish(units, count, &AuxPairTbl, &AuxPairCount, g_zelAuxTableState);
}

int LoadYiPuaLocked() {
    g_zelYiPuaTableState.store(kZelTableBusyOrFailed, std::memory_order_release);
    CZelIOFileDesc file(1234);
    ZelTableHeader header;
    DWORD count = 0;
    int descriptor = OpenWithHeader(kZelKindZel, sizeof(DWORD), file, &header, &count);
    if (descriptor < 0) return kZelTableBusyOrFailed;
    DWORD* values = static_cast<DWORD*>(std::malloc((count ? count : 1) * sizeof(DWORD)));
    if (!values) {
        ZelCloseTableFile(descriptor);
        return kZelTableBusyOrFailed;
    }
    // What can't be read doesn't count, so a lookup beyond it finds no mapping.
    count = ZelReadTableDwords(file, header.payloadOffset, values, count);
    ZelCloseTableFile(descriptor);
    return Publish(values, count, &YiPuaTbl, &YiPuaCount, g_zelYiPuaTableState);
}

}  // namespace

int LoadAuxTbl() {
    int state = g_zelAuxTableState.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    ZelTableLockGuard guard(&g_zelAuxTableLock);
    state = g_zelAuxTableState.load(std::memory_order_acquire);
    return state != kZelTableNotTried ? state : LoadAuxLocked();
}

int LoadUniYi2UniSurrogatePuaTbl() {
    int state = g_zelYiPuaTableState.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    ZelTableLockGuard guard(&g_zelYiPuaTableLock);
    state = g_zelYiPuaTableState.load(std::memory_order_acquire);
    return state != kZelTableNotTried ? state : LoadYiPuaLocked();
}

int ZelAuxTableState() { return g_zelAuxTableState.load(std::memory_order_acquire); }
int ZelYiPuaTableState() { return g_zelYiPuaTableState.load(std::memory_order_acquire); }
