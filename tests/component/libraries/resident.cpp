// A component library without DllCanUnloadNow, so it never agrees to go. Its DllGetClassObject
// reports a failure yet hands out its factory: only the pointer counts.
#include "test_component.h"

namespace {
zeltest_component::LibraryState state;
zeltest_component::StaticFactory factory(state, 2);
}  // namespace

ZEL_TEST_EXPORT HRESULT DllGetClassObject(REFCLSID, REFIID riid, void** ppv) {
    ++state.classObjectCalls;
    factory.QueryInterface(riid, ppv);
    return E_UNEXPECTED;
}

ZEL_TEST_EXPORT int TestClassObjectCalls() { return state.classObjectCalls; }
ZEL_TEST_EXPORT int TestFactoryReferences() { return factory.References(); }
ZEL_TEST_EXPORT int TestLiveObjects() { return state.liveObjects; }
