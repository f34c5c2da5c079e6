// Walking and creating key paths. A path is cut at back slashes with wcstok, on a copy of its own
// for every walk: the cut overwrites the separators, and the caller's text stays as it was.
#include <zel/strings.h>

#include "settings/virtual_registry.h"
#include "strings/wstr.h"

namespace {

constexpr WCHAR kSeparators[] = u"\\";

// The first sub-key with a non-empty name equal to name but for the case of a to z.
VirtualRegKey* FindChild(VirtualRegKey* parent, const WCHAR* name) {
    for (VirtualRegKey* child = parent->firstChild; child; child = child->nextSibling) {
        if (!child->name.empty() && _ustricmp(child->name.c_str(), name) == 0) return child;
    }
    return nullptr;
}

bool HasComponents(const WCHAR* path) {
    if (!path) return false;
    for (; *path; ++path) {
        if (*path != u'\\') return true;
    }
    return false;
}

DWORD LengthOf(const WCHAR* text) { return static_cast<DWORD>(wcslen(text)); }

}  // namespace

int VirtualRegistry::FindKey(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key) {
    if (!HasComponents(path)) {
        *key = start;
        return 1;
    }
    if (!start->firstChild) {
        *key = start;
        return 0;
    }
    std::u16string copy(path);
    VirtualRegKey* current = start;
    for (WCHAR* part = wcstok(copy.data(), kSeparators); part; part = wcstok(nullptr, kSeparators)) {
        current = FindChild(current, part);
        if (!current) {
            *key = nullptr;
            return 0;
        }
    }
    *key = current;
    return 1;
}

int VirtualRegistry::CreateKeyPath(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key) {
    std::u16string copy(path ? path : u"");
    // Walk down what exists; a level without a match (or without sub-keys) ends the walk, and
    // `part` is left at the first component that has no key.
    VirtualRegKey* current = start;
    WCHAR* part = wcstok(copy.data(), kSeparators);
    for (; part; part = wcstok(nullptr, kSeparators)) {
        VirtualRegKey* child = FindChild(current, part);
        if (!child) break;
        current = child;
    }
    if (!part) {
        *key = current;
        return 1;
    }
    // A key reached through a key handle before any hive was selected has no list to go into.
    if (!currentHive) return 0;

    VirtualRegKey* last = current->firstChild;
    while (last && last->nextSibling) last = last->nextSibling;
    for (; part; part = wcstok(nullptr, kSeparators)) {
        auto made = std::make_unique<VirtualRegKey>();
        VirtualRegKey* child = made.get();
        child->parent = current;
        child->name = part;
        child->depth = current->depth + 1;
        // Filed in the list first: should that throw, the tree is as it was for this key.
        currentHive->push_back(std::move(made));
        ++current->subKeyCount;
        if (LengthOf(part) > current->maxSubKeyNameLength) current->maxSubKeyNameLength = LengthOf(part);
        if (!last) {
            current->firstChild = child;
        } else {
            last->nextSibling = child;
            child->prevSibling = last;
        }
        current = child;
        last = nullptr;
    }
    *key = current;
    return 1;
}
