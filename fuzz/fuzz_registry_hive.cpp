// Feeds arbitrary bytes to the registry's file reader as each kind of file, as they come and with
// every record's checksum put right (so that the checks behind the checksums get fuzzed too).
// Whatever the reader takes must write out and read back whole and unchanged.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/posix/registry/registry_format.h"

namespace {

using zelreg::FileKind;
using zelreg::HiveLoader;

uint32_t ReadU32(const uint8_t* p) { return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24; }

// Rewrites the checksum of each record that a marker starts and whose length fits, and of the header.
std::vector<uint8_t> WithChecksumsRight(const uint8_t* data, size_t size) {
    std::vector<uint8_t> bytes(data, data + size);
    auto put = [&bytes](size_t at, uint32_t crc) {
        for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(crc >> (8 * i));
    };
    if (size >= zelreg::kHeaderBytes) put(24, zelreg::Crc32(bytes.data(), 24));
    size_t pos = 0;
    while (pos + 12 <= size) {
        bool marker = bytes[pos] == 'Z' && bytes[pos + 1] == 'R' && (bytes[pos + 2] == 'K' || bytes[pos + 2] == 'V') &&
                      bytes[pos + 3] == 0x1A;
        uint32_t length = marker ? ReadU32(&bytes[pos + 4]) : 0;
        if (!marker || length > size - pos - 12) {
            ++pos;
            continue;
        }
        put(pos + 8 + length, zelreg::Crc32(&bytes[pos], 8 + length));
        pos += 12 + length;
    }
    return bytes;
}

void RoundTrip(const uint8_t* data, size_t size) {
    const struct {
        HiveLoader::Volatility volatility;
        FileKind kind;
    } modes[] = {{HiveLoader::Volatility::Off, FileKind::Persistent},
                 {HiveLoader::Volatility::On, FileKind::Volatile},
                 {HiveLoader::Volatility::FromFile, FileKind::Saved}};
    for (const auto& mode : modes) {
        zelreg::RegKey root;
        HiveLoader loader(root);
        loader.Load(data, size, mode.volatility);
        // Loading the same bytes again only meets keys that are there already.
        loader.Load(data, size, mode.volatility);
        std::vector<uint8_t> written = zelreg::WriteHiveFile(root, mode.kind, 1);

        zelreg::RegKey again;
        zelreg::LoadStats stats = HiveLoader(again).Load(written.data(), written.size(), mode.volatility);
        if (!stats.headerValid || stats.skipped != 0) abort();
        if (zelreg::WriteHiveFile(again, mode.kind, 1) != written) abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RoundTrip(data, size);
    std::vector<uint8_t> repaired = WithChecksumsRight(data, size);
    RoundTrip(repaired.data(), repaired.size());
    return 0;
}
