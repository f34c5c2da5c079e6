// The process's tree and the resolution of handles to keys.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "platform/process_object.h"
#include "settings/virtual_registry.h"
#include "strings/name_hash.h"

namespace {

constinit ZelProcessObject<VirtualRegistry> virtualRegistry;

struct HiveRow {
    HKEY handle;
    const char16_t* rootName;
};

unsigned Fold(char16_t unit) { return unit >= u'a' && unit <= u'z' ? unit - 0x20u : unit; }

// The list closes up once it is at least this long and half of it is empty places.
constexpr size_t kSmallestGappedList = 64;

}  // namespace

namespace {

uint32_t HashOf(std::u16string_view name) { return ZelNameHash(name, Fold); }

}  // namespace

bool VirtualRegSameName(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(b[i])) return false;
    return true;
}

VirtualRegKey* VirtualRegChildIndex::Find(std::u16string_view name) const {
    if (slots_.empty()) return nullptr;
    const uint32_t hash = HashOf(name);
    for (size_t at = Home(hash);; at = (at + 1) & (slots_.size() - 1)) {
        const Slot& slot = slots_[at];
        if (!slot.key) return nullptr;
        if (slot.hash == hash && VirtualRegSameName(slot.key->name, name)) return slot.key;
    }
}

void VirtualRegChildIndex::Place(uint32_t hash, VirtualRegKey* child) {
    size_t at = Home(hash);
    while (slots_[at].key) at = (at + 1) & (slots_.size() - 1);
    slots_[at] = {hash, child};
}

void VirtualRegChildIndex::Insert(VirtualRegKey* child) {
    // At most seven eighths full; the new table is made whole before it replaces the old one.
    if ((used_ + 1) * 8 > slots_.size() * 7) {
        decltype(slots_) old(std::max<size_t>(16, slots_.size() * 2), Slot{0, nullptr});
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.key) Place(slot.hash, slot.key);
    }
    Place(HashOf(child->name), child);
    ++used_;
}

void VirtualRegChildIndex::Erase(const VirtualRegKey* child) {
    if (slots_.empty()) return;
    const size_t mask = slots_.size() - 1;
    size_t at = Home(HashOf(child->name));
    while (slots_[at].key != child) {
        if (!slots_[at].key) return;
        at = (at + 1) & mask;
    }
    // Close the gap: a later slot of the run moves up unless its home lies between the gap and it.
    for (size_t next = (at + 1) & mask; slots_[next].key; next = (next + 1) & mask) {
        const size_t home = Home(slots_[next].hash);
        const bool stays = at <= next ? (at < home && home <= next) : (at < home || home <= next);
        if (stays) continue;
        slots_[at] = slots_[next];
        at = next;
    }
    slots_[at] = {0, nullptr};
    --used_;
}

void VirtualRegKeyList::Destroy(VirtualRegKey* key) {
    key->~VirtualRegKey();
    VirtualRegRelease(key, sizeof(VirtualRegKey));
}

VirtualRegKey* VirtualRegKeyList::front() {
    while (!keys_[head_]) ++head_;
    return keys_[head_];
}

bool VirtualRegKeyList::Holds(const VirtualRegKey* key) const { return key->list == this; }

VirtualRegKey* VirtualRegKeyList::Make() {
    if (keys_.size() == keys_.capacity()) keys_.reserve(std::max<size_t>(16, keys_.size() * 2));
    auto* key = ::new (VirtualRegAllocate(sizeof(VirtualRegKey))) VirtualRegKey();
    key->list = this;
    key->slot = keys_.size();
    keys_.push_back(key);
    ++live_;
    return key;
}

void VirtualRegKeyList::Erase(VirtualRegKey* key) {
    keys_[key->slot] = nullptr;
    Destroy(key);
    --live_;
    if (live_ == 0) {
        clear();
        return;
    }
    // Empty places at the end go at once: keys made last are often the first to go.
    while (!keys_.back()) keys_.pop_back();
    if (keys_.size() < kSmallestGappedList || live_ * 2 > keys_.size()) return;
    // Only the keys that move are touched.
    size_t kept = 0;
    for (size_t at = 0; at < keys_.size(); ++at) {
        if (!keys_[at]) continue;
        if (at != kept) {
            keys_[at]->slot = kept;
            keys_[kept] = keys_[at];
        }
        ++kept;
    }
    keys_.resize(kept);
    head_ = 0;
}

void VirtualRegKeyList::clear() {
    for (VirtualRegKey* key : keys_)
        if (key) Destroy(key);
    keys_.clear();
    live_ = 0;
    head_ = 0;
}

VirtualRegistry& ZelVirtualRegistry() { return *virtualRegistry; }

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
            VirtualRegKey* root = currentHive->Make();
            root->name = rows[i].rootName;
            root->depth = 1;
        }
        return currentHive->front();
    }
    return reinterpret_cast<VirtualRegKey*>(handle);
}
