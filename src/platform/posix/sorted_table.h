// Constant tables of rows sorted by a key field, searched by halves.
#ifndef ZEL_PLATFORM_POSIX_SORTED_TABLE_H
#define ZEL_PLATFORM_POSIX_SORTED_TABLE_H

#include <algorithm>
#include <cstddef>

// True when every row's key is above the key of the row before it: for a static_assert.
template <typename Row, size_t N, typename Key>
constexpr bool ZelSortedByKey(const Row (&rows)[N], Key Row::*key) {
    for (size_t i = 1; i < N; ++i)
        if (!(rows[i - 1].*key < rows[i].*key)) return false;
    return true;
}

// The row whose key is value, or null.
template <typename Row, size_t N, typename Key>
const Row* ZelFindByKey(const Row (&rows)[N], Key value, Key Row::*key) {
    const Row* found =
        std::lower_bound(rows, rows + N, value, [key](const Row& row, Key wanted) { return row.*key < wanted; });
    return found != rows + N && found->*key == value ? found : nullptr;
}

#endif  // ZEL_PLATFORM_POSIX_SORTED_TABLE_H
