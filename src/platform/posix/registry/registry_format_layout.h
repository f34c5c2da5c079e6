// The constants of the registry's file layout, shared by its reader and writer.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_LAYOUT_H
#define ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_LAYOUT_H

#include <cstddef>
#include <cstdint>

namespace zelreg {

constexpr uint8_t kFileMagic[4] = {'Z', 'R', 'H', 'V'};
constexpr uint32_t kFormatVersion = 1;

constexpr uint8_t kKeyMarker[4] = {'Z', 'R', 'K', 0x1A};
constexpr uint8_t kValueMarker[4] = {'Z', 'R', 'V', 0x1A};
constexpr size_t kRecordHeaderSize = 8;   // marker, body length
constexpr size_t kRecordTrailerSize = 4;  // CRC-32

constexpr uint32_t kKeyFlagVolatile = 1;

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_FORMAT_LAYOUT_H
