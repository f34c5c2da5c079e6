// KChar without its tables: code page 1361 carries ASCII and the Johab codes, and everything else
// of the code space is lost.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <string>
#include <vector>

#include "table_path_fixture.h"

namespace {

using KString = std::basic_string<KChar>;
using KCharFallbackTest = TablePathFixture;

// Flags that would open every class; without tables they change nothing.
constexpr DWORD kAll = KConvSymbol | KConvHanja | KConvHangul | KConvOldHangul;

TEST_F(KCharFallbackTest, JohabAndAsciiSurviveTheRestIsDropped) {
    const KChar text[] = {0x8861, 0x41, 0x4000, 0x3800, 0x0100, 0x8841, 0};
    WCHAR wide[16];
    EXPECT_EQ(3, ZelKCharToUnicode(kAll, text, -1, wide, 16, u"substitute"));
    EXPECT_EQ(u"\xAC00" u"A\x3131", std::u16string(wide));
    EXPECT_EQ(kZelTableBusyOrFailed, ZelMainTableState());
    EXPECT_EQ(3, ZelKCharToUnicode(0, text, -1, wide, 16));
    EXPECT_EQ(u"\xAC00" u"A\x3131", std::u16string(wide));
    // The length stops the text; the size stops the output.
    EXPECT_EQ(1, ZelKCharToUnicode(kAll, text, 1, wide, 16, nullptr));
    EXPECT_EQ(1, ZelKCharToUnicode(kAll, text, -1, wide, 2, nullptr));
    EXPECT_EQ(u"\xAC00", std::u16string(wide));

    KChar units[8];
    for (int size : {8, 3, 2}) {
        std::vector<KChar> out(size + 1, 0x7777);
        const int n = ZelUnicodeToKChar(kAll, u"\xAC00" u"A\x3131", -1, out.data(), size, nullptr);
        EXPECT_EQ(KString({0x8861, 0x41, 0x8841}).substr(0, size - 1), KString(out.data(), n));
        EXPECT_EQ(0x7777, out[size]);
    }
    EXPECT_EQ(2, ZelUnicodeToKChar(kAll, u"\xAC00" u"A", -1, units, 8));
    EXPECT_EQ(KString({0x8861, 0x41}), KString(units));
    EXPECT_EQ(0, ZelUnicodeToKChar(kAll, u"\xAC00", -1, units, 1, nullptr));
    EXPECT_EQ(0, units[0]);
}

TEST_F(KCharFallbackTest, FallbackReadsTheJohabTableButTheOverloadsDoNot) {
    WriteTable(1361, {{0x8861, 0x4E00}});
    const KChar text[] = {0x8861, 0};
    WCHAR wide[4];
    EXPECT_EQ(1, ZelKCharToUnicode(kAll, text, -1, wide, 4, nullptr));
    EXPECT_EQ(0x4E00, wide[0]);
    EXPECT_EQ(1, ZelKCharToUnicode(kAll, text, -1, wide, 4));
    EXPECT_EQ(0xAC00, wide[0]);
}

TEST_F(KCharFallbackTest, CodePagesOnEitherSide) {
    const KChar text[] = {0x8861, 0x41, 0};
    char narrow[8];
    EXPECT_EQ(4, ZelKCharToAnsi(kAll, 949, text, -1, narrow, 8, nullptr));  // the system counts the terminator
    EXPECT_STREQ("\xB0\xA1" "A", narrow);
    KChar back[8];
    EXPECT_EQ(2, ZelAnsiToKChar(kAll, 949, narrow, -1, back, 8, nullptr));
    EXPECT_EQ(KString(text), KString(back));
    EXPECT_EQ(2, ZelAnsiToKChar(kAll, 949, narrow, -1, back, 8));
    EXPECT_EQ(KString(text), KString(back));
    EXPECT_EQ(4, ZelKCharToAnsi(kAll, 949, text, -1, narrow, 8));
    EXPECT_STREQ("\xB0\xA1" "A", narrow);
    // Small sizes: the wide text in between is cut, the output holds its terminator.
    EXPECT_EQ(0, ZelAnsiToKChar(kAll, 949, narrow, -1, back, 1, nullptr));
    EXPECT_EQ(0, back[0]);
    EXPECT_EQ(1, ZelAnsiToKChar(kAll, 949, "\xB0\xA1", -1, back, 2, nullptr));
    EXPECT_EQ(0x8861, back[0]);
    EXPECT_EQ(0, ZelAnsiToKChar(kAll, 949, nullptr, -1, back, 8, nullptr));
}

}  // namespace

namespace {

// The command: text to hexadecimal units and back, flags by name, and its usage errors.
TEST(KCharCommand, ToAndFromWithNamedFlags) {
    auto to = zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"kchar", "to", "--flags", "hangul,symbol", "\xEA\xB0\x80" "A"});
    EXPECT_EQ(0, to.status) << to.err;
    EXPECT_EQ("0x8861 0x0041\n", to.out);
    auto from = zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"kchar", "from", "-"}, {}, "8861 0x41\n");
    EXPECT_EQ(0, from.status) << from.err;
    EXPECT_EQ("\xEA\xB0\x80" "A\n", from.out);
    EXPECT_EQ(2, zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"kchar", "to", "--flags", "nonsense", "x"}).status);
    EXPECT_EQ(2, zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"kchar", "from", "0x12345"}).status);
    EXPECT_EQ(2, zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"kchar"}).status);
}

}  // namespace
