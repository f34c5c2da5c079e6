// The layout of a resource file, shared by its reader and its writer (tools/resource_file_writer).
//
// A resource file holds the resources of one module, found by type and id as in a Win32 module.
// Every number is little-endian.
//
//   offset  size  field
//   0       8     magic "ZELRES" 0x1A 0x00
//   8       2     version, 1
//   10      2     reserved, 0
//   12      4     comment size in bytes: UTF-8 text at offset 24 that says where the file comes
//                 from (the generator and its source); no terminator, not read by the library
//   16      4     directory offset
//   20      4     directory entry count
//
// The directory is an array of entries of 16 bytes: type, id, data offset, data size, each 32
// bits. Types and ids are integers below 0x10000. Each entry's data lies inside the file; the
// writer puts the directory and every resource at offsets that are multiples of 4, but a reader
// reads bytes and does not rely on it.
//
// A string table (type 6) is cut into blocks as on Win32: block b (id b, from 1) holds the strings
// 16 * (b - 1) to 16 * b - 1, each a 16-bit length followed by that many UTF-16 units; a missing
// string has the length 0. A block always holds all 16 lengths; bytes behind the 16th string are
// padding.
#ifndef ZEL_PLATFORM_COMMON_RESOURCE_FILE_LAYOUT_H
#define ZEL_PLATFORM_COMMON_RESOURCE_FILE_LAYOUT_H

#include <cstddef>
#include <cstdint>

namespace zelres {

constexpr uint8_t kFileMagic[8] = {'Z', 'E', 'L', 'R', 'E', 'S', 0x1A, 0x00};
constexpr uint16_t kFormatVersion = 1;
constexpr size_t kHeaderSize = 24;
constexpr size_t kEntrySize = 16;

constexpr uint32_t kTypeString = 6;
constexpr unsigned kStringsPerBlock = 16;
constexpr uint32_t kMaxId = 0xFFFF;

// The block that holds string id, and the string's place in it.
constexpr uint32_t StringBlockId(uint32_t stringId) { return (stringId >> 4) + 1; }
constexpr unsigned StringIndexInBlock(uint32_t stringId) { return stringId & 15; }

}  // namespace zelres

#endif  // ZEL_PLATFORM_COMMON_RESOURCE_FILE_LAYOUT_H
