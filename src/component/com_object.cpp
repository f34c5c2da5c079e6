// CZelComObject: the reference count, the IUnknown faces and aggregation.
#include <zel/component.h>

#include <cstddef>
#include <cstring>
#include <new>

#include "platform/win32.h"

namespace {

// The inner unknown that an aggregating outer object holds. It has no field of its own: it lives
// in m_xAggregationUnknown and finds its object from that address. Its counts are the object's
// own, so that the outer object alone decides the inner object's life.
class AggregationUnknown final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) override {
        CZelComObject* object = Owner();
        if (riid == IID_IUnknown) {
            object->InternalAddRef();
            *ppvObject = this;
            return S_OK;
        }
        return static_cast<HRESULT>(object->InternalQueryInterface(riid, ppvObject));
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return Owner()->InternalAddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return Owner()->InternalRelease(); }

private:
    CZelComObject* Owner() {
// The class is not standard-layout, but it has no virtual base, so the field's offset is fixed.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
        constexpr size_t offset = offsetof(CZelComObject, m_xAggregationUnknown);
#pragma GCC diagnostic pop
        return reinterpret_cast<CZelComObject*>(reinterpret_cast<unsigned char*>(this) - offset);
    }
};

static_assert(sizeof(AggregationUnknown) == sizeof(CZelComObject::m_xAggregationUnknown),
              "the inner unknown is one virtual table reference");
static_assert(alignof(AggregationUnknown) <= alignof(void*));

// The count is read plainly ahead of the atomic step; the relaxed load is that plain read without
// a data race.
LONG ReadCount(const LONG& count) { return __atomic_load_n(&count, __ATOMIC_RELAXED); }

}  // namespace

CZelComObject::XUnknown::XUnknown(CZelComObject* owner) : m_pOwner(owner) {}

HRESULT CZelComObject::XUnknown::QueryInterface(REFIID riid, void** ppvObject) {
    return static_cast<HRESULT>(m_pOwner->ExternalQueryInterface(riid, ppvObject));
}

ULONG CZelComObject::XUnknown::AddRef() { return m_pOwner->ExternalAddRef(); }

ULONG CZelComObject::XUnknown::Release() { return m_pOwner->ExternalRelease(); }

CZelComObject::CZelComObject()
    : m_xUnknown(this), m_nRefCount(1), m_bDeleteOnFinalRelease(TRUE), m_pControllingUnknown(nullptr),
      m_xAggregationUnknown{} {}

CZelComObject::CZelComObject(const CZelComObject& other) = default;

CZelComObject& CZelComObject::operator=(const CZelComObject& other) = default;

CZelComObject::~CZelComObject() = default;

DWORD CZelComObject::InternalAddRef() { return static_cast<DWORD>(InterlockedIncrement(&m_nRefCount)); }

DWORD CZelComObject::InternalRelease() {
    if (ReadCount(m_nRefCount) == 0) return 0;
    LONG count = InterlockedDecrement(&m_nRefCount);
    if (count == 0) OnFinalRelease();
    return static_cast<DWORD>(count);
}

DWORD CZelComObject::InternalQueryInterface(REFIID riid, void** ppvObject) {
    void* pointer = GetInterface(riid);
    *ppvObject = pointer;
    if (!pointer) return static_cast<DWORD>(E_NOINTERFACE);
    static_cast<IUnknown*>(pointer)->AddRef();
    return 0;
}

DWORD CZelComObject::ExternalAddRef() {
    if (m_pControllingUnknown) return m_pControllingUnknown->AddRef();
    return InternalAddRef();
}

DWORD CZelComObject::ExternalRelease() {
    if (m_pControllingUnknown) return m_pControllingUnknown->Release();
    return InternalRelease();
}

DWORD CZelComObject::ExternalQueryInterface(REFIID riid, void** ppvObject) {
    if (m_pControllingUnknown) return static_cast<DWORD>(m_pControllingUnknown->QueryInterface(riid, ppvObject));
    return InternalQueryInterface(riid, ppvObject);
}

DWORD CZelComObject::AddRef() { return ExternalAddRef(); }

DWORD CZelComObject::Release() { return ExternalRelease(); }

HRESULT CZelComObject::QueryInterface(REFIID riid, void** ppvObject) {
    return static_cast<HRESULT>(ExternalQueryInterface(riid, ppvObject));
}

void* CZelComObject::GetInterface(REFIID riid) const {
    auto* self = const_cast<CZelComObject*>(this);
    if (riid == IID_IUnknown) {
        if (m_pControllingUnknown) return m_pControllingUnknown;
        return static_cast<IUnknown*>(&self->m_xUnknown);
    }
    return self->__GetInterface(riid);
}

void* CZelComObject::__GetInterface(REFIID riid) {
    if (riid == IID_IUnknown) return static_cast<IUnknown*>(&m_xUnknown);
    return nullptr;
}

IUnknown* CZelComObject::GetControllingUnknown() {
    if (m_pControllingUnknown) return m_pControllingUnknown;
    return &m_xUnknown;
}

IUnknown* CZelComObject::_GetIUnknown() const {
    // Callers reach here through object pointers that may be null. The compiler takes `this` for
    // non-null and would drop a plain test, so the pointer goes through an opaque step first.
    const CZelComObject* self = this;
    __asm__("" : "+r"(self));
    if (!self) return nullptr;
    return const_cast<XUnknown*>(&self->m_xUnknown);
}

CZelComObject::operator IUnknown*() { return _GetIUnknown(); }

void CZelComObject::EnableAggregation() { new (m_xAggregationUnknown) AggregationUnknown; }

IUnknown* CZelComObject::Aggregate(IUnknown* outer) {
    void* table = nullptr;
    std::memcpy(&table, m_xAggregationUnknown, sizeof table);
    if (!table) return nullptr;
    m_pControllingUnknown = outer;
    return std::launder(reinterpret_cast<AggregationUnknown*>(m_xAggregationUnknown));
}

IUnknown* CZelComObject::QueryAggregates(REFIID) { return nullptr; }

void CZelComObject::ExternalDisconnect() {
    if (ReadCount(m_nRefCount) == 0) return;
    IUnknown* controlling = GetControllingUnknown();
    // The extra count keeps the object alive while the connections are cut.
    InterlockedIncrement(&m_nRefCount);
    CoDisconnectObject(controlling, 0);
    __atomic_store_n(&m_nRefCount, 0, __ATOMIC_SEQ_CST);
}

void CZelComObject::OnFinalRelease() {
    if (m_bDeleteOnFinalRelease) delete this;
}
