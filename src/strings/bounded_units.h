// The bounded string helpers of the families whose character is one unit: 16-bit units for ustr,
// bytes for sstr. The byte family of the multi-byte code page has its own walk (bounded_mstr.cpp)
// and shares only the append and the bounded length.
//
// Sizes count the whole buffer, terminator included. Null strings give 0 and nothing is written.
// No helper reads a destination buffer beyond the size it was given, even when the string in it
// has no terminator there.
#ifndef ZEL_STRINGS_BOUNDED_UNITS_H
#define ZEL_STRINGS_BOUNDED_UNITS_H

#include <zel/wintypes.h>

#include <cstring>

namespace zelbounded {

// Units before the terminator, looking at no more than limit units; limit when there is none.
template <typename T>
int BoundedLength(const T* s, int limit) {
    int length = 0;
    while (length < limit && s[length]) ++length;
    return length;
}

// Copies unit by unit while more than one unit of room is left; 1 when the terminator itself
// was copied. The copy is then always terminated, but for a size of 0; a negative size acts as 1.
template <typename T>
int Copy(T* dest, const T* src, int size) {
    if (!dest || !src) return 0;
    for (int left = size; left > 1; --left) {
        T unit = *src++;
        *dest++ = unit;
        if (!unit) return 1;
    }
    if (size != 0) *dest = 0;
    return 0;
}

// Appends with the family's copy on the free rest of the buffer; 0 when not even one more
// character and a terminator fit.
template <typename T, typename CopyFunction>
int Append(T* dest, const T* src, int size, CopyFunction copy) {
    if (!dest || !src || size <= 0) return 0;
    int length = BoundedLength(dest, size);
    if (length + 1 >= size) return 0;
    return copy(dest + length, src, size - length);
}

// 1 when the string fits in size units with its terminator; else it is cut to size - 1 units and
// the result is 0. A size of 0 leaves the string alone, a negative one empties it (both give 0).
template <typename T>
int Cut(T* s, int size) {
    if (!s || size == 0) return 0;
    if (size < 0) {
        *s = 0;
        return 0;
    }
    if (BoundedLength(s, size) < size) return 1;
    s[size - 1] = 0;
    return 0;
}

// Removes leading white space; 1 when there was some.
template <typename T, typename IsSpace>
int TrimLeft(T* s, IsSpace isSpace) {
    if (!s) return 0;
    T* p = s;
    while (*p && isSpace(*p)) ++p;
    if (p == s) return 0;
    T* end = p;
    while (*end) ++end;
    std::memmove(s, p, static_cast<size_t>(end - p + 1) * sizeof(T));
    return 1;
}

// Removes trailing white space; 1 when there was some.
template <typename T, typename IsSpace>
int TrimRight(T* s, IsSpace isSpace) {
    if (!s) return 0;
    T* end = s;
    while (*end) ++end;
    T* kept = end;
    while (kept > s && isSpace(kept[-1])) --kept;
    if (kept == end) return 0;
    *kept = 0;
    return 1;
}

}  // namespace zelbounded

#endif  // ZEL_STRINGS_BOUNDED_UNITS_H
