// Thread slots on POSIX thread keys, and the entry point's process and thread notifications.
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

#include <mutex>

#include "platform/process_object.h"
#include "platform/win32.h"

namespace {

// Win32 hands out small slot numbers; each stands for one POSIX key. The table is plain data: the
// detach at unload may run after the library's static objects are gone.
struct Slot {
    pthread_key_t key;
    bool used;
};
constexpr size_t kMaxSlots = 1088;  // as many as Win32 offers a process
std::mutex slotLock;
Slot slots[kMaxSlots];
size_t slotCount = 0;  // slots ever handed out; the ones above are unused

// A thread that stored something in a slot gets a thread detach when it ends. The key's value is
// only a mark; its destructor runs the entry point for that thread. A thread that never used a
// slot costs nothing at its end.
pthread_key_t exitKey;
bool exitKeyReady = false;

HMODULE ownModule = nullptr;

void OnThreadExit(void*) { DllMain(reinterpret_cast<HINSTANCE>(ownModule), DLL_THREAD_DETACH, nullptr); }

bool SlotKey(DWORD index, pthread_key_t* key) {
    std::lock_guard<std::mutex> guard(slotLock);
    if (index >= slotCount || !slots[index].used) return false;
    *key = slots[index].key;
    return true;
}

// Where this very code was loaded from. A handle of the dynamic loader is the module's link map.
HMODULE FindOwnModule() {
    Dl_info info;
    struct link_map* map = nullptr;
    if (dladdr1(reinterpret_cast<void*>(&FindOwnModule), &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) &&
        map)
        return reinterpret_cast<HMODULE>(map);
    return reinterpret_cast<HMODULE>(dlopen(nullptr, RTLD_LAZY));
}

}  // namespace

HMODULE ZelPlatformOwnModule() {
    if (!ownModule) ownModule = FindOwnModule();
    return ownModule;
}

void ZelPlatformProcessAttach() {
    ZelPlatformOwnModule();
    exitKeyReady = pthread_key_create(&exitKey, OnThreadExit) == 0;
    DllMain(reinterpret_cast<HINSTANCE>(ownModule), DLL_PROCESS_ATTACH, nullptr);
}

void ZelPlatformProcessDetach() {
    DllMain(reinterpret_cast<HINSTANCE>(ownModule), DLL_PROCESS_DETACH, nullptr);
    // Then the library's process-wide objects go: the registry tree with its keys, the component
    // libraries still loaded, the window map, and the platform's tables.
    ZelPlatformReleaseProcessObjects();
    // Threads still running must not call into a library that is gone.
    if (exitKeyReady) pthread_key_delete(exitKey);
    exitKeyReady = false;
}

DWORD TlsAlloc() {
    std::lock_guard<std::mutex> guard(slotLock);
    size_t index = 0;
    while (index < slotCount && slots[index].used) ++index;
    if (index >= kMaxSlots) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return TLS_OUT_OF_INDEXES;
    }
    pthread_key_t key;
    if (pthread_key_create(&key, nullptr) != 0) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return TLS_OUT_OF_INDEXES;
    }
    if (index == slotCount) ++slotCount;
    slots[index] = {key, true};
    return static_cast<DWORD>(index);
}

BOOL TlsFree(DWORD index) {
    std::lock_guard<std::mutex> guard(slotLock);
    if (index >= slotCount || !slots[index].used) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    pthread_key_delete(slots[index].key);
    slots[index].used = false;
    return TRUE;
}

LPVOID TlsGetValue(DWORD index) {
    pthread_key_t key;
    if (!SlotKey(index, &key)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    return pthread_getspecific(key);
}

BOOL TlsSetValue(DWORD index, LPVOID value) {
    pthread_key_t key;
    if (!SlotKey(index, &key)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (pthread_setspecific(key, value) != 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    if (value && exitKeyReady && !pthread_getspecific(exitKey)) pthread_setspecific(exitKey, &exitKey);
    return TRUE;
}
