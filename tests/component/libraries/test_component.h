// What the component suite and its small component libraries share: one interface, its classes,
// and a plain object and a static class factory for the libraries to serve.
#ifndef ZEL_TESTS_COMPONENT_TEST_COMPONENT_H
#define ZEL_TESTS_COMPONENT_TEST_COMPONENT_H

#include <zel/wintypes.h>

#include <atomic>

#define ZEL_TEST_EXPORT extern "C" __attribute__((visibility("default")))

// An interface with one operation beyond IUnknown.
struct IZelTestValue : public IUnknown {
    virtual LONG STDMETHODCALLTYPE Value() = 0;

protected:
    ~IZelTestValue() = default;
};

constexpr IID IID_IZelTestValue = {0x6b3e1f20, 0x41c2, 0x4d8e, {0x9a, 0x10, 0x5c, 0x7d, 0x21, 0x88, 0x03, 0xa1}};
// The class the libraries serve, and one that no library knows.
constexpr CLSID CLSID_ZelTestValue = {0x6b3e1f21, 0x41c2, 0x4d8e, {0x9a, 0x10, 0x5c, 0x7d, 0x21, 0x88, 0x03, 0xa1}};
constexpr CLSID CLSID_ZelTestNobody = {0x6b3e1f22, 0x41c2, 0x4d8e, {0x9a, 0x10, 0x5c, 0x7d, 0x21, 0x88, 0x03, 0xa1}};

// The probes that every test library exports, for the suite to look into it.
using TestCountProbe = int (*)();
#define ZEL_TEST_PROBE_CLASS_OBJECT_CALLS "TestClassObjectCalls"  // DllGetClassObject so far
#define ZEL_TEST_PROBE_FACTORY_REFERENCES "TestFactoryReferences"  // the factory's count now
#define ZEL_TEST_PROBE_LIVE_OBJECTS "TestLiveObjects"  // objects made and not yet released

namespace zeltest_component {

// The state of one library; each library has its own, which a fresh load starts at zero.
struct LibraryState {
    std::atomic<int> classObjectCalls{0};
    std::atomic<int> liveObjects{0};
    std::atomic<int> locks{0};
};

class ValueObject final : public IZelTestValue {
public:
    ValueObject(LibraryState& state, LONG value) : state_(state), value_(value) { ++state_.liveObjects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IZelTestValue) {
            *ppv = static_cast<IZelTestValue*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() override {
        ULONG count = --count_;
        if (count == 0) {
            --state_.liveObjects;
            delete this;
        }
        return count;
    }
    LONG STDMETHODCALLTYPE Value() override { return value_; }

private:
    ~ValueObject() = default;
    LibraryState& state_;
    LONG value_;
    std::atomic<ULONG> count_{1};
};

// A static object of its library: valid for as long as the library is loaded, at any count.
// Objects it makes answer with the library's own value; aggregation is refused.
class StaticFactory final : public IClassFactory {
public:
    StaticFactory(LibraryState& state, LONG value) : state_(state), value_(value) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IClassFactory) {
            *ppv = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() override { return --count_; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override {
        *ppv = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        auto* object = new ValueObject(state_, value_);
        HRESULT result = object->QueryInterface(riid, ppv);
        object->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        state_.locks += lock ? 1 : -1;
        return S_OK;
    }
    int References() const { return static_cast<int>(count_.load()); }

private:
    LibraryState& state_;
    LONG value_;
    std::atomic<ULONG> count_{0};
};

}  // namespace zeltest_component

#endif  // ZEL_TESTS_COMPONENT_TEST_COMPONENT_H
