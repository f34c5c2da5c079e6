// Reads the registry's files.
//
// Layout. All numbers are little-endian; text is UTF-16 code units, counted in units, with no
// terminator.
//
//   file    := header record*
//   header  := "ZRHV" version:u32 (1) kind:u32 (1 persistent, 2 volatile, 3 saved) reserved:u32
//              stamp:u64 crc:u32                                    -- 28 bytes; crc of the 24 before
//   record  := marker:4 length:u32 body[length] crc:u32             -- crc of marker, length and body
//   key     := marker "ZR" 'K' 0x1A, body: id:u64 lastWrite:u64 (FILETIME) flags:u32 (1 volatile)
//              class:text path:text
//   value   := marker "ZR" 'V' 0x1A, body: keyId:u64 type:u32 name:text size:u32 data[size]
//   text    := count:u32 unit:u16[count]
//
// A key's path runs from the top of the file (the hive's root, or the saved key) with '\' between
// the names; an empty path is the top itself. Keys come before their sub-keys, and each key's values
// follow it in order of creation; a value names its key by the key's id. The id is the key's
// identity across processes. The stamp changes with every write of the file.
//
// Every record stands alone and carries its own checksum, so a damaged file loses only what is
// damaged: a record whose length runs past the end or whose checksum fails is skipped, and the reader
// looks for the next marker from the byte after the bad record's start. Every length and name is
// checked against the end of its record and the registry's limits; a record that breaks one is
// skipped whole. A key whose parent's record was lost is still placed, under a parent made anew; a
// value whose key's record was lost is dropped. A damaged header costs only the stamp.
#include <cstring>

#include "platform/posix/registry/registry_format.h"
#include "platform/posix/registry/registry_format_layout.h"

namespace zelreg {
namespace {

constexpr uint32_t MakeCrcEntry(uint32_t n) {
    uint32_t c = n;
    for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    return c;
}

struct CrcTable {
    uint32_t entries[256];
    constexpr CrcTable() : entries() {
        for (uint32_t n = 0; n < 256; ++n) entries[n] = MakeCrcEntry(n);
    }
};
constexpr CrcTable kCrcTable;

// A bounded cursor over one record's body: every read checks what is left.
class Cursor {
public:
    Cursor(const uint8_t* data, size_t size) : p_(data), end_(data + size) {}

    bool U32(uint32_t& v) {
        if (end_ - p_ < 4) return false;
        v = 0;
        for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(p_[i]) << (8 * i);
        p_ += 4;
        return true;
    }
    bool U64(uint64_t& v) {
        if (end_ - p_ < 8) return false;
        v = 0;
        for (int i = 0; i < 8; ++i) v |= static_cast<uint64_t>(p_[i]) << (8 * i);
        p_ += 8;
        return true;
    }
    bool Text(std::u16string& text, size_t maxUnits) {
        uint32_t count = 0;
        if (!U32(count) || count > maxUnits || static_cast<size_t>(end_ - p_) / 2 < count) return false;
        text.resize(count);
        for (uint32_t i = 0; i < count; ++i) text[i] = static_cast<char16_t>(p_[2 * i] | (p_[2 * i + 1] << 8));
        p_ += 2 * static_cast<size_t>(count);
        return true;
    }
    bool Bytes(std::vector<BYTE>& bytes) {
        uint32_t count = 0;
        if (!U32(count) || static_cast<size_t>(end_ - p_) < count) return false;
        bytes.assign(p_, p_ + count);
        p_ += count;
        return true;
    }

private:
    const uint8_t* p_;
    const uint8_t* end_;
};

uint32_t ReadU32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

bool HasNul(const std::u16string& text) { return text.find(u'\0') != std::u16string::npos; }

// Splits a stored path; false when a name is empty, too long or holds a terminator, or the path
// is too deep.
bool SplitStoredPath(const std::u16string& joined, std::vector<std::u16string>& parts) {
    parts.clear();
    if (joined.empty()) return true;
    size_t start = 0;
    for (;;) {
        size_t end = joined.find(u'\\', start);
        if (end == std::u16string::npos) end = joined.size();
        if (end == start || end - start > kMaxKeyNameLength || parts.size() == kMaxKeyDepth) return false;
        parts.emplace_back(joined, start, end - start);
        if (HasNul(parts.back())) return false;
        if (end == joined.size()) return true;
        start = end + 1;
    }
}

}  // namespace

uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc) {
    crc = ~crc;
    for (size_t i = 0; i < size; ++i) crc = kCrcTable.entries[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

namespace {

bool HeaderValid(const uint8_t* data, size_t size) {
    return size >= kHeaderBytes && memcmp(data, kFileMagic, 4) == 0 && ReadU32(data + 24) == Crc32(data, 24) &&
           ReadU32(data + 4) == kFormatVersion;
}

uint64_t StampAt(const uint8_t* data) {
    return static_cast<uint64_t>(ReadU32(data + 16)) | static_cast<uint64_t>(ReadU32(data + 20)) << 32;
}

}  // namespace

uint64_t ReadHeaderStamp(const uint8_t* data, size_t size) { return HeaderValid(data, size) ? StampAt(data) : 0; }

HiveLoader::HiveLoader(RegKey& root) : root_(root) { Index(&root_); }

void HiveLoader::Index(RegKey* key) {
    usedIds_.insert(key->id);
    for (auto& [folded, sub] : key->subKeys) Index(sub.get());
}

uint64_t HiveLoader::UniqueId(uint64_t wanted, const std::vector<std::u16string>& path) {
    uint64_t id = wanted;
    if (id == 0 || usedIds_.count(id)) id = SyntheticKeyId(path);
    while (id == 0 || usedIds_.count(id)) id = NewKeyId();
    usedIds_.insert(id);
    return id;
}

RegKey* HiveLoader::PlaceKey(const std::vector<std::u16string>& path, uint64_t id, bool keyIsVolatile, bool& fresh) {
    RegKey* key = &root_;
    std::vector<std::u16string> prefix;
    for (size_t i = 0; i < path.size(); ++i) {
        prefix.push_back(path[i]);
        RegKey* sub = key->FindSubKey(path[i]);
        if (sub) {
            key = sub;
            continue;
        }
        bool last = i + 1 == path.size();
        // A parent made anew is volatile when what is placed below it is, or what it is placed
        // below, since nothing lasting may sit below a volatile key.
        bool subIsVolatile = last ? keyIsVolatile : key->isVolatile || keyIsVolatile;
        key = key->AddSubKey(path[i], UniqueId(last ? id : 0, prefix), subIsVolatile);
        if (last) {
            fresh = true;
            return key;
        }
    }
    fresh = false;
    return key;
}

LoadStats HiveLoader::Load(const uint8_t* data, size_t size, Volatility volatility) {
    LoadStats stats;
    size_t pos = 0;
    if (HeaderValid(data, size)) {
        stats.headerValid = true;
        stats.kind = static_cast<FileKind>(ReadU32(data + 8));
        stats.stamp = StampAt(data);
        pos = kHeaderBytes;
    }

    std::unordered_map<uint64_t, RegKey*> keysById;  // by the ids this file gives
    bool inDamage = false;
    std::vector<std::u16string> parts;
    while (pos < size) {
        bool isKey = size - pos >= 4 && memcmp(data + pos, kKeyMarker, 4) == 0;
        bool isValue = size - pos >= 4 && memcmp(data + pos, kValueMarker, 4) == 0;
        size_t length = 0;
        bool whole = false;
        if ((isKey || isValue) && size - pos >= kRecordHeaderSize + kRecordTrailerSize) {
            length = ReadU32(data + pos + 4);
            if (length <= size - pos - kRecordHeaderSize - kRecordTrailerSize) {
                size_t covered = kRecordHeaderSize + length;
                whole = ReadU32(data + pos + covered) == Crc32(data + pos, covered);
            }
        }
        if (!whole) {
            if (!inDamage) ++stats.skipped;
            inDamage = true;
            const void* next = memchr(data + pos + 1, 'Z', size - pos - 1);
            pos = next ? static_cast<size_t>(static_cast<const uint8_t*>(next) - data) : size;
            continue;
        }
        inDamage = false;
        Cursor body(data + pos + kRecordHeaderSize, length);
        pos += kRecordHeaderSize + length + kRecordTrailerSize;

        if (isKey) {
            uint64_t id = 0, lastWrite = 0;
            uint32_t flags = 0;
            std::u16string keyClass, joined;
            if (!body.U64(id) || !body.U64(lastWrite) || !body.U32(flags) || !body.Text(keyClass, kMaxClassLength) ||
                !body.Text(joined, (kMaxKeyNameLength + 1) * kMaxKeyDepth) || !SplitStoredPath(joined, parts)) {
                ++stats.skipped;
                continue;
            }
            bool keyIsVolatile = volatility == Volatility::On ||
                                 (volatility == Volatility::FromFile && (flags & kKeyFlagVolatile));
            RegKey* key = nullptr;
            bool fresh = false;
            if (parts.empty()) {
                // The top: a volatile file has none, since a hive's root is never volatile.
                if (volatility == Volatility::On || keysById.count(id)) {
                    ++stats.skipped;
                    continue;
                }
                key = &root_;
                fresh = true;
                if (volatility == Volatility::FromFile) key->isVolatile = keyIsVolatile;
            } else {
                key = PlaceKey(parts, id, keyIsVolatile, fresh);
                if (!fresh && key->isVolatile != keyIsVolatile) {
                    ++stats.skipped;
                    continue;
                }
            }
            if (fresh) {
                key->keyClass = std::move(keyClass);
                key->lastWrite = lastWrite;
            }
            keysById.emplace(id, key);
            ++stats.keys;
        } else {
            uint64_t keyId = 0;
            uint32_t type = 0;
            RegValue value;
            if (!body.U64(keyId) || !body.U32(type) || !body.Text(value.name, kMaxValueNameLength) ||
                HasNul(value.name) || !body.Bytes(value.data)) {
                ++stats.skipped;
                continue;
            }
            auto it = keysById.find(keyId);
            if (it == keysById.end() || it->second->FindValue(value.name) >= 0) {
                ++stats.skipped;
                continue;
            }
            value.type = type;
            it->second->values.push_back(std::move(value));
            ++stats.values;
        }
    }
    return stats;
}

}  // namespace zelreg
