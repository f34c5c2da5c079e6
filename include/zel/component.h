// Component objects: the aggregatable object base and component creation by library path.
//
// CZelComObject gives a derived class a complete IUnknown with a thread-safe reference count and
// optional aggregation into an outer object. A derived class names its interfaces by overriding
// __GetInterface and falls back to the base version for the rest. A new object stands at count 1,
// which belongs to its creator.
#ifndef ZEL_COMPONENT_H
#define ZEL_COMPONENT_H

#include <zel/wintypes.h>

class ZEL_API CZelComObject {
public:
    // The object's own IUnknown face; every call goes to the External operations of its owner.
    class XUnknown : public IUnknown {
    public:
        explicit XUnknown(CZelComObject* owner);
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) override;
        ULONG STDMETHODCALLTYPE AddRef() override;
        ULONG STDMETHODCALLTYPE Release() override;

        CZelComObject* m_pOwner;
    };

    CZelComObject();
    // Member-wise, as the fields say: a copy's m_xUnknown still answers for the source, so objects
    // of this class are not meant to be copied.
    CZelComObject(const CZelComObject& other);
    CZelComObject& operator=(const CZelComObject& other);

    // Counts on this object, whatever its aggregation; the result is the new count.
    DWORD InternalAddRef();
    // At count 0 nothing happens; reaching 0 runs OnFinalRelease.
    DWORD InternalRelease();
    // 0 with a new reference in *ppvObject, or E_NOINTERFACE with null there.
    DWORD InternalQueryInterface(REFIID riid, void** ppvObject);

    // Through the controlling unknown when the object is aggregated, else the Internal forms.
    DWORD ExternalAddRef();
    DWORD ExternalRelease();
    DWORD ExternalQueryInterface(REFIID riid, void** ppvObject);

    DWORD AddRef();
    DWORD Release();
    HRESULT QueryInterface(REFIID riid, void** ppvObject);

    // The interface pointer without a new reference, or null.
    void* GetInterface(REFIID riid) const;
    // The outer object when aggregated, else m_xUnknown.
    IUnknown* GetControllingUnknown();
    // m_xUnknown; null when called through a null object pointer.
    IUnknown* _GetIUnknown() const;
    operator IUnknown*();

    // Allows Aggregate; call it before the object is shared.
    void EnableAggregation();
    // Makes outer the controlling unknown (no reference taken) and gives the inner unknown for the
    // outer object to hold; null, with nothing changed, when aggregation was not enabled.
    IUnknown* Aggregate(IUnknown* outer);
    // Null: the class holds no aggregates of its own.
    IUnknown* QueryAggregates(REFIID riid);
    // Cuts every outside connection and sets the count to 0 without releasing: the object is not
    // deleted by this.
    void ExternalDisconnect();

protected:
    // The hook of derived classes: the pointer for riid without a new reference, or null. The
    // base version knows IUnknown only.
    virtual void* __GetInterface(REFIID riid);

public:
    virtual ~CZelComObject();
    // Runs when the count reaches 0: deletes the object when m_bDeleteOnFinalRelease is set.
    virtual void OnFinalRelease();

    XUnknown m_xUnknown;
    LONG m_nRefCount;
    BOOL m_bDeleteOnFinalRelease;
    IUnknown* m_pControllingUnknown;  // not owned and not counted
    // The inner unknown, which is a virtual table reference alone: all zero until
    // EnableAggregation builds it here. Its address is what Aggregate gives the outer object.
    alignas(void*) unsigned char m_xAggregationUnknown[sizeof(void*)];
};

// One-call queries of an object given as IUnknown, as CZelComObject pointer or reference. For a
// CZelComObject the query goes to the controlling unknown if there is one.

// The interface pointer with a new reference; null for a null object or a missing interface.
ZEL_API void* _ZelQueryInterface(IUnknown* object, REFIID riid);
ZEL_API void* _ZelQueryInterface(CZelComObject* object, REFIID riid);
ZEL_API void* _ZelQueryInterface(CZelComObject& object, REFIID riid);
// The same pointer borrowed: its reference is given back at once, so it is valid only as long as
// the object lives.
ZEL_API void* _ZelGetInterface(IUnknown* object, REFIID riid);
ZEL_API void* _ZelGetInterface(CZelComObject* object, REFIID riid);
ZEL_API void* _ZelGetInterface(CZelComObject& object, REFIID riid);
// 1 when the object has the interface, else 0; no reference remains.
ZEL_API BOOL _ZelVerifyInterface(IUnknown* object, REFIID riid);

// ---------------------------------------------------------------------------------------------
// Component creation from a library named by its path, without any class registration.
//
// The library exports DllGetClassObject and may export DllCanUnloadNow. Each library is loaded
// once per process and its class factory is kept, uncounted: the factory must stay valid while
// the library is loaded, also at count 0 (a static object of the library does that). The first
// class fetched from a library answers every later request to the same path. Paths are compared
// as given, exactly and with case; a path with a ${Name} macro is expanded and loaded anew on
// every call. The calls below are not serialised: callers keep them to one thread at a time.

// What the factory's CreateInstance gave, or E_FAIL when no class factory could be had (then
// *ppv is not touched). classContext is not read.
ZEL_API HRESULT ZelCoCreateInstance(const WCHAR* libraryPath, REFCLSID rclsid, IUnknown* outer,
                                    DWORD classContext, REFIID riid, void** ppv);
// Counts one more user of the loaded libraries. reserved is not read. Gives 0.
ZEL_API HRESULT ZelCoInitialize(void* reserved);
// The last user frees every library; any other call frees the libraries whose DllCanUnloadNow
// answers 0. Gives 0.
ZEL_API HRESULT ZelCoUninitialize();

#endif  // ZEL_COMPONENT_H
