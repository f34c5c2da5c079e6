// Component creation by library path, and the users' count of the loaded libraries.
#include <zel/component.h>

#include "component/library_cache.h"

HRESULT ZelCoCreateInstance(const WCHAR* libraryPath, REFCLSID rclsid, IUnknown* outer, DWORD /*classContext*/,
                            REFIID riid, void** ppv) {
    IClassFactory* factory = ZelComLibraries().GetClassFactory(libraryPath, rclsid);
    if (!factory) return E_FAIL;
    HRESULT result = factory->CreateInstance(outer, riid, ppv);
    factory->Release();
    return result;
}

HRESULT ZelCoInitialize(void* /*reserved*/) {
    ZelComLibraries().Initialize();
    return S_OK;
}

HRESULT ZelCoUninitialize() {
    ZelComLibraries().Uninitialize();
    return S_OK;
}
