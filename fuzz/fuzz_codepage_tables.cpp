// Random bytes and random UTF-16 through every table code page, with random sizes. The tables are
// written once into a temporary ${Common}, with scrambled mappings so that every kind of entry
// turns up, the markers of 936 among them. Behind every output buffer lies a canary: nothing may
// be written past the size, the count is never above size - 1 and the text is terminated. The
// bulk walks of the table path must also give what the one-by-one walks give, count and buffer,
// at a level of the decoder's block kernels that the input picks.
#include <sys/stat.h>
#include <unistd.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "codetables/codepage_table_path.h"
#include "platform/win32.h"
#include "strings/utf_blocks.h"

#include "fuzz_check.h"

namespace {

constexpr UINT kTableCodePages[] = {949, 1361, 932, 936, 950, 9566};

// Mostly CJK and Hangul, with a share of ASCII, surrogates, U+FFFD and the marker values.
uint16_t Scrambled(uint32_t code) {
    uint32_t h = code * 2654435761u;
    h ^= h >> 15;
    switch (h % 16) {
    case 0: return 0xFFFD;
    case 1: return uint16_t(0xD800 + (h >> 8) % 0x800);
    case 2: return uint16_t((h >> 8) % 0x80);
    case 3: return 0xAC00;
    case 4: return 0x8130;
    default: return uint16_t(0x3000 + (h >> 8) % 0xA000);
    }
}

char g_directory[] = "/tmp/zel-fuzz-tables-XXXXXX";

// The tables stay in memory once loaded, so the files can go when the run ends.
void RemoveTables() {
    const std::string code = std::string(g_directory) + "/Code";
    for (UINT page : kTableCodePages) std::remove(zeltables::FileName(code, 320, std::to_string(page)).c_str());
    ::rmdir(code.c_str());
    ::rmdir(g_directory);
}

void WriteTables() {
    const char* pattern = mkdtemp(g_directory);
    Check(pattern != nullptr);
    std::atexit(RemoveTables);
    const std::string code = std::string(pattern) + "/Code";
    Check(::mkdir(code.c_str(), 0755) == 0);
    for (UINT page : kTableCodePages) {
        const uint32_t first = ZelFirstCodeOf(page);
        std::vector<uint16_t> entries(0x10000 - first);
        for (uint32_t i = 0; i < entries.size(); ++i) entries[i] = Scrambled(first + i);
        Check(zeltables::WriteFile(zeltables::FileName(code, 320, std::to_string(page)), zeltables::Header{},
                                   entries.size(), zeltables::Payload16(entries)));
    }
    ZelUnregisterPath(u"Common");
    Check(ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(pattern).c_str()));
    for (UINT page : kTableCodePages) Check(EnsureCodePageTbl(page) == kZelTableReady);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = (WriteTables(), true);
    (void)ready;
    if (size < 4 || size > 8192) return 0;
    const UINT page = kTableCodePages[data[0] % std::size(kTableCodePages)];
    const UINT other = kTableCodePages[(data[0] / 8) % std::size(kTableCodePages)];
    const bool counted = data[1] & 1;
    zel::utf::LimitBlockLevel((data[1] >> 1) % 3);
    const int outSize = int(((data[2] << 8) | data[3]) % 1200);
    data += 4;
    size -= 4;

    // The input in a buffer of its own length, or with exactly one terminator behind it, so that a
    // read past either is caught.
    auto bytes = std::make_unique<char[]>(size + 1);
    std::memcpy(bytes.get(), data, size);
    bytes[size] = 0;
    const int length = counted ? int(size) : -1;

    Output<WCHAR> wide(outSize);
    wide.Verify(ZelAnsiToUnicode(0, page, bytes.get(), length, wide.data(), outSize, 0));

    const size_t unitCount = size / 2;
    auto units = std::make_unique<WCHAR[]>(unitCount + 1);
    std::memcpy(units.get(), data, unitCount * sizeof(WCHAR));
    units[unitCount] = 0;
    Output<char> narrow(outSize);
    narrow.Verify(ZelUnicodeToAnsi(0, page, units.get(), counted ? int(unitCount) : -1, narrow.data(), outSize,
                                   counted ? "*" : nullptr));

    // The same text through both walks of the tables, the whole buffers compared.
    const ZelCodePageTables* tables = ZelCodePageTablesOf(page);
    Check(tables != nullptr);
    Output<WCHAR> wideBulk(outSize), wideByOne(outSize);
    const int wideCount = ZelTableToUnicode(page, *tables, bytes.get(), length, wideBulk.data(), outSize);
    wideBulk.Verify(wideCount);
    Check(wideCount == ZelTableToUnicodeOneByOne(page, *tables, bytes.get(), length, wideByOne.data(), outSize));
    Check(wideBulk.units == wideByOne.units);
    Output<char> narrowBulk(outSize), narrowByOne(outSize);
    const int unitLength = counted ? int(unitCount) : -1;
    const int narrowCount = ZelTableFromUnicode(page, *tables, units.get(), unitLength, narrowBulk.data(), outSize);
    narrowBulk.Verify(narrowCount);
    Check(narrowCount ==
          ZelTableFromUnicodeOneByOne(page, *tables, units.get(), unitLength, narrowByOne.data(), outSize));
    Check(narrowBulk.units == narrowByOne.units);

    Output<char> across(outSize);
    across.Verify(ZelAnsiToAnsi(0, page, bytes.get(), length, other, across.data(), outSize, nullptr));
    return 0;
}
