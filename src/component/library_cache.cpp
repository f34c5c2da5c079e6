// The list of loaded component libraries: finding or loading a library's class factory, and
// giving libraries up when their users are done.
#include "component/library_cache.h"

#include <zel/paths.h>

#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"
#include "strings/wstr.h"
#include "platform/process_object.h"

namespace {

constinit ZelProcessObject<ZelComLibraryCache> libraryCache;

}  // namespace

ZelComLibraryCache& ZelComLibraries() { return *libraryCache; }

ZelComLibraryCache::~ZelComLibraryCache() { FreeAll(); }

IClassFactory* ZelComLibraryCache::GetClassFactory(const WCHAR* path, REFCLSID rclsid) {
    if (!path) return nullptr;
    // The path as given: the records hold expanded paths, so a path with a macro never matches.
    // The class id plays no part: a library's first class stands for all of them.
    for (ZelComLibraryRecord& record : records) {
        if (wcscmp(record.path, path) == 0) {
            record.classFactory->AddRef();
            return record.classFactory;
        }
    }

    ZelComLibraryRecord record{};
    ZelPathToAbsolute(path, record.path);
    record.module = ZelLoadLibraryModulePath(record.path);
    if (!record.module) return nullptr;

    auto getClassObject = ZelProcAs<LPFNGETCLASSOBJECT>(GetProcAddress(record.module, "DllGetClassObject"));
    if (!getClassObject) {
        FreeLibrary(record.module);
        return nullptr;
    }
    // The pointer alone tells whether a factory came; the result code is not believed.
    void* factory = nullptr;
    getClassObject(rclsid, IID_IClassFactory, &factory);
    if (!factory) {
        FreeLibrary(record.module);
        return nullptr;
    }
    record.classId = rclsid;
    record.classFactory = static_cast<IClassFactory*>(factory);
    records.push_back(record);
    return record.classFactory;
}

void ZelComLibraryCache::Initialize() { ++initializeCount; }

void ZelComLibraryCache::Uninitialize() {
    if (initializeCount == 1)
        FreeAll();
    else
        FreeUnusedLibraries();
    --initializeCount;
}

// Whether or not the libraries agree.
void ZelComLibraryCache::FreeAll() {
    for (const ZelComLibraryRecord& record : records) FreeLibrary(record.module);
    records.clear();
}

// A library without DllCanUnloadNow stays.
void ZelComLibraryCache::FreeUnusedLibraries() {
    for (auto it = records.begin(); it != records.end();) {
        auto canUnloadNow = ZelProcAs<LPFNCANUNLOADNOW>(GetProcAddress(it->module, "DllCanUnloadNow"));
        if (canUnloadNow && canUnloadNow() == S_OK) {
            FreeLibrary(it->module);
            it = records.erase(it);
        } else {
            ++it;
        }
    }
}
