// The process-wide list of component libraries that ZelCoCreateInstance loaded, with their class
// factories, and the count of its users.
#ifndef ZEL_COMPONENT_LIBRARY_CACHE_H
#define ZEL_COMPONENT_LIBRARY_CACHE_H

#include <zel/wintypes.h>

#include <vector>

struct ZelComLibraryRecord {
    WCHAR path[MAX_PATH];  // as ZelPathToAbsolute expanded it
    HMODULE module;
    GUID classId;                  // the class the factory was fetched for; stored, never compared
    IClassFactory* classFactory;   // no reference of its own: the library keeps it valid
};

// No lock: callers keep its operations to one thread at a time.
class ZelComLibraryCache {
public:
    ZelComLibraryCache() = default;
    ZelComLibraryCache(const ZelComLibraryCache&) = delete;
    ZelComLibraryCache& operator=(const ZelComLibraryCache&) = delete;
    // Frees every library still in the list.
    virtual ~ZelComLibraryCache();

    // The factory with a new reference, from the record whose path equals path, or from the
    // library loaded anew and recorded; null when none could be had.
    IClassFactory* GetClassFactory(const WCHAR* path, REFCLSID rclsid);
    void Initialize();
    void Uninitialize();

    std::vector<ZelComLibraryRecord> records;  // in the order of loading
    LONG initializeCount = 0;

private:
    void FreeAll();
    void FreeUnusedLibraries();
};

// The one list of the process, made at first use and destroyed, with every library still in it,
// at unload.
ZelComLibraryCache& ZelComLibraries();

#endif  // ZEL_COMPONENT_LIBRARY_CACHE_H
