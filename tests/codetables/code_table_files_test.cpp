// The code table files: finding them, their headers, and the tables that the loaders build.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zel/paths.h>

#include <filesystem>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_table_file.h"
#include "codetables/code_tables.h"
#include "platform/win32.h"
#include "support/support.h"
#include "table_path_fixture.h"

namespace {

using zeltables::Header;

// A temporary ${Common} with an empty Code directory, and every table state back at 0 around
// each case.
class CodeTableTest : public ::testing::Test {
protected:
    void SetUp() override {
        code_ = dir_.path() + "/Code";
        ASSERT_TRUE(std::filesystem::create_directory(code_.c_str()));
        common_.emplace(dir_.path());
        ASSERT_TRUE(common_->registered());
        ZelResetCodeTablesForTest();
    }
    void TearDown() override {
        ZelResetCodeTablesForTest();
        common_.reset();
    }

    void Write(int number, const std::string& kind, const std::vector<uint16_t>& elements, Header header = {}) {
        size_t count = kind == "pua" ? elements.size() / 4 : elements.size();
        ASSERT_TRUE(zeltables::WriteFile(File(number, kind), header, count, zeltables::Payload16(elements)));
    }
    std::string File(int number, const std::string& kind) const { return zeltables::FileName(code_, number, kind); }

    // The four files of the main group, unmapped but for what a case sets.
    struct MainSet {
        std::vector<uint16_t> gen = std::vector<uint16_t>(16384, 0x3441);
        std::vector<uint16_t> com = std::vector<uint16_t>(3328, 0x3441);
        std::vector<uint16_t> pua = std::vector<uint16_t>(25600, 0);
        std::vector<uint16_t> cjk = std::vector<uint16_t>(28416, 0x3441);
        MainSet() {
            for (size_t i = 0; i < pua.size(); i += 4) pua[i] = 0x3441;
        }
    };
    void WriteMain(int number, const MainSet& set, const std::string& version) {
        Header header;
        header.version = version;
        Write(number, "gen", set.gen, header);
        Write(number, "com", set.com, header);
        Write(number, "pua", set.pua, header);
        Write(number, "cjk", set.cjk, header);
    }

    zeltest::TempDir dir_;
    std::string code_;
    std::optional<ScopedCommon> common_;
};

bool Parse(const std::string& text, int number, ZelTableHeader* header) {
    return ZelParseTableHeader(reinterpret_cast<const uint8_t*>(text.data()), text.size(), number, header);
}

TEST(CodeTableHeader, VersionAndCountLines) {
    ZelTableHeader header;
    // Case-blind keys; every non-digit of a value is dropped.
    ASSERT_TRUE(Parse("UNICODE VERSION : 2.0.0\ndata COUNT : 1,234\nrest", 200, &header));
    EXPECT_EQ(1234u, header.count);
    EXPECT_EQ(std::strlen("UNICODE VERSION : 2.0.0\ndata COUNT : 1,234\n"), header.payloadOffset);
    EXPECT_FALSE(Parse("Unicode version : 2.0.1\nData count : 5\n", 200, &header));

    // Carriage returns and lines in front count toward the payload offset.
    ASSERT_TRUE(Parse("banner\r\nUnicode version : 3.2.0\r\nnote\r\nData count : 7\r\nxx", 320, &header));
    EXPECT_EQ(7u, header.count);
    EXPECT_EQ(8u + 25 + 6 + 16, header.payloadOffset);

    // A count line needs a matching version line before it, and its own line feed.
    EXPECT_FALSE(Parse("Data count : 5\nUnicode version : 3.2.0\n", 320, &header));
    EXPECT_FALSE(Parse("Unicode version : 3.2.0\nData count : 5", 320, &header));
    EXPECT_FALSE(Parse("Unicode version : 3.2.0\nData count : 5\n", 32, &header));
    // A huge count saturates instead of wrapping.
    ASSERT_TRUE(Parse("Unicode version : 3.2.0\nData count : 99999999999\n", 320, &header));
    EXPECT_EQ(0xFFFFFFFFu, header.count);
}

TEST_F(CodeTableTest, FindTakesTheHighestThreeDigitNumber) {
    int number = 0;
    WCHAR path[MAX_PATH];
    EXPECT_EQ(0, FindCodeTableFile(kZelKindGen, &number, path));  // an empty directory

    zeltest::WriteFile(File(0, "gen"), "");
    EXPECT_EQ(0, FindCodeTableFile(kZelKindGen, &number, path));  // 000 is nothing

    zeltest::WriteFile(File(100, "gen"), "");
    zeltest::WriteFile(File(200, "gen"), "");
    zeltest::WriteFile(code_ + "/u9x9_gen.dat", "");  // not all digits: passed over
    zeltest::WriteFile(File(300, "com"), "");
    ASSERT_EQ(1, FindCodeTableFile(kZelKindGen, &number, path));
    EXPECT_EQ(200, number);
    EXPECT_EQ(ZelPlatformPathFromSystem(File(200, "gen").c_str()), path);

    // A known number names the file without looking for it.
    number = 42;
    ASSERT_EQ(1, FindCodeTableFile(kZelKindU2k, &number, path));
    EXPECT_EQ(ZelPlatformPathFromSystem(File(42, "u2k").c_str()), path);
}

TEST_F(CodeTableTest, MainGroupBuildsForwardAndReverseTables) {
    MainSet set;
    set.gen[0x41] = 0x0100;  // two code points, one KChar: the higher one maps back
    set.gen[0x42] = 0x0100;
    set.gen[0x50] = 0x0400;  // "com" and then "pua" win over "gen"
    set.com[0x000] = 0x0400;
    set.com[0x700] = 0x0200;  // U+A800
    set.com[0x800] = 0x0600;  // U+FB00
    set.pua[5 * 4] = 0x0400;  // U+E005
    set.pua[5 * 4 + 1] = 0x0011;
    set.cjk[0x0000] = 0x4000;  // U+3400, and the compatibility U+F900 wins over it
    set.cjk[0x6D00] = 0x4000;
    set.cjk[0x0001] = 0x4001;  // U+3401
    set.cjk[0x0010] = 0x0500;  // outside the KChar range of "cjk": no reverse entry
    set.cjk[0x6C00] = 0xAEFF;  // U+A700, the last KChar of the range
    WriteMain(200, set, "2.0.0");
    // Only the number of the first file found counts for the later kinds.
    MainSet older;
    older.cjk[0x0003] = 0x4444;
    Write(100, "gen", older.gen);
    Write(100, "chs", {0x3401, 0x3404});

    // Variants: a later kind sees what an earlier one filled in; a target with a KChar keeps it.
    Header v200;
    v200.version = "2.0.0";
    Write(200, "chs", {0x3401, 0x3402, 0x3400, 0x3401, 0x0041, 0x3405}, v200);
    Write(200, "jpn", {0x3402, 0x3403}, v200);
    Write(200, "u2k", {0xAC00, 0x1234}, v200);

    ASSERT_EQ(2, LoadUnicodeTbl());
    EXPECT_EQ(2, ZelMainTableState());
    EXPECT_EQ(0x0100, Uni2KCharGenTbl[0x41]);
    EXPECT_EQ(0x0042, KChar2UniGenTbl[0x0100]);
    EXPECT_EQ(0xE005, KChar2UniGenTbl[0x0400]);
    EXPECT_EQ(0xA800, KChar2UniGenTbl[0x0200]);
    EXPECT_EQ(0xFB00, KChar2UniGenTbl[0x0600]);
    EXPECT_EQ(0xFFFD, KChar2UniGenTbl[0x0500]);
    EXPECT_EQ(0xFFFD, KChar2UniGenTbl[0x3441]);
    EXPECT_EQ(0x0011, Uni2KCharPuaTbl[5 * 4 + 1]);
    EXPECT_EQ(0xF900, KChar2UniCjkTbl[0]);
    EXPECT_EQ(0xA700, KChar2UniCjkTbl[0xAEFF - 0x4000]);

    EXPECT_EQ(0x4001, Uni2KCharCjkTbl[0x0001]);  // kept
    EXPECT_EQ(0x4001, Uni2KCharCjkTbl[0x0002]);
    EXPECT_EQ(0x4001, Uni2KCharCjkTbl[0x0003]);  // filled by "jpn" from what "chs" filled
    EXPECT_EQ(0x3441, Uni2KCharCjkTbl[0x0004]);  // the pair of the older file was never read
    EXPECT_EQ(0x3441, Uni2KCharCjkTbl[0x0005]);  // a source outside the ranges merges nothing
    EXPECT_EQ(0x3401, KChar2UniCjkTbl[1]);       // the merge leaves the reverse table alone
    EXPECT_EQ(3u, ChsVariantCount);
    EXPECT_EQ(1u, JpnVariantCount);
    EXPECT_EQ(0u, KorVariantCount);
    ASSERT_EQ(1u, Uni2KCharExtraCount);
    EXPECT_EQ(0x1234, Uni2KCharExtraTbl[0].second);

    UnloadUnicodeTbl();
    EXPECT_EQ(0, ZelMainTableState());
    EXPECT_EQ(nullptr, Uni2KCharGenTbl);
    EXPECT_EQ(nullptr, ChsVariantTbl);
    EXPECT_EQ(0u, ChsVariantCount);
    UnloadUnicodeTbl();  // twice is harmless
    EXPECT_EQ(2, LoadUnicodeTbl());  // and the next use reads afresh
}

TEST_F(CodeTableTest, AShortFileKeepsItsFillValues) {
    MainSet set;
    set.gen.assign(100, 0x0700);
    WriteMain(320, set, "3.2.0");
    // Rewrite "gen" with the full count but a payload of 100 elements and a half.
    std::vector<uint8_t> payload = zeltables::Payload16(set.gen);
    payload.push_back(0x12);
    ASSERT_TRUE(zeltables::WriteFile(File(320, "gen"), Header{}, 16384, payload));
    ASSERT_EQ(2, LoadUnicodeTbl());
    EXPECT_EQ(0x0700, Uni2KCharGenTbl[99]);
    EXPECT_EQ(0x3441, Uni2KCharGenTbl[100]);
    EXPECT_EQ(0x3441, Uni2KCharGenTbl[16383]);
    EXPECT_EQ(99, KChar2UniGenTbl[0x0700]);
}

TEST_F(CodeTableTest, AFailedMainLoadStaysFailed) {
    MainSet set;
    WriteMain(320, set, "3.2.0");
    Header wrongCount;
    wrongCount.count = "16383";
    Write(320, "gen", set.gen, wrongCount);
    EXPECT_EQ(1, LoadUnicodeTbl());
    EXPECT_EQ(nullptr, Uni2KCharGenTbl);
    // Not read again, not even with a good file, and unload leaves the failure in place.
    Write(320, "gen", set.gen);
    EXPECT_EQ(1, LoadUnicodeTbl());
    UnloadUnicodeTbl();
    EXPECT_EQ(1, LoadUnicodeTbl());

    // Once the number is known, a missing kind fails the load; a wrong version does too.
    ZelResetCodeTablesForTest();
    ASSERT_EQ(0, std::remove(File(320, "pua").c_str()));
    EXPECT_EQ(1, LoadUnicodeTbl());
    ZelResetCodeTablesForTest();
    Header wrongVersion;
    wrongVersion.version = "3.2.1";
    Write(320, "pua", set.pua, wrongVersion);
    EXPECT_EQ(1, LoadUnicodeTbl());
    ZelResetCodeTablesForTest();
    Write(320, "pua", set.pua);
    EXPECT_EQ(2, LoadUnicodeTbl());
}

TEST_F(CodeTableTest, AuxAndYiTablesHaveTheirOwnNumbers) {
    WriteMain(320, MainSet{}, "3.2.0");
    Header v410;
    v410.version = "4.1.0";
    Write(410, "aux", {0xE100, 0x2000, 0xE101}, v410);  // an odd count: the last unit is alone
    std::vector<uint32_t> yi(256, 0);
    yi[1] = 0xF0001;
    ASSERT_TRUE(zeltables::WriteFile(File(400, "zel"), [] { Header h; h.version = "4.0.0"; return h; }(), 256,
                                     zeltables::Payload32(yi)));

    // Before the main group is ready the Yi table can't become ready, and that sticks.
    EXPECT_EQ(1, LoadUniYi2UniSurrogatePuaTbl());
    ASSERT_EQ(2, LoadUnicodeTbl());
    EXPECT_EQ(2, ZelAuxTableState());
    ASSERT_EQ(3u, AuxPairCount);
    EXPECT_EQ(0x2000, AuxPairTbl[1]);
    EXPECT_EQ(1, ZelYiPuaTableState());
    EXPECT_EQ(nullptr, YiPuaTbl);

    ZelResetCodeTablesForTest();
    ASSERT_EQ(2, LoadUnicodeTbl());
    ASSERT_EQ(2, LoadUniYi2UniSurrogatePuaTbl());
    ASSERT_EQ(256u, YiPuaCount);
    EXPECT_EQ(0xF0001u, YiPuaTbl[1]);
    UnloadUnicodeTbl();
    EXPECT_EQ(0, ZelAuxTableState());
    EXPECT_EQ(0, ZelYiPuaTableState());
    EXPECT_EQ(nullptr, AuxPairTbl);
}

TEST_F(CodeTableTest, CodePageTables) {
    EXPECT_EQ(0x8140, ZelFirstCodeOf(949));
    EXPECT_EQ(0, ZelFirstCodeOf(1252));
    EXPECT_EQ(1, EnsureCodePageTbl(1252));
    EXPECT_EQ(1, EnsureCodePageTbl(949));  // no file: failed for good
    EXPECT_EQ(nullptr, ZelCodePageTablesOf(949));
    ZelResetCodeTablesForTest();

    // Two codes with one code point: the lower code wins. A short count maps nothing beyond it.
    Header v500;
    v500.version = "5.0.0";
    Write(500, "949", {0xAC00, 0x0041, 0xAC00, 0xFFFD}, v500);
    Write(320, "949", {0x1111});
    std::vector<uint16_t> gb(0x10000 - 0x8130, 0xFFFD);
    gb[125 * 256 + 10] = 0x4E00;  // 0xFE3A, just past the last two bytes that open four
    Write(320, "936", gb);
    ASSERT_EQ(2, EnsureCodePageTbl(949));
    const ZelCodePageTables* tables = ZelCodePageTablesOf(949);
    ASSERT_NE(nullptr, tables);
    EXPECT_EQ(0x8140, tables->uni2Mb[0xAC00]);
    EXPECT_EQ(0x8141, tables->uni2Mb[0x0041]);
    EXPECT_EQ(0x003F, tables->uni2Mb[0x1111]);  // only in the older file
    ASSERT_GE(tables->mb2UniCount, 0x10000u - 0x8140);
    EXPECT_EQ(0xFFFD, tables->mb2Uni[4]);
    EXPECT_EQ(0xFFFD, tables->mb2Uni[0xFFFF - 0x8140]);

    ASSERT_EQ(2, EnsureCodePageTbl(936));
    tables = ZelCodePageTablesOf(936);
    ASSERT_NE(nullptr, tables);
    EXPECT_EQ(kZel936FourByteMarker, tables->uni2Mb[0x0080]);
    EXPECT_EQ(kZel936FourByteMarker, tables->uni2Mb[0xDC00]);
    EXPECT_EQ(kZel936FourByteMarker, tables->uni2Mb[0xFFFF]);
    EXPECT_EQ(0xFE3A, tables->uni2Mb[0x4E00]);
    EXPECT_EQ(kZel936OpenerMarker, tables->mb2Uni[0]);
    EXPECT_EQ(kZel936OpenerMarker, tables->mb2Uni[125 * 256 + 9]);
    EXPECT_EQ(0x4E00, tables->mb2Uni[125 * 256 + 10]);

    UnloadUnicodeTbl();  // releases code pages whatever the main state
    EXPECT_EQ(0, ZelCodePageTableState(949));
    EXPECT_EQ(nullptr, ZelCodePageTablesOf(936));
}

// On a system of the 95 family the wide open converts its path through the code page front end,
// which loads a code page table in the middle of the main group's load. The system's version is
// read once per process, so the test runs in a process started as on such a system.
TEST_F(CodeTableTest, MainGroupLoadsInAnsiMode) {
    if (ZelGetWinVersion() != 1) {
        const auto child = zeltest::RunTestsInNewProcess("CodeTableTest.MainGroupLoadsInAnsiMode",
                                                         {{"ZEL_OS_VERSION", "1.4.0"}});
        if (child.skipped) GTEST_SKIP() << child.err;
        EXPECT_EQ(0, child.status) << child.out << child.err;
        return;
    }
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "needs the Korean code page";
    WriteMain(320, MainSet{}, "3.2.0");
    Write(320, "949", std::vector<uint16_t>(0x10000 - 0x8140, 0xFFFD));
    EXPECT_EQ(2, LoadUnicodeTbl());
    EXPECT_EQ(0x3441, Uni2KCharGenTbl[0]);
    EXPECT_EQ(2, ZelCodePageTableState(949));  // read on the way
}

TEST_F(CodeTableTest, ConcurrentFirstLoadsReadOnce) {
    WriteMain(320, MainSet{}, "3.2.0");
    Write(320, "950", {0x4E00});
    std::vector<std::thread> threads;
    std::vector<int> main(8), page(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&, i] {
            main[i] = LoadUnicodeTbl();
            page[i] = EnsureCodePageTbl(950);
        });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < 8; ++i) {
        EXPECT_NE(0, main[i]);    // 1 only while another thread was reading
        EXPECT_EQ(2, page[i]);    // a code page's state changes only when its load has ended
    }
    EXPECT_EQ(2, ZelMainTableState());
}

// The code page tables that the build made from the system's conversions.
TEST_F(CodeTableTest, ShippedCodePageTablesLoad) {
    ZelUnregisterPath(u"Common");
    ASSERT_TRUE(ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(ZEL_TEST_LIBRARY_DIR).c_str()));
    struct Sample {
        UINT codePage;
        WORD code;
        WORD unicode;
    };
    const Sample samples[] = {{949, 0xB0A1, 0xAC00}, {932, 0x82A0, 0x3042}, {936, 0xB0A1, 0x554A},
                              {950, 0xA440, 0x4E00}, {1361, 0x8861, 0xAC00}};
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.codePage);
        ASSERT_EQ(2, EnsureCodePageTbl(sample.codePage));
        const ZelCodePageTables* tables = ZelCodePageTablesOf(sample.codePage);
        EXPECT_EQ(sample.unicode, tables->mb2Uni[sample.code - tables->firstCode]);
        EXPECT_EQ(sample.code, tables->uni2Mb[sample.unicode]);
    }
    EXPECT_EQ(1, EnsureCodePageTbl(9566));  // no file is made for it
}

}  // namespace
