// The byte layout of stream values: byteOrder 1234 keeps a value's little-endian byte order, any
// other value reverses it. Written without regard to the host's own order.
#ifndef ZEL_STREAMS_BYTE_ORDER_H
#define ZEL_STREAMS_BYTE_ORDER_H

#include <cstddef>
#include <cstdint>

namespace zelstreams {

constexpr int kLittleEndian = 1234;

// The value of width bytes (1 to 8) as they stand in the stream.
inline uint64_t LoadValue(const unsigned char* bytes, size_t width, int byteOrder) {
    uint64_t value = 0;
    for (size_t i = 0; i < width; ++i) {
        size_t from = byteOrder == kLittleEndian ? width - 1 - i : i;
        value = (value << 8) | bytes[from];
    }
    return value;
}

// Lays the low width bytes (1 to 8) of value out as the stream holds them.
inline void StoreValue(uint64_t value, unsigned char* bytes, size_t width, int byteOrder) {
    for (size_t i = 0; i < width; ++i) {
        size_t to = byteOrder == kLittleEndian ? i : width - 1 - i;
        bytes[to] = static_cast<unsigned char>(value >> (8 * i));
    }
}

}  // namespace zelstreams

#endif  // ZEL_STREAMS_BYTE_ORDER_H
