#include "platform/common/modules/resource_file.h"

#include <cstring>

namespace zelres {
namespace {

uint16_t ReadU16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

uint32_t ReadU32(const uint8_t* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// True when [offset, offset + size) lies within a file of fileSize bytes, without overflow.
bool Within(uint64_t offset, uint64_t size, size_t fileSize) { return offset <= fileSize && size <= fileSize - offset; }

Entry ReadEntry(const uint8_t* file, size_t place) {
    const uint8_t* p = file + place;
    return {place, ReadU32(p), ReadU32(p + 4), ReadU32(p + 8), ReadU32(p + 12)};
}

struct Directory {
    size_t offset = 0;
    size_t count = 0;
};

// The directory of a sound file, or the reason the file is refused.
Lookup CheckFile(const uint8_t* file, size_t fileSize, Directory* directory) {
    if (!file || fileSize < kHeaderSize || std::memcmp(file, kFileMagic, sizeof kFileMagic) != 0 ||
        ReadU16(file + 8) != kFormatVersion)
        return Lookup::NotAResourceFile;
    const uint32_t commentSize = ReadU32(file + 12);
    const uint32_t offset = ReadU32(file + 16);
    const uint32_t count = ReadU32(file + 20);
    if (!Within(kHeaderSize, commentSize, fileSize) || offset < kHeaderSize ||
        !Within(offset, uint64_t{count} * kEntrySize, fileSize))
        return Lookup::Damaged;
    for (size_t i = 0; i < count; ++i) {
        Entry entry = ReadEntry(file, offset + i * kEntrySize);
        if (entry.type > kMaxId || entry.id > kMaxId || !Within(entry.offset, entry.size, fileSize))
            return Lookup::Damaged;
    }
    *directory = {offset, count};
    return Lookup::Found;
}

}  // namespace

Lookup FindEntry(const uint8_t* file, size_t fileSize, uint32_t type, uint32_t id, Entry* found) {
    Directory directory;
    if (Lookup check = CheckFile(file, fileSize, &directory); check != Lookup::Found) return check;
    bool typeSeen = false;
    for (size_t i = 0; i < directory.count; ++i) {
        Entry entry = ReadEntry(file, directory.offset + i * kEntrySize);
        if (entry.type != type) continue;
        typeSeen = true;
        if (entry.id != id) continue;
        if (type == kTypeString && !StringBlockValid(file + entry.offset, entry.size)) return Lookup::Damaged;
        *found = entry;
        return Lookup::Found;
    }
    return typeSeen ? Lookup::NameNotFound : Lookup::TypeNotFound;
}

bool EntryAt(const uint8_t* file, size_t fileSize, size_t place, Entry* entry) {
    Directory directory;
    if (CheckFile(file, fileSize, &directory) != Lookup::Found) return false;
    if (place < directory.offset || (place - directory.offset) % kEntrySize != 0 ||
        (place - directory.offset) / kEntrySize >= directory.count)
        return false;
    *entry = ReadEntry(file, place);
    return true;
}

bool StringBlockValid(const uint8_t* block, size_t size) {
    size_t at = 0;
    for (unsigned i = 0; i < kStringsPerBlock; ++i) {
        if (size - at < 2) return false;
        const size_t units = ReadU16(block + at);
        at += 2;
        if ((size - at) / 2 < units) return false;
        at += units * 2;
    }
    return true;
}

void StringInBlock(const uint8_t* block, unsigned index, const uint8_t** units, size_t* length) {
    size_t at = 0;
    for (unsigned i = 0; i < index; ++i) at += 2 + size_t{ReadU16(block + at)} * 2;
    *length = ReadU16(block + at);
    *units = block + at + 2;
}

}  // namespace zelres
