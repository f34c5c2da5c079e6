// Keys of the tree: open, create, list, describe and delete.
#include <algorithm>
#include <memory>

#include "settings/virtual_registry.h"

namespace {

HKEY AsHandle(VirtualRegKey* key) { return reinterpret_cast<HKEY>(key); }

}  // namespace

int VirtualRegistry::OpenKey(HKEY handle, const WCHAR* path, HKEY* key) {
    if (!key) return 0;
    VirtualRegKey* start = ResolveHandle(handle);
    if (!start) return 0;
    VirtualRegKey* found = nullptr;
    const int result = FindKey(start, path, &found);
    *key = AsHandle(found);
    return result;
}

int VirtualRegistry::CreateKey(HKEY handle, const WCHAR* path, HKEY* key) {
    if (!key) return 0;
    VirtualRegKey* start = ResolveHandle(handle);
    if (!start) return 0;
    VirtualRegKey* made = nullptr;
    if (!CreateKeyPath(start, path, &made)) return 0;
    *key = AsHandle(made);
    return 1;
}

int VirtualRegistry::EnumKey(HKEY handle, DWORD index, WCHAR* name, DWORD capacity) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key) return 0;
    VirtualRegKey* child = ChildAt(key, index);
    if (!child) return 0;
    if (name) {
        if (child->name.size() >= capacity) return 0;
        std::copy(child->name.c_str(), child->name.c_str() + child->name.size() + 1, name);
    }
    return 1;
}

VirtualRegKey* VirtualRegistry::ChildAt(VirtualRegKey* key, DWORD index) {
    if (index >= key->subKeyCount) return nullptr;
    // From whichever is nearest: the first child, the last, or where the last call stopped.
    VirtualRegKey* child = key->firstChild;
    DWORD at = 0;
    const DWORD last = key->subKeyCount - 1;
    if (last - index < index) {
        child = key->lastChild;
        at = last;
    }
    const auto distance = [index](DWORD from) { return from > index ? from - index : index - from; };
    if (key->enumChild && distance(key->enumChildIndex) < distance(at)) {
        child = key->enumChild;
        at = key->enumChildIndex;
    }
    for (; at < index; ++at) child = child->nextSibling;
    for (; at > index; --at) child = child->prevSibling;
    key->enumChild = child;
    key->enumChildIndex = index;
    return child;
}

int VirtualRegistry::QueryInfoKey(HKEY handle, WCHAR* keyClass, DWORD* /*classLength*/, DWORD* /*reserved*/,
                                  DWORD* subKeys, DWORD* longestSubKeyName, DWORD* /*longestClass*/, DWORD* values,
                                  DWORD* longestValueName, DWORD* largestValueData,
                                  DWORD* /*securityDescriptorSize*/, FILETIME* /*lastWriteTime*/) {
    VirtualRegKey* key = ResolveHandle(handle);
    if (!key) return 0;
    if (keyClass) keyClass[0] = 0;
    if (subKeys) *subKeys = key->subKeyCount;
    if (longestSubKeyName) *longestSubKeyName = key->maxSubKeyNameLength;
    if (values) *values = key->valueCount;
    if (longestValueName) *longestValueName = key->maxValueNameLength;
    if (largestValueData) *largestValueData = key->maxValueDataLength;
    return 1;
}

int VirtualRegistry::DeleteKey(HKEY handle, const WCHAR* path) {
    VirtualRegKey* start = ResolveHandle(handle);
    if (!start) return 0;
    VirtualRegKey* key = nullptr;
    if (!FindKey(start, path, &key) || key->firstChild) return 0;
    // Only the current hive's list is searched: a key filed in another list stays until that
    // hive is current again.
    if (!currentHive || !currentHive->Holds(key)) return 0;

    if (VirtualRegKey* parent = key->parent) {
        if (parent->firstChild == key) parent->firstChild = key->nextSibling;
        if (parent->lastChild == key) parent->lastChild = key->prevSibling;
        --parent->subKeyCount;
        if (parent->childIndex) parent->childIndex->Erase(key);
        // An enumeration that stood on this key goes on from its neighbour; one that stood
        // elsewhere starts again, since the positions behind the key moved.
        if (parent->enumChild == key && key->prevSibling) {
            parent->enumChild = key->prevSibling;
            --parent->enumChildIndex;
        } else {
            parent->enumChild = parent->enumChild == key ? key->nextSibling : nullptr;
        }
    }
    if (key->prevSibling) key->prevSibling->nextSibling = key->nextSibling;
    if (key->nextSibling) key->nextSibling->prevSibling = key->prevSibling;
    currentHive->Erase(key);
    return 1;
}
