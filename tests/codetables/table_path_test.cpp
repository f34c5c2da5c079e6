// The table path of the code page front end: the code pages read through tables written for the
// case, the rules of single and double bytes, and the bounds of both buffers.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <cstring>
#include <string>

#include "codetables/codepage_table_path.h"
#include "support/support.h"
#include "codetables/table_path_fixture.h"

namespace {

using Wide = std::u16string;
using TablePath = TablePathFixture;

// Code 0xB0A1 reads as U+4E00 here, where the system reads U+AC00: the result shows which path ran.
constexpr unsigned kMarkedCode = 0xB0A1;
constexpr char16_t kMarkedUnit = 0x4E00;

Wide ToWide(UINT codePage, const std::string& text, int length, int size = 32) {
    WCHAR buffer[64];
    const int count = ZelAnsiToUnicode(0, codePage, text.c_str(), length, buffer, size, 0);
    return Wide(buffer, buffer + count);
}

std::string ToNarrow(UINT codePage, const Wide& text, int length, const char* defaultChar = nullptr) {
    char buffer[64];
    const int count = ZelUnicodeToAnsi(0, codePage, text.c_str(), length, buffer, 32, defaultChar);
    return std::string(buffer, buffer + count);
}

TEST_F(TablePath, CodePageZeroReadsTheTableOfTheAnsiCodePage) {
    zeltest::SystemLocale korean({.acp = "949", .oemcp = "949"});
    if (!korean.active()) GTEST_SKIP() << "needs the Korean code pages";
    WriteTable(949, {{kMarkedCode, kMarkedUnit}});
    WCHAR wide[8];
    // The table path counts without the terminator, with a length of -1 too.
    EXPECT_EQ(2, ZelAnsiToUnicode(0, 0, "\xB0\xA1" "A", -1, wide, 8, 0));
    EXPECT_EQ(Wide(u"\u4E00A"), wide);
    char narrow[8];
    EXPECT_EQ(3, ZelUnicodeToAnsi(0, 0, u"\u4E00A", -1, narrow, 8, nullptr));
    EXPECT_EQ(std::string("\xB0\xA1" "A"), narrow);
    EXPECT_EQ(kZelTableReady, ZelCodePageTableState(949));
    // Code page 1 is the OEM code page.
    EXPECT_EQ(1, ZelAnsiToUnicode(0, 1, "\xB0\xA1", -1, wide, 8, 0));
    EXPECT_EQ(kMarkedUnit, wide[0]);
}

TEST_F(TablePath, WithoutItsTableACodePageGoesToTheSystem) {
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "needs the Korean code page";
    WCHAR wide[8];
    // The system counts the terminator of a zero-terminated text.
    EXPECT_EQ(2, ZelAnsiToUnicode(0, 0, "\xB0\xA1", -1, wide, 8, 0));
    EXPECT_EQ(Wide(u"\uAC00"), wide);
    EXPECT_EQ(kZelTableBusyOrFailed, ZelCodePageTableState(949));
    // A table written later is not seen: the failed load is not tried again.
    WriteTable(949, {{kMarkedCode, kMarkedUnit}});
    EXPECT_EQ(Wide(u"\uAC00"), ToWide(949, "\xB0\xA1", 2));
}

TEST_F(TablePath, LeadBytesBelowTheFirstCodeAndAtTheEndOfTheText) {
    WriteTable(949, {{kMarkedCode, kMarkedUnit}, {0xC700, 0x3131}});
    // 0x8120 lies below the first code: 0x81 stands alone and 0x20 is read by itself.
    EXPECT_EQ(Wide(u"\u0081 "), ToWide(949, "\x81\x20", -1));
    // A lead byte at the end takes the terminator as its second byte; at the end of a counted
    // text the byte behind it is never read and counts as that terminator.
    EXPECT_EQ(Wide(u"\u3131"), ToWide(949, "\xC7", -1));
    EXPECT_EQ(Wide(u"\u3131"), ToWide(949, "\xC7\xD1", 1));
    EXPECT_EQ(Wide(u"\uFFFD"), ToWide(949, "\xB0", -1));
    EXPECT_EQ(Wide(u"\uFFFD"), ToWide(949, "\xB0\xA1", 1));
    EXPECT_EQ(Wide(u"\u0081"), ToWide(949, "\x81", -1));
    EXPECT_EQ(Wide(u"\u0081"), ToWide(949, "\x81\x41", 1));
    // A counted text passes its zeros on.
    EXPECT_EQ(Wide(u"A\0B", 3), ToWide(949, std::string("A\0B", 3), 3));
}

TEST_F(TablePath, UnmappedTextGetsTheTablesOwnAnswer) {
    WriteTable(949, {{kMarkedCode, kMarkedUnit}});
    // Toward the code page the table's 0x3F stands, whatever default character was passed.
    EXPECT_EQ("?A?", ToNarrow(949, u"\u0E01A\uAC00", -1, "*"));
    EXPECT_EQ("?", ToNarrow(949, u"\u0E01", 1));
    // Toward Unicode U+FFFD stands, and both bytes are used.
    EXPECT_EQ(Wide(u"\uFFFDA"), ToWide(949, "\xC7\xD1" "A", -1));
}

TEST_F(TablePath, EachPageHasItsFirstCode) {
    WriteTable(1361, {{0x802B, 0x3131}, {0x8861, 0xAC00}});
    WriteTable(950, {{0xA140, 0x3000}});
    WriteTable(9566, {{0xA1A0, 0x3001}});
    WriteTable(949, {});
    EXPECT_EQ(Wide(u"\u3131\uAC00"), ToWide(1361, "\x80\x2B\x88\x61", -1));
    EXPECT_EQ("\x80\x2B\x88\x61", ToNarrow(1361, u"\u3131\uAC00", -1));
    // The same bytes lie below the first code of 949.
    EXPECT_EQ(Wide(u"\u0080+"), ToWide(949, "\x80\x2B", -1));
    EXPECT_EQ(Wide(u"\u3000\u00A1?"), ToWide(950, "\xA1\x40\xA1\x3F", -1));
    EXPECT_EQ(Wide(u"\u3000\u00A1"), ToWide(950, "\xA1\x40\xA1\x3F", 3));
    EXPECT_EQ(Wide(u"\u3001\u00A1\u009F"), ToWide(9566, "\xA1\xA0\xA1\x9F", -1));
    EXPECT_EQ("\xA1\xA0", ToNarrow(9566, u"\u3001", -1));
}

TEST_F(TablePath, HalfWidthKatakanaAreSingleBytesOf932Only) {
    WriteTable(932, {{0x82A0, 0x3042}, {0x8140, 0x3000}});
    EXPECT_EQ(Wide(u"\uFF60\uFF9F\u3042\uFFFD"), ToWide(932, "\xA0\xDF\x82\xA0\xE0", -1));
    EXPECT_EQ("\xA0\xDF\x82\xA0\x81\x40", ToNarrow(932, u"\uFF60\uFF9F\u3042\u3000", -1));
    // U+FF5F and U+FFA0 lie outside the single-byte range and have no code in this table.
    EXPECT_EQ("??", ToNarrow(932, u"\uFF5F\uFFA0", -1));
}

TEST_F(TablePath, AnsiToAnsiJoinsTwoTables) {
    WriteTable(949, {{kMarkedCode, kMarkedUnit}});
    WriteTable(950, {{0xA440, kMarkedUnit}});
    char narrow[8];
    EXPECT_EQ(3, ZelAnsiToAnsi(0, 949, "\xB0\xA1" "x", -1, 950, narrow, 8, nullptr));
    EXPECT_EQ(std::string("\xA4\x40" "x"), narrow);
    // The intermediate text of a small target holds (size x 3) / 2 units with its terminator.
    EXPECT_EQ(2, ZelAnsiToAnsi(0, 949, "\xB0\xA1" "xyz", -1, 950, narrow, 3, nullptr));
    EXPECT_EQ(std::string("\xA4\x40"), narrow);
}

TEST_F(TablePath, NothingIsWrittenPastTheSize) {
    WriteTable(949, {{kMarkedCode, kMarkedUnit}});
    char narrow[8];
    std::memset(narrow, '#', sizeof narrow);
    // Size 1: the terminator alone.
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 949, u"A", -1, narrow, 1, nullptr));
    EXPECT_EQ(0, narrow[0]);
    EXPECT_EQ('#', narrow[1]);
    // A double-byte code in the last byte of room leaves its lead byte alone there.
    std::memset(narrow, '#', sizeof narrow);
    EXPECT_EQ(3, ZelUnicodeToAnsi(0, 949, u"\u4E00\u4E00", -1, narrow, 4, nullptr));
    EXPECT_EQ(std::string("\xB0\xA1\xB0", 4), std::string(narrow, 4));
    EXPECT_EQ('#', narrow[4]);

    WCHAR wide[8];
    std::fill(wide, wide + 8, u'#');
    EXPECT_EQ(2, ZelAnsiToUnicode(0, 949, "ABC", -1, wide, 3, 0));
    EXPECT_EQ(Wide(u"AB"), wide);
    EXPECT_EQ(u'#', wide[3]);
    std::fill(wide, wide + 8, u'#');
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 949, "ABC", -1, wide, 1, 0));
    EXPECT_EQ(0, wide[0]);
    EXPECT_EQ(u'#', wide[1]);
}

// Tables made by hand: a code beyond the count of the table has no mapping.
TEST(TablePathTables, ACodeBeyondTheCountIsUnmapped) {
    const WORD mb2Uni[2] = {0x3000, 0x3001};
    WORD uni2Mb[0x10000];
    std::fill(uni2Mb, uni2Mb + 0x10000, WORD{0x3F});
    const ZelCodePageTables tables = {mb2Uni, 2, uni2Mb, 0x8140};
    WCHAR wide[8];
    EXPECT_EQ(3, ZelTableToUnicode(949, tables, "\x81\x41\x81\x42\x81\x40", -1, wide, 8));
    EXPECT_EQ(Wide(u"\u3001\uFFFD\u3000"), wide);
    // Bad arguments get an empty answer.
    EXPECT_EQ(0, ZelTableToUnicode(949, tables, nullptr, -1, wide, 8));
    EXPECT_EQ(0, wide[0]);
    EXPECT_EQ(0, ZelTableToUnicode(949, tables, "A", -7, wide, 8));
    EXPECT_EQ(0, ZelTableToUnicode(949, tables, "A", 1, wide, 0));
    char narrow[4];
    EXPECT_EQ(0, ZelTableFromUnicode(949, tables, nullptr, 3, narrow, 4));
    EXPECT_EQ(0, narrow[0]);
}

}  // namespace
