// Positions of records by exact name: open addressing with linear probing, each slot with the
// name's hash, the record's position and the record itself, so that a look-up reads the slot and
// then the one record whose name it compares, and nothing between.
#ifndef ZEL_SETTINGS_INI_NAME_TABLE_H
#define ZEL_SETTINGS_INI_NAME_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "strings/name_hash.h"

template <typename Record>
class ZelIniNameTable {
public:
    using Field = std::u16string Record::*;

    // The position of the record with this name, or -1.
    int Find(std::u16string_view name, Field field) const {
        if (slots_.empty()) return -1;
        const uint32_t hash = ZelNameHash(name);
        for (size_t at = hash & Mask();; at = (at + 1) & Mask()) {
            const Slot& slot = slots_[at];
            if (!slot.record) return -1;
            if (slot.hash == hash && slot.record->*field == name) return slot.position;
        }
    }

    // Files the record at position unless a record of its name is there already, so that the
    // first of equal names stays. Out of memory throws, leaving the table as it was.
    void Add(const Record* record, int position, Field field) {
        const std::u16string_view name = record->*field;
        if (Find(name, field) >= 0) return;
        if ((used_ + 1) * 8 > slots_.size() * 7) Grow();
        Place({ZelNameHash(name), position, record});
        ++used_;
    }

    void clear() {
        slots_.clear();
        used_ = 0;
    }

private:
    struct Slot {
        uint32_t hash;
        int position;
        const Record* record;  // null: a free slot
    };

    size_t Mask() const { return slots_.size() - 1; }
    void Place(const Slot& slot) {
        size_t at = slot.hash & Mask();
        while (slots_[at].record) at = (at + 1) & Mask();
        slots_[at] = slot;
    }
    void Grow() {
        std::vector<Slot> old(slots_.empty() ? 16 : slots_.size() * 2, Slot{0, 0, nullptr});
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.record) Place(slot);
    }

    std::vector<Slot> slots_;
    size_t used_ = 0;
};

#endif  // ZEL_SETTINGS_INI_NAME_TABLE_H
