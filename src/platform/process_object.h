// Process-wide objects of the library: built at their first use and destroyed at the end of the
// library's unload, never by a constructor or destructor of their own. The library's entry runs at
// load and at unload, before and after whatever the loader and the run-time do with the
// initialisers and destructors of each file, in an order no build fixes; an object that lives in
// a ZelProcessObject is there whenever the entry needs it, and gone, with all it holds, once the
// library is unloaded, so a library that is loaded and unloaded again leaves nothing behind.
#ifndef ZEL_PLATFORM_PROCESS_OBJECT_H
#define ZEL_PLATFORM_PROCESS_OBJECT_H

#include <atomic>
#include <mutex>
#include <new>
#include <thread>

// A lock that is constant-initialised on every system (std::mutex is not where the threads
// library's initialiser is a cast). It guards a build or a release, which happen once.
class ZelProcessObjectLock {
public:
    constexpr ZelProcessObjectLock() = default;
    void lock() {
        while (held_.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() { held_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> held_{false};
};

// Notes an object to destroy at unload; ZelProcessObject calls it when it builds its object.
void ZelPlatformReleaseAtUnload(void (*release)(void*), void* holder);
// Destroys every object noted since load, the one built last first. An object that is used again
// during the release, or afterwards, is built anew and noted again.
void ZelPlatformReleaseProcessObjects();

template <typename T>
class ZelProcessObject {
public:
    constexpr ZelProcessObject() = default;
    ZelProcessObject(const ZelProcessObject&) = delete;
    ZelProcessObject& operator=(const ZelProcessObject&) = delete;

    T& operator*() { return Get(); }
    T* operator->() { return &Get(); }
    T& Get() {
        if (!built.load(std::memory_order_acquire)) Build();
        return *std::launder(reinterpret_cast<T*>(storage));
    }

private:
    void Build() {
        std::lock_guard<ZelProcessObjectLock> guard(lock);
        if (built.load(std::memory_order_relaxed)) return;
        ::new (static_cast<void*>(storage)) T();
        built.store(true, std::memory_order_release);
        ZelPlatformReleaseAtUnload(&Release, this);
    }
    static void Release(void* holder) {
        auto* self = static_cast<ZelProcessObject*>(holder);
        std::lock_guard<ZelProcessObjectLock> guard(self->lock);
        if (!self->built.load(std::memory_order_relaxed)) return;
        std::launder(reinterpret_cast<T*>(self->storage))->~T();
        self->built.store(false, std::memory_order_release);
    }

    alignas(T) unsigned char storage[sizeof(T)] = {};
    std::atomic<bool> built{false};
    ZelProcessObjectLock lock;
};

#endif  // ZEL_PLATFORM_PROCESS_OBJECT_H
