// CZelComObject: counting from several threads, the final release, aggregation into an outer
// object, disconnection and the one-call queries.
#include <zel/component.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "libraries/test_component.h"

namespace {

// A derived object with one interface of its own, answered by a nested face that forwards its
// counts to the object as m_xUnknown does.
class Sample : public CZelComObject {
public:
    explicit Sample(int* destroyed = nullptr) : m_xValue(this), destroyed_(destroyed) {}
    ~Sample() override {
        if (destroyed_) ++*destroyed_;
    }
    void OnFinalRelease() override {
        ++finalReleases;
        CZelComObject::OnFinalRelease();
    }

    class XValue : public IZelTestValue {
    public:
        explicit XValue(Sample* owner) : owner_(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
            return static_cast<HRESULT>(owner_->ExternalQueryInterface(riid, ppv));
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return owner_->ExternalAddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner_->ExternalRelease(); }
        LONG STDMETHODCALLTYPE Value() override { return 42; }

    private:
        Sample* owner_;
    } m_xValue;

    int finalReleases = 0;

protected:
    void* __GetInterface(REFIID riid) override {
        if (riid == IID_IZelTestValue) return static_cast<IZelTestValue*>(&m_xValue);
        return CZelComObject::__GetInterface(riid);
    }

private:
    int* destroyed_;
};

// An outer object that aggregates a Sample: it answers IUnknown itself and hands
// IZelTestValue to the inner object, whose life it alone controls.
class Outer final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown) {
            *ppv = this;
            AddRef();
            return S_OK;
        }
        if (inner) return inner->QueryInterface(riid, ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count; }
    ULONG STDMETHODCALLTYPE Release() override { return --count; }

    ULONG count = 1;
    IUnknown* inner = nullptr;
};

TEST(ComObject, CountsFromSeveralThreadsAreExact) {
    int destroyed = 0;
    auto* object = new Sample(&destroyed);
    constexpr int kThreads = 4, kRounds = 100000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([object] {
            for (int i = 0; i < kRounds; ++i) object->AddRef();
            for (int i = 0; i < kRounds; ++i) object->m_xUnknown.Release();
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(object->m_nRefCount, 1);
    EXPECT_EQ(destroyed, 0);

    // The creator's reference is the last: its release deletes the object once.
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(destroyed, 1);
}

TEST(ComObject, ReleasesRacingToZeroDeleteOnce) {
    for (int round = 0; round < 200; ++round) {
        int destroyed = 0;
        auto* object = new Sample(&destroyed);
        object->AddRef();
        std::thread other([object] { object->Release(); });
        object->Release();
        other.join();
        ASSERT_EQ(destroyed, 1);
    }
}

TEST(ComObject, FinalReleaseWithoutDeletionRestsAtZero) {
    int destroyed = 0;
    Sample object(&destroyed);
    object.m_bDeleteOnFinalRelease = FALSE;
    EXPECT_EQ(object.AddRef(), 2u);
    EXPECT_EQ(object.Release(), 1u);
    EXPECT_EQ(object.Release(), 0u);
    EXPECT_EQ(object.finalReleases, 1);

    // At 0 a release has no further effect: no wrap to -1, no second final release.
    EXPECT_EQ(object.InternalRelease(), 0u);
    EXPECT_EQ(object.m_nRefCount, 0);
    EXPECT_EQ(object.finalReleases, 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(ComObject, QueriesGiveTheFacesWithAReference) {
    Sample object;
    object.m_bDeleteOnFinalRelease = FALSE;
    void* pointer = nullptr;

    EXPECT_EQ(object.QueryInterface(IID_IUnknown, &pointer), S_OK);
    EXPECT_EQ(pointer, static_cast<IUnknown*>(&object.m_xUnknown));
    EXPECT_EQ(object.m_nRefCount, 2);

    // Through the derived face, which counts on the same object.
    auto* value = static_cast<IZelTestValue*>(nullptr);
    EXPECT_EQ(object.m_xUnknown.QueryInterface(IID_IZelTestValue, reinterpret_cast<void**>(&value)), S_OK);
    ASSERT_EQ(value, &object.m_xValue);
    EXPECT_EQ(value->Value(), 42);
    EXPECT_EQ(object.m_nRefCount, 3);

    pointer = &object;
    EXPECT_EQ(object.InternalQueryInterface(IID_IClassFactory, &pointer), static_cast<DWORD>(E_NOINTERFACE));
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(object.m_nRefCount, 3);

    EXPECT_EQ(object.GetInterface(IID_IZelTestValue), &object.m_xValue);
    EXPECT_EQ(object.GetInterface(IID_IClassFactory), nullptr);
    EXPECT_EQ(object.m_nRefCount, 3);
    EXPECT_EQ(object.QueryAggregates(IID_IZelTestValue), nullptr);
    EXPECT_EQ(static_cast<IUnknown*>(object), &object.m_xUnknown);
    EXPECT_EQ(object._GetIUnknown(), &object.m_xUnknown);
}

TEST(ComObject, AggregateNeedsEnableAggregation) {
    Sample object;
    Outer outer;
    EXPECT_EQ(object.Aggregate(&outer), nullptr);
    EXPECT_EQ(object.m_pControllingUnknown, nullptr);
    EXPECT_EQ(object.GetControllingUnknown(), &object.m_xUnknown);
    EXPECT_EQ(object.AddRef(), 2u);
    EXPECT_EQ(outer.count, 1u);
}

TEST(ComObject, AggregatedObjectDelegatesToTheOuterObject) {
    int destroyed = 0;
    auto* object = new Sample(&destroyed);
    Outer outer;
    object->EnableAggregation();
    IUnknown* inner = object->Aggregate(&outer);
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(static_cast<void*>(inner), static_cast<void*>(object->m_xAggregationUnknown));
    outer.inner = inner;
    EXPECT_EQ(object->GetControllingUnknown(), &outer);

    // The object's own faces count on the outer object; m_nRefCount is the outer's hold on inner.
    EXPECT_EQ(object->m_xUnknown.AddRef(), 2u);
    EXPECT_EQ(object->m_xValue.AddRef(), 3u);
    EXPECT_EQ(object->m_nRefCount, 1);
    EXPECT_EQ(object->InternalAddRef(), 2u);
    EXPECT_EQ(object->InternalRelease(), 1u);
    object->Release();
    object->Release();
    EXPECT_EQ(outer.count, 1u);

    // IUnknown from the object is the outer object's identity ...
    void* pointer = nullptr;
    EXPECT_EQ(object->InternalQueryInterface(IID_IUnknown, &pointer), 0u);
    EXPECT_EQ(pointer, &outer);
    EXPECT_EQ(outer.count, 2u);
    outer.Release();
    // ... but the inner unknown answers with itself, counting on the object.
    EXPECT_EQ(inner->QueryInterface(IID_IUnknown, &pointer), S_OK);
    EXPECT_EQ(pointer, inner);
    EXPECT_EQ(object->m_nRefCount, 2);
    inner->Release();

    // An interface asked of the outer object comes from the inner one, counted on the outer.
    pointer = _ZelQueryInterface(static_cast<IUnknown*>(&outer), IID_IZelTestValue);
    EXPECT_EQ(pointer, &object->m_xValue);
    EXPECT_EQ(outer.count, 2u);
    EXPECT_EQ(object->m_nRefCount, 1);
    outer.Release();
    // Queries of the object go to the outer object as well.
    EXPECT_EQ(_ZelQueryInterface(*object, IID_IUnknown), &outer);
    EXPECT_EQ(outer.count, 2u);
    outer.Release();

    // The outer object's release of the inner unknown ends the object.
    EXPECT_EQ(inner->Release(), 0u);
    EXPECT_EQ(destroyed, 1);
}

TEST(ComObject, ExternalDisconnectDropsTheCountWithoutFinalRelease) {
    int destroyed = 0;
    Sample object(&destroyed);
    object.AddRef();
    object.AddRef();
    object.ExternalDisconnect();
    EXPECT_EQ(object.m_nRefCount, 0);
    EXPECT_EQ(object.finalReleases, 0);
    EXPECT_EQ(destroyed, 0);
    // At 0 it is a no-op, and so is a release.
    object.ExternalDisconnect();
    EXPECT_EQ(object.m_nRefCount, 0);
    EXPECT_EQ(object.Release(), 0u);
    EXPECT_EQ(object.finalReleases, 0);
}

TEST(ComObject, OneCallQueries) {
    Sample object;
    object.m_bDeleteOnFinalRelease = FALSE;

    EXPECT_EQ(_ZelQueryInterface(static_cast<IUnknown*>(nullptr), IID_IUnknown), nullptr);
    EXPECT_EQ(_ZelQueryInterface(static_cast<CZelComObject*>(nullptr), IID_IUnknown), nullptr);
    EXPECT_EQ(_ZelGetInterface(static_cast<IUnknown*>(nullptr), IID_IUnknown), nullptr);
    EXPECT_EQ(_ZelGetInterface(static_cast<CZelComObject*>(nullptr), IID_IUnknown), nullptr);
    EXPECT_EQ(_ZelVerifyInterface(nullptr, IID_IUnknown), FALSE);

    // Borrowed pointers leave the count where it was, even when only the creator holds one.
    EXPECT_EQ(_ZelGetInterface(object, IID_IZelTestValue), &object.m_xValue);
    EXPECT_EQ(_ZelGetInterface(&object, IID_IUnknown), &object.m_xUnknown);
    EXPECT_EQ(_ZelGetInterface(&object.m_xUnknown, IID_IZelTestValue), &object.m_xValue);
    EXPECT_EQ(_ZelVerifyInterface(&object.m_xUnknown, IID_IZelTestValue), TRUE);
    EXPECT_EQ(_ZelVerifyInterface(&object.m_xUnknown, IID_IClassFactory), FALSE);
    EXPECT_EQ(_ZelGetInterface(&object, IID_IClassFactory), nullptr);
    EXPECT_EQ(object.m_nRefCount, 1);

    // A query proper keeps its reference.
    EXPECT_EQ(_ZelQueryInterface(&object, IID_IZelTestValue), &object.m_xValue);
    EXPECT_EQ(_ZelQueryInterface(&object.m_xUnknown, IID_IUnknown), &object.m_xUnknown);
    EXPECT_EQ(object.m_nRefCount, 3);
}

}  // namespace
