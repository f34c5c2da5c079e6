// The registry's file format: writing a hive (or a part of one) to bytes and reading it back.
// registry_format_read.cpp describes the layout.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_H
#define ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/posix/registry/registry_tree.h"

namespace zelreg {

// What a file holds. Persistent: the keys of a hive that are not volatile. Volatile: the volatile
// keys of a hive, each with its whole path. Saved: one key and everything below it, with paths
// relative to that key and the volatile flag of each key kept.
enum class FileKind : uint32_t { Persistent = 1, Volatile = 2, Saved = 3 };

std::vector<uint8_t> WriteHiveFile(const RegKey& top, FileKind kind, uint64_t stamp);

struct LoadStats {
    bool headerValid = false;
    FileKind kind = FileKind::Persistent;
    uint64_t stamp = 0;
    size_t keys = 0;     // key records taken
    size_t values = 0;   // value records taken
    size_t skipped = 0;  // damaged regions and records that were left out
};

// Reads files into one tree. Loading a persistent file and then a volatile one into the same loader
// gives the hive; a key that a file names but whose parent it lost is made anew. A key that is
// already in the tree is kept, with its identity; a volatile record cannot replace a persistent key.
class HiveLoader {
public:
    explicit HiveLoader(RegKey& root);
    // How the loaded keys' volatile flags are set: by what the file says (saved files), or all off
    // (persistent files) or all on (volatile files).
    enum class Volatility { FromFile, Off, On };
    LoadStats Load(const uint8_t* data, size_t size, Volatility volatility);

private:
    RegKey* PlaceKey(const std::vector<std::u16string>& path, uint64_t id, bool keyIsVolatile, bool& fresh);
    uint64_t UniqueId(uint64_t wanted, const std::vector<std::u16string>& path);
    void Index(RegKey* key);

    RegKey& root_;
    std::unordered_set<uint64_t> usedIds_;
};

// The stamp of a file whose first bytes are given (at least the header's), or 0 when the header is
// damaged or missing.
uint64_t ReadHeaderStamp(const uint8_t* data, size_t size);
constexpr size_t kHeaderBytes = 28;

// The CRC-32 (reflected, polynomial 0xEDB88320) that guards the records.
uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc = 0);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_H
