// The in-memory hive tree: lookups by case-blind name, paths, identities and times.
#include "platform/posix/registry/registry_tree.h"

#include <sys/random.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

namespace zelreg {

uint64_t NowFileTime() {
    // Seconds between 1601-01-01 and 1970-01-01.
    constexpr uint64_t kEpochDelta = 11644473600ull;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return (static_cast<uint64_t>(now.tv_sec) + kEpochDelta) * 10000000ull + static_cast<uint64_t>(now.tv_nsec) / 100;
}

FILETIME ToFileTime(uint64_t value) {
    FILETIME time;
    time.dwLowDateTime = static_cast<DWORD>(value);
    time.dwHighDateTime = static_cast<DWORD>(value >> 32);
    return time;
}

uint64_t NewKeyId() {
    uint64_t id = 0;
    if (getrandom(&id, sizeof id, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof id)) {
        // No entropy yet: the time, the process and a counter still make a clash unlikely.
        static std::atomic<uint64_t> counter{0};
        id = NowFileTime() * 0x9E3779B97F4A7C15ull ^ (static_cast<uint64_t>(getpid()) << 40) ^ ++counter;
    }
    return id == 0 ? 1 : id;
}

uint64_t SyntheticKeyId(const std::vector<std::u16string>& path) {
    uint64_t hash = 0xcbf29ce484222325ull;
    auto mix = [&hash](uint64_t unit) {
        hash ^= unit;
        hash *= 0x100000001b3ull;
    };
    for (const auto& part : path) {
        for (char16_t unit : part) mix(UpcaseUnit(unit));
        mix('\\');
    }
    return hash == 0 ? 1 : hash;
}

RegKey* RegKey::FindSubKey(std::u16string_view name) const {
    auto it = subKeys.find(Fold(name));
    return it == subKeys.end() ? nullptr : it->second.get();
}

RegKey* RegKey::AddSubKey(std::u16string_view name, uint64_t keyId, bool keyIsVolatile) {
    auto key = std::make_unique<RegKey>();
    key->name = name;
    key->id = keyId;
    key->isVolatile = keyIsVolatile;
    key->parent = this;
    key->lastWrite = NowFileTime();
    RegKey* raw = key.get();
    subKeys.emplace(Fold(name), std::move(key));
    return raw;
}

ptrdiff_t RegKey::FindValue(std::u16string_view name) const {
    for (size_t i = 0; i < values.size(); ++i) {
        const std::u16string& candidate = values[i].name;
        if (candidate.size() != name.size()) continue;
        size_t j = 0;
        while (j < name.size() && UpcaseUnit(candidate[j]) == UpcaseUnit(name[j])) ++j;
        if (j == name.size()) return static_cast<ptrdiff_t>(i);
    }
    return -1;
}

std::vector<std::u16string> RegKey::Path() const {
    std::vector<std::u16string> path;
    for (const RegKey* key = this; key->parent; key = key->parent) path.push_back(key->name);
    return {path.rbegin(), path.rend()};
}

LONG SplitPath(const WCHAR* subKey, std::vector<std::u16string>& parts) {
    parts.clear();
    if (!subKey) return ERROR_SUCCESS;
    if (*subKey == u'\\') return ERROR_BAD_PATHNAME;
    const WCHAR* start = subKey;
    for (const WCHAR* p = subKey;; ++p) {
        if (*p == u'\\' || *p == 0) {
            if (p > start) parts.emplace_back(start, p);
            if (*p == 0) break;
            start = p + 1;
        }
    }
    return ERROR_SUCCESS;
}

RegKey* FindPath(RegKey* root, const std::vector<std::u16string>& path) {
    RegKey* key = root;
    for (const auto& part : path) {
        key = key->FindSubKey(part);
        if (!key) return nullptr;
    }
    return key;
}

}  // namespace zelreg
