// The hash of the tables that find names: FNV-1a over the name's units, each taken through map
// first (to fold case, say), folded to 32 bits. Its low bits spread well enough for a table whose
// size is a power of two.
#ifndef ZEL_STRINGS_NAME_HASH_H
#define ZEL_STRINGS_NAME_HASH_H

#include <cstdint>
#include <string_view>
#include <type_traits>

template <typename Unit, typename Map>
uint32_t ZelNameHash(std::basic_string_view<Unit> name, Map map) {
    uint64_t hash = 0xcbf29ce484222325ULL;
    for (Unit unit : name) hash = (hash ^ uint64_t(map(unit))) * 0x100000001b3ULL;
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

template <typename Unit>
uint32_t ZelNameHash(std::basic_string_view<Unit> name) {
    return ZelNameHash(name, [](Unit unit) { return std::make_unsigned_t<Unit>(unit); });
}

#endif  // ZEL_STRINGS_NAME_HASH_H
