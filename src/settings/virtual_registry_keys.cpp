// Keys of the tree: open, create, list, describe and delete.
#include <algorithm>

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
    VirtualRegKey* child = key->firstChild;
    for (DWORD i = 0; child && i < index; ++i) child = child->nextSibling;
    if (!child) return 0;
    if (name) {
        if (child->name.size() >= capacity) return 0;
        std::copy(child->name.c_str(), child->name.c_str() + child->name.size() + 1, name);
    }
    return 1;
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
    if (!currentHive) return 0;
    auto entry = std::find_if(currentHive->begin(), currentHive->end(),
                              [key](const std::unique_ptr<VirtualRegKey>& held) { return held.get() == key; });
    if (entry == currentHive->end()) return 0;

    if (VirtualRegKey* parent = key->parent) {
        if (parent->firstChild == key) parent->firstChild = key->nextSibling;
        --parent->subKeyCount;
    }
    if (key->prevSibling) key->prevSibling->nextSibling = key->nextSibling;
    if (key->nextSibling) key->nextSibling->prevSibling = key->prevSibling;
    currentHive->erase(entry);
    return 1;
}
