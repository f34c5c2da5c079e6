// The process's tree and the resolution of handles to keys.
#include <cstdint>
#include <iterator>

#include "settings/virtual_registry.h"

namespace {

struct HiveRow {
    HKEY handle;
    const char16_t* rootName;
};

unsigned Fold(char16_t unit) { return unit >= u'a' && unit <= u'z' ? unit - 0x20u : unit; }

// The list closes up once it is at least this long and half of it is empty places.
constexpr size_t kSmallestGappedList = 64;

}  // namespace

size_t VirtualRegNameHash::operator()(std::u16string_view name) const {
    uint64_t hash = 0xcbf29ce484222325ULL;
    for (char16_t unit : name) hash = (hash ^ Fold(unit)) * 0x100000001b3ULL;
    return static_cast<size_t>(hash ^ (hash >> 29));
}

bool VirtualRegNameEqual::operator()(std::u16string_view a, std::u16string_view b) const {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(b[i])) return false;
    return true;
}

VirtualRegKey* VirtualRegKeyList::front() {
    while (!keys_[head_]) ++head_;
    return keys_[head_].get();
}

void VirtualRegKeyList::push_back(std::unique_ptr<VirtualRegKey> key) {
    key->list = this;
    key->slot = keys_.size();
    keys_.push_back(std::move(key));
    ++live_;
}

void VirtualRegKeyList::Erase(VirtualRegKey* key) {
    keys_[key->slot].reset();
    --live_;
    if (live_ == 0) {
        clear();
        return;
    }
    if (keys_.size() < kSmallestGappedList || live_ * 2 > keys_.size()) return;
    size_t kept = 0;
    for (size_t at = 0; at < keys_.size(); ++at) {
        if (!keys_[at]) continue;
        keys_[at]->slot = kept;
        if (at != kept) keys_[kept] = std::move(keys_[at]);
        ++kept;
    }
    keys_.resize(kept);
    head_ = 0;
}

void VirtualRegKeyList::clear() {
    keys_.clear();
    live_ = 0;
    head_ = 0;
}

VirtualRegistry& ZelVirtualRegistry() {
    static auto& registry = *new VirtualRegistry;
    return registry;
}

void VirtualRegistry::Release() {
    currentHive = nullptr;
    classesRoot.clear();
    currentUser.clear();
    localMachine.clear();
}

VirtualRegKey* VirtualRegistry::ResolveHandle(HKEY handle) {
    const HiveRow rows[] = {
        {HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT"},
        {HKEY_CURRENT_USER, u"HKEY_CURRENT_USER"},
        {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE"},
    };
    KeyList* lists[] = {&classesRoot, &currentUser, &localMachine};
    for (size_t i = 0; i < std::size(rows); ++i) {
        if (handle != rows[i].handle) continue;
        currentHive = lists[i];
        if (currentHive->empty()) {
            auto root = std::make_unique<VirtualRegKey>();
            root->name = rows[i].rootName;
            root->depth = 1;
            currentHive->push_back(std::move(root));
        }
        return currentHive->front();
    }
    return reinterpret_cast<VirtualRegKey*>(handle);
}
