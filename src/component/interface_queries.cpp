// The one-call interface queries over IUnknown and CZelComObject.
#include <zel/component.h>

void* _ZelQueryInterface(IUnknown* object, REFIID riid) {
    if (!object) return nullptr;
    void* pointer = nullptr;
    object->QueryInterface(riid, &pointer);
    return pointer;
}

void* _ZelQueryInterface(CZelComObject* object, REFIID riid) {
    if (!object) return nullptr;
    void* pointer = nullptr;
    object->ExternalQueryInterface(riid, &pointer);
    return pointer;
}

void* _ZelQueryInterface(CZelComObject& object, REFIID riid) { return _ZelQueryInterface(&object, riid); }

namespace {

// Gives back the reference that a query took, leaving the pointer borrowed.
void* Borrowed(void* pointer) {
    if (pointer) static_cast<IUnknown*>(pointer)->Release();
    return pointer;
}

}  // namespace

void* _ZelGetInterface(IUnknown* object, REFIID riid) { return Borrowed(_ZelQueryInterface(object, riid)); }

void* _ZelGetInterface(CZelComObject* object, REFIID riid) { return Borrowed(_ZelQueryInterface(object, riid)); }

void* _ZelGetInterface(CZelComObject& object, REFIID riid) { return Borrowed(_ZelQueryInterface(object, riid)); }

BOOL _ZelVerifyInterface(IUnknown* object, REFIID riid) { return _ZelGetInterface(object, riid) ? TRUE : FALSE; }
