// What the loaders of the groups share among themselves: the state words and the locks that
// serialise a first load between threads. Plain data only: process detach may run after the
// static destructors.
#ifndef ZEL_CODETABLES_CODE_TABLE_GROUPS_H
#define ZEL_CODETABLES_CODE_TABLE_GROUPS_H

#include <pthread.h>

#include <atomic>

extern std::atomic<int> g_zelMainTableState;
extern std::atomic<int> g_zelAuxTableState;
extern std::atomic<int> g_zelYiPuaTableState;
extern pthread_mutex_t g_zelMainTableLock;
extern pthread_mutex_t g_zelAuxTableLock;
extern pthread_mutex_t g_zelYiPuaTableLock;

// Locks for the length of a scope.
class ZelTableLockGuard {
public:
    explicit ZelTableLockGuard(pthread_mutex_t* lock) : lock_(lock) { pthread_mutex_lock(lock_); }
    ~ZelTableLockGuard() { pthread_mutex_unlock(lock_); }
    ZelTableLockGuard(const ZelTableLockGuard&) = delete;
    ZelTableLockGuard& operator=(const ZelTableLockGuard&) = delete;

private:
    pthread_mutex_t* lock_;
};

// Frees the tables of every code page in state 2 and sets those states to 0.
void ZelUnloadCodePageTables();
// Sets every code page state to 0 (after ZelUnloadCodePageTables).
void ZelResetCodePageStates();

#endif  // ZEL_CODETABLES_CODE_TABLE_GROUPS_H
