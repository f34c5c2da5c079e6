// The tables of the six code pages: Mb2UniTbl from the file and Uni2MbTbl built from it.
#include <pthread.h>

#include <atomic>
#include <cstdlib>

#include "codetables/code_table_file.h"
#include "codetables/code_table_groups.h"
#include "codetables/code_tables.h"
#include "codetables/gb_four_byte_runs.h"

namespace {

constexpr WORD kNoByte = 0x003F;

struct CodePageSlot {
    UINT codePage;
    int kind;
    WORD firstCode;
    std::atomic<int> state;
    pthread_mutex_t lock;
    ZelCodePageTables tables;
};

CodePageSlot g_slots[] = {
    {949, kZelKind949, 0x8140, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
    {1361, kZelKind1361, 0x802B, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
    {932, kZelKind932, 0x8140, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
    {936, kZelKind936, 0x8130, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
    {950, kZelKind950, 0xA140, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
    {9566, kZelKind9566, 0xA1A0, {0}, PTHREAD_MUTEX_INITIALIZER, {}},
};

CodePageSlot* SlotOf(UINT codePage) {
    for (CodePageSlot& slot : g_slots)
        if (slot.codePage == codePage) return &slot;
    return nullptr;
}

// Code page 936: the code points with a four-byte form carry one marker toward the code page,
// and every two bytes that open a four-byte sequence carry another toward Unicode.
void PlaceFourByteMarkers(WORD* mb2Uni, DWORD mb2UniCount, WORD* uni2Mb) {
    for (const ZelFourByteRun& run : kZelFourByteRuns)
        for (DWORD i = 0; i < run.count && run.first + i <= 0xFFFF; ++i) uni2Mb[run.first + i] = kZel936FourByteMarker;
    for (DWORD k = 0; k <= 125; ++k)
        for (DWORD second = 0x30; second <= 0x39; ++second) {
            DWORD index = k * 256 + (second - 0x30);
            if (index < mb2UniCount) mb2Uni[index] = kZel936OpenerMarker;
        }
}

// Reads the file of the slot's code page; gives the new state, 1 or 2.
int LoadSlot(CodePageSlot& slot) {
    int number = 0;
    WCHAR path[MAX_PATH];
    if (!FindCodeTableFile(slot.kind, &number, path)) return kZelTableBusyOrFailed;
    int descriptor = ZelOpenTableFileNarrow(path);
    if (descriptor < 0) return kZelTableBusyOrFailed;
    CZelIOFileDesc file(1234);
    file.Attach(descriptor);

    ZelTableHeader header;
    if (!ZelReadTableHeader(file, number, &header)) {
        ZelCloseTableFile(descriptor);
        return kZelTableBusyOrFailed;
    }
    // The table always spans F to 0xFFFF, so that a lookup needs no bound of its own: what the
    // file doesn't hold stays 0xFFFD, and what it holds beyond 0xFFFF is never read.
    const DWORD span = 0x10000u - slot.firstCode;
    DWORD count = header.count < span ? header.count : span;
    WORD* mb2Uni = static_cast<WORD*>(std::malloc(span * sizeof(WORD)));
    WORD* uni2Mb = static_cast<WORD*>(std::malloc(0x10000 * sizeof(WORD)));
    if (!mb2Uni || !uni2Mb) {
        std::free(mb2Uni);
        std::free(uni2Mb);
        ZelCloseTableFile(descriptor);
        return kZelTableBusyOrFailed;
    }
    for (DWORD i = 0; i < span; ++i) mb2Uni[i] = kZelNoUnicode;
    for (DWORD i = 0; i < 0x10000; ++i) uni2Mb[i] = kNoByte;
    ZelReadTableWords(file, header.payloadOffset, mb2Uni, count);
    ZelCloseTableFile(descriptor);

    // The lowest code of a code point wins.
    for (DWORD i = 0; i < count; ++i) {
        WORD u = mb2Uni[i];
        if (u != kZelNoUnicode && uni2Mb[u] == kNoByte) uni2Mb[u] = static_cast<WORD>(slot.firstCode + i);
    }
    if (slot.codePage == 936) PlaceFourByteMarkers(mb2Uni, span, uni2Mb);

    slot.tables.mb2Uni = mb2Uni;
    slot.tables.mb2UniCount = span;
    slot.tables.uni2Mb = uni2Mb;
    slot.tables.firstCode = slot.firstCode;
    return kZelTableReady;
}

}  // namespace

WORD ZelFirstCodeOf(UINT codePage) {
    CodePageSlot* slot = SlotOf(codePage);
    return slot ? slot->firstCode : 0;
}

int ZelCodePageTableState(UINT codePage) {
    CodePageSlot* slot = SlotOf(codePage);
    return slot ? slot->state.load(std::memory_order_acquire) : kZelTableBusyOrFailed;
}

const ZelCodePageTables* ZelCodePageTablesOf(UINT codePage) {
    CodePageSlot* slot = SlotOf(codePage);
    if (!slot || slot->state.load(std::memory_order_acquire) != kZelTableReady) return nullptr;
    return &slot->tables;
}

int LoadCodePageTbl(UINT codePage) {
    CodePageSlot* slot = SlotOf(codePage);
    if (!slot) return kZelTableBusyOrFailed;
    ZelTableLockGuard guard(&slot->lock);
    // A ready code page is never read again: its tables may be in use.
    if (slot->state.load(std::memory_order_acquire) == kZelTableReady) return kZelTableReady;
    int state = LoadSlot(*slot);
    slot->state.store(state, std::memory_order_release);
    return state;
}

int EnsureCodePageTbl(UINT codePage) {
    CodePageSlot* slot = SlotOf(codePage);
    if (!slot) return kZelTableBusyOrFailed;
    int state = slot->state.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    // The state changes only when the load has ended; a second thread waits here for it.
    ZelTableLockGuard guard(&slot->lock);
    state = slot->state.load(std::memory_order_acquire);
    if (state != kZelTableNotTried) return state;
    state = LoadSlot(*slot);
    slot->state.store(state, std::memory_order_release);
    return state;
}

void ZelUnloadCodePageTables() {
    for (CodePageSlot& slot : g_slots) {
        ZelTableLockGuard guard(&slot.lock);
        if (slot.state.load(std::memory_order_acquire) != kZelTableReady) continue;
        slot.state.store(kZelTableNotTried, std::memory_order_release);
        std::free(const_cast<WORD*>(slot.tables.mb2Uni));
        std::free(const_cast<WORD*>(slot.tables.uni2Mb));
        slot.tables = ZelCodePageTables{};
    }
}

void ZelResetCodePageStates() {
    for (CodePageSlot& slot : g_slots) {
        ZelTableLockGuard guard(&slot.lock);
        if (slot.state.load(std::memory_order_acquire) != kZelTableReady)
            slot.state.store(kZelTableNotTried, std::memory_order_release);
    }
}
