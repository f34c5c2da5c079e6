// Walking and creating key paths. A path is read in place, component by component: the runs of
// units between back slashes, empty runs skipped.
#include <algorithm>
#include <memory>
#include <string_view>

#include "settings/virtual_registry.h"

namespace {

// Up to this many children a key is searched along its chain; beyond, through its index.
constexpr DWORD kChainedChildren = 8;

class PathParts {
public:
    explicit PathParts(const WCHAR* path) : at_(path) {}
    // The next component, or false when there is none.
    bool Next(std::u16string_view& part) {
        if (!at_) return false;
        while (*at_ == u'\\') ++at_;
        if (!*at_) return false;
        const WCHAR* start = at_;
        while (*at_ && *at_ != u'\\') ++at_;
        part = std::u16string_view(start, static_cast<size_t>(at_ - start));
        return true;
    }

private:
    const WCHAR* at_;
};

}  // namespace

// The first sub-key with a non-empty name equal to name but for the case of a to z.
VirtualRegKey* VirtualRegistry::FindChild(VirtualRegKey* parent, std::u16string_view name) {
    if (!parent->childIndex && parent->subKeyCount > kChainedChildren) {
        auto index = std::make_unique<VirtualRegChildIndex>();
        for (VirtualRegKey* child = parent->firstChild; child; child = child->nextSibling)
            if (!child->name.empty() && !index->Find(child->name)) index->Insert(child);
        parent->childIndex = std::move(index);
    }
    if (parent->childIndex) return parent->childIndex->Find(name);
    for (VirtualRegKey* child = parent->firstChild; child; child = child->nextSibling) {
        if (!child->name.empty() && VirtualRegSameName(child->name, name)) return child;
    }
    return nullptr;
}

int VirtualRegistry::FindKey(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key) {
    PathParts parts(path);
    std::u16string_view part;
    if (!parts.Next(part)) {
        *key = start;
        return 1;
    }
    if (!start->firstChild) {
        *key = start;
        return 0;
    }
    VirtualRegKey* current = start;
    do {
        current = FindChild(current, part);
        if (!current) {
            *key = nullptr;
            return 0;
        }
    } while (parts.Next(part));
    *key = current;
    return 1;
}

int VirtualRegistry::CreateKeyPath(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key) {
    // Walk down what exists; a level without a match (or without sub-keys) ends the walk, and
    // `part` is left at the first component that has no key.
    PathParts parts(path);
    std::u16string_view part;
    VirtualRegKey* current = start;
    bool more = parts.Next(part);
    for (; more; more = parts.Next(part)) {
        VirtualRegKey* child = FindChild(current, part);
        if (!child) break;
        current = child;
    }
    if (!more) {
        *key = current;
        return 1;
    }
    // A key reached through a key handle before any hive was selected has no list to go into.
    if (!currentHive) return 0;

    for (; more; more = parts.Next(part)) {
        // Filed in the list, named, filed in the index, then linked: should a step throw, the
        // tree is as it was for this key.
        VirtualRegKey* child = currentHive->Make();
        try {
            child->name = part;
            // The first new key's name was just looked for in vain; the others' parents are new.
            if (current->childIndex) current->childIndex->Insert(child);
        } catch (...) {
            currentHive->Erase(child);
            throw;
        }
        child->parent = current;
        child->depth = current->depth + 1;
        ++current->subKeyCount;
        current->maxSubKeyNameLength = std::max(current->maxSubKeyNameLength, static_cast<DWORD>(part.size()));
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
