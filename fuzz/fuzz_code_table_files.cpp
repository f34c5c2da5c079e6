// Random bytes as a code table file of a random kind in a private ${Common}\Code, then every
// loader and the release. The other files of the main group stay good, so that a damaged one of
// them is read among good ones. Nothing may crash, overrun or leak.
//
// Input: byte 0 picks the kind, byte 1 how the file starts (bit 0: a good header in front, bit 1:
// with the count the kind needs, else bytes 2 to 5 as the count), the rest is the file.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstdio>
#include <string>

#include <zel/paths.h>

#include "codetables/code_table_file.h"
#include "codetables/code_tables.h"
#include "fuzz_check.h"
#include "platform/win32.h"

namespace {

constexpr int kNumber = 320;
const char* const kMainKinds[] = {"gen", "com", "pua", "cjk"};
const unsigned kMainCounts[] = {16384, 3328, 6400, 28416};
const UINT kCodePages[] = {949, 1361, 932, 936, 950, 9566};

std::string g_root;  // the private ${Common}, in the system's form
std::string g_code;  // its Code directory

std::string FileOf(const char* kind) { return g_code + "/u" + std::to_string(kNumber) + "_" + kind + ".dat"; }

void Store(const std::string& path, const std::string& bytes) {
    FILE* file = std::fopen(path.c_str(), "wb");
    Check(file != nullptr);
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

// A good file of a main kind: a few KChar values among unmapped ones.
std::string GoodMainFile(int index) {
    unsigned units = kMainCounts[index] * (index == 2 ? 4 : 1);
    std::string bytes = "Unicode version : 3.2.0\nData count : " + std::to_string(kMainCounts[index]) + "\n";
    for (unsigned i = 0; i < units; ++i) {
        unsigned value = i % 7 == 0 ? (index == 3 ? 0x4000 + i : i & 0x3FFF) : 0x3441;
        bytes += static_cast<char>(value & 0xFF);
        bytes += static_cast<char>(value >> 8);
    }
    return bytes;
}

// Leaves no directory behind when the run ends.
void RemoveDirectory() {
    for (int kind = 0; kind < kZelKindExt; ++kind) unlink(FileOf(ZelTableKindName(kind)).c_str());
    rmdir(g_code.c_str());
    rmdir(g_root.c_str());
}

void SetUpOnce() {
    static bool done = false;
    if (done) return;
    done = true;
    char root[] = "/tmp/zel_fuzz_tables_XXXXXX";
    Check(mkdtemp(root) != nullptr);
    g_root = root;
    g_code = g_root + "/Code";
    Check(mkdir(g_code.c_str(), 0755) == 0);
    std::atexit(RemoveDirectory);
    ZelUnregisterPath(u"Common");
    Check(ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(root).c_str()));
    for (int i = 0; i < 4; ++i) Store(FileOf(kMainKinds[i]), GoodMainFile(i));
}

void CheckReadyTables() {
    if (ZelMainTableState() == kZelTableReady)
        Check(Uni2KCharGenTbl && Uni2KCharComTbl && Uni2KCharPuaTbl && Uni2KCharCjkTbl && KChar2UniGenTbl &&
              KChar2UniCjkTbl);
    if (ZelAuxTableState() == kZelTableReady) Check(AuxPairTbl != nullptr);
    if (ZelYiPuaTableState() == kZelTableReady) Check(YiPuaTbl != nullptr);
    for (UINT codePage : kCodePages) {
        const ZelCodePageTables* tables = ZelCodePageTablesOf(codePage);
        if (!tables) continue;
        Check(tables->mb2UniCount == 0x10000u - ZelFirstCodeOf(codePage));
        // Every code point that maps back names a code of the table range, or a marker.
        for (unsigned u = 0; u < 0x10000; ++u) {
            WORD code = tables->uni2Mb[u];
            Check(code == 0x3F || code >= tables->firstCode);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SetUpOnce();
    if (size < 6) return 0;
    const int kind = data[0] % kZelKindExt;
    std::string bytes;
    if (data[1] & 1) {
        unsigned count = data[2] | data[3] << 8 | data[4] << 16 | static_cast<unsigned>(data[5]) << 24;
        if ((data[1] & 2) && kind < 4) count = kMainCounts[kind];
        bytes = "Unicode version : 3.2.0\nData count : " + std::to_string(count) + "\n";
    }
    bytes.append(reinterpret_cast<const char*>(data) + 6, size - 6);
    const char* name = ZelTableKindName(kind);
    Store(FileOf(name), bytes);

    // The header reader on the same bytes, with every table number that the search can give.
    ZelTableHeader header;
    ZelParseTableHeader(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), kNumber, &header);

    LoadUnicodeTbl();
    LoadUniYi2UniSurrogatePuaTbl();
    for (UINT codePage : kCodePages) EnsureCodePageTbl(codePage);
    CheckReadyTables();
    UnloadUnicodeTbl();
    ZelResetCodeTablesForTest();

    if (kind < 4) {
        Store(FileOf(name), GoodMainFile(kind));
    } else {
        unlink(FileOf(name).c_str());
    }
    return 0;
}
