// A component library that serves its class and may be unloaded when no object of it lives.
#include "test_component.h"

namespace {
zeltest_component::LibraryState state;
zeltest_component::StaticFactory factory(state, 1);
}  // namespace

ZEL_TEST_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
    ++state.classObjectCalls;
    *ppv = nullptr;
    if (rclsid != CLSID_ZelTestValue) return CLASS_E_CLASSNOTAVAILABLE;
    return factory.QueryInterface(riid, ppv);
}

ZEL_TEST_EXPORT HRESULT DllCanUnloadNow() {
    return state.liveObjects == 0 && state.locks == 0 ? S_OK : S_FALSE;
}

ZEL_TEST_EXPORT int TestClassObjectCalls() { return state.classObjectCalls; }
ZEL_TEST_EXPORT int TestFactoryReferences() { return factory.References(); }
ZEL_TEST_EXPORT int TestLiveObjects() { return state.liveObjects; }
