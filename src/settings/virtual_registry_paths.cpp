// Walking and creating key paths. A path is cut at back slashes with wcstok, on a copy of its own
// for every walk: the cut overwrites the separators, and the caller's text stays as it was.
#include <zel/strings.h>

#include <memory>
#include <string_view>

#include "settings/virtual_registry.h"
#include "strings/wstr.h"

namespace {

constexpr WCHAR kSeparators[] = u"\\";

// Up to this many children a key is searched along its chain; beyond, through its index.
constexpr DWORD kChainedChildren = 8;

bool HasComponents(const WCHAR* path) {
    if (!path) return false;
    for (; *path; ++path) {
        if (*path != u'\\') return true;
    }
    return false;
}

DWORD LengthOf(const WCHAR* text) { return static_cast<DWORD>(wcslen(text)); }

}  // namespace

// The first sub-key with a non-empty name equal to name but for the case of a to z.
VirtualRegKey* VirtualRegistry::FindChild(VirtualRegKey* parent, const WCHAR* name) {
    if (!parent->childIndex && parent->subKeyCount > kChainedChildren) {
        auto index = std::make_unique<VirtualRegChildIndex>();
        for (VirtualRegKey* child = parent->firstChild; child; child = child->nextSibling)
            if (!child->name.empty() && !index->Find(child->name)) index->Insert(child);
        parent->childIndex = std::move(index);
    }
    if (parent->childIndex) return parent->childIndex->Find(name);
    for (VirtualRegKey* child = parent->firstChild; child; child = child->nextSibling) {
        if (!child->name.empty() && _ustricmp(child->name.c_str(), name) == 0) return child;
    }
    return nullptr;
}

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

    for (; part; part = wcstok(nullptr, kSeparators)) {
        auto made = std::make_unique<VirtualRegKey>();
        VirtualRegKey* child = made.get();
        child->parent = current;
        child->name = part;
        child->depth = current->depth + 1;
        // Filed in the list, then in the index, then linked: should a step throw, the tree is as
        // it was for this key.
        currentHive->push_back(std::move(made));
        // The first new key's name was just looked for in vain; the others' parents are new.
        if (current->childIndex) {
            try {
                current->childIndex->Insert(child);
            } catch (...) {
                currentHive->Erase(child);
                throw;
            }
        }
        ++current->subKeyCount;
        if (LengthOf(part) > current->maxSubKeyNameLength) current->maxSubKeyNameLength = LengthOf(part);
        if (VirtualRegKey* last = current->lastChild) {
            last->nextSibling = child;
            child->prevSibling = last;
        } else {
            current->firstChild = child;
        }
        current->lastChild = child;
        current = child;
    }
    *key = current;
    return 1;
}
