// A registry key and what is below it in memory, as the registry's files hold them: each key with
// its sub-keys in case-blind sorted order and its values in order of creation; and what every part
// of the registry shares: names, limits, identities and times. Nothing here touches a file or a
// lock.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_TREE_H
#define ZEL_PLATFORM_POSIX_REGISTRY_TREE_H

#include <zel/wintypes.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelreg {

// Limits of names, as the system enforces them.
constexpr size_t kMaxKeyNameLength = 255;      // one component of a key path, in units
constexpr size_t kMaxValueNameLength = 16383;  // in units
constexpr size_t kMaxKeyDepth = 512;           // components below a hive's root
constexpr size_t kMaxClassLength = 32767;      // in units

// One unit upper-cased by the simple mappings of the scripts that have case; surrogates and uncased
// units come back unchanged. Names compare equal when their upper-cased forms do.
char16_t UpcaseUnit(char16_t unit);
std::u16string Fold(std::u16string_view name);

// 100-nanosecond intervals since 1601-01-01, as a FILETIME holds them.
uint64_t NowFileTime();
FILETIME ToFileTime(uint64_t value);

// A fresh key identity. Identities tell a key from a later key of the same path, across processes
// and reloads, so a handle to a deleted key can answer ERROR_KEY_DELETED.
uint64_t NewKeyId();
// The identity of a key that the registry makes by itself (a hive's default keys, a parent that a
// damaged file lost): derived from the folded path, so every process agrees on it.
uint64_t SyntheticKeyId(const std::vector<std::u16string>& path);

struct RegValue {
    std::u16string name;
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct RegKey {
    std::u16string name;  // as created; empty for a hive's root
    std::u16string keyClass;
    uint64_t id = 0;
    uint64_t lastWrite = 0;
    bool isVolatile = false;
    RegKey* parent = nullptr;
    std::map<std::u16string, std::unique_ptr<RegKey>> subKeys;  // by folded name
    std::vector<RegValue> values;                               // in order of creation

    RegKey* FindSubKey(std::u16string_view name) const;
    // Adds a sub-key that must not exist yet and returns it.
    RegKey* AddSubKey(std::u16string_view name, uint64_t id, bool isVolatile);
    // Index into values, or -1. A null or empty name is the default value.
    ptrdiff_t FindValue(std::u16string_view name) const;
    void Touch() { lastWrite = NowFileTime(); }
    // The path from the root, without the root.
    std::vector<std::u16string> Path() const;
};

// A key path split into its components. A leading separator is ERROR_BAD_PATHNAME; empty components
// after it (doubled or trailing separators) are skipped.
LONG SplitPath(const WCHAR* subKey, std::vector<std::u16string>& parts);

// The key at path below root, or null.
RegKey* FindPath(RegKey* root, const std::vector<std::u16string>& path);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_TREE_H
