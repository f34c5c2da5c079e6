// An object of each thread, made at its first use and destroyed at the thread's end. It hangs on a
// thread key rather than being a thread_local object, so that the exit handlers of a thread (the
// library's thread detach among them) may still use it.
#ifndef ZEL_PLATFORM_POSIX_THREAD_OBJECT_H
#define ZEL_PLATFORM_POSIX_THREAD_OBJECT_H

#include <pthread.h>

// The calling thread's T; each type T has one object per thread.
template <typename T>
T& ZelThreadObject() {
    static thread_local T* current = nullptr;
    static pthread_key_t key;
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    if (!current) {
        pthread_once(&once, [] {
            pthread_key_create(&key, [](void* object) {
                delete static_cast<T*>(object);
                current = nullptr;
            });
        });
        current = new T;
        pthread_setspecific(key, current);
    }
    return *current;
}

#endif  // ZEL_PLATFORM_POSIX_THREAD_OBJECT_H
