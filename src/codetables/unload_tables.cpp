// Releasing the code tables: at process detach, and between the cases of the tests.
#include <atomic>
#include <cstdlib>

#include "codetables/code_table_groups.h"
#include "codetables/code_tables.h"

namespace {

template <typename T>
void FreeTable(T*& table) {
    std::free(table);
    table = nullptr;
}

void UnloadMainGroup() {
    ZelTableLockGuard guard(&g_zelMainTableLock);
    if (g_zelMainTableState.load(std::memory_order_acquire) != kZelTableReady) return;
    g_zelMainTableState.store(kZelTableNotTried, std::memory_order_release);
    FreeTable(Uni2KCharGenTbl);
    FreeTable(Uni2KCharComTbl);
    FreeTable(Uni2KCharPuaTbl);
    FreeTable(Uni2KCharCjkTbl);
    FreeTable(KChar2UniGenTbl);
    FreeTable(KChar2UniCjkTbl);
    FreeTable(ChsVariantTbl);
    FreeTable(JpnVariantTbl);
    FreeTable(ChtVariantTbl);
    FreeTable(KorVariantTbl);
    FreeTable(Uni2KCharExtraTbl);
    FreeTable(KChar2UniExtraTbl);
    ChsVariantCount = JpnVariantCount = ChtVariantCount = KorVariantCount = 0;
    Uni2KCharExtraCount = KChar2UniExtraCount = 0;
    {
        ZelTableLockGuard auxGuard(&g_zelAuxTableLock);
        if (g_zelAuxTableState.load(std::memory_order_acquire) == kZelTableReady) {
            g_zelAuxTableState.store(kZelTableNotTried, std::memory_order_release);
            FreeTable(AuxPairTbl);
            AuxPairCount = 0;
        }
    }
    ZelTableLockGuard yiGuard(&g_zelYiPuaTableLock);
    if (g_zelYiPuaTableState.load(std::memory_order_acquire) == kZelTableReady) {
        g_zelYiPuaTableState.store(kZelTableNotTried, std::memory_order_release);
        FreeTable(YiPuaTbl);
        YiPuaCount = 0;
    }
}

}  // namespace

void UnloadUnicodeTbl() {
    // A group in state 1 stays so: a failed load is not tried again.
    UnloadMainGroup();
    ZelUnloadCodePageTables();
}

void ZelResetCodeTablesForTest() {
    UnloadUnicodeTbl();
    g_zelMainTableState.store(kZelTableNotTried, std::memory_order_release);
    g_zelAuxTableState.store(kZelTableNotTried, std::memory_order_release);
    g_zelYiPuaTableState.store(kZelTableNotTried, std::memory_order_release);
    ZelResetCodePageStates();
}
