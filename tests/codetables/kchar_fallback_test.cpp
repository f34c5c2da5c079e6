// KChar without its tables: code page 1361 carries ASCII and the Johab codes, and everything else
// of the code space is lost.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <climits>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/system.h"
#include "table_path_fixture.h"

namespace {

using KString = std::basic_string<KChar>;
using KCharFallbackTest = TablePathFixture;

// Flags that would open every class; without tables they change nothing.
constexpr DWORD kAll = KConvSymbol | KConvHanja | KConvHangul | KConvOldHangul;

TEST_F(KCharFallbackTest, JohabAndAsciiSurviveTheRestIsDropped) {
    const KChar text[] = {0x8861, 0x41, 0x4000, 0x3800, 0x0100, 0x8841, 0};
    WCHAR wide[16];
    // Wine reads a lone Johab initial as a conjoining letter (U+1100), Windows as U+3131.
    const std::u16string johab = zeltest::RunningUnderWine() ? u"\xAC00" u"A\x1100" : u"\xAC00" u"A\x3131";
    EXPECT_EQ(3, ZelKCharToUnicode(kAll, text, -1, wide, 16, u"substitute"));
    EXPECT_EQ(johab, std::u16string(wide));
    EXPECT_EQ(kZelTableBusyOrFailed, ZelMainTableState());
    EXPECT_EQ(3, ZelKCharToUnicode(0, text, -1, wide, 16));
    EXPECT_EQ(johab, std::u16string(wide));
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

// A conversion of a text with a given length into 16 units, as a function of that length. It gives
// the output up to the first zero, each unit widened to 16 bits, and checks the unit behind it.
template <typename Out>
std::function<std::u16string(int)> Converting(std::function<void(int, Out*, int)> convert) {
    return [convert](int length) {
        std::vector<Out> out(17, Out(0x77));
        convert(length, out.data(), 16);
        EXPECT_EQ(Out(0x77), out[16]) << "written past the size";
        std::u16string text;
        for (size_t i = 0; i < 16 && out[i]; ++i) text += char16_t(std::make_unsigned_t<Out>(out[i]));
        return text;
    };
}

// Only -1 reads up to the zero unit: any other negative length is no text, and a zero unit ends
// the text whatever the length. The counted part is followed by more text, so a negative length
// taken for -1 shows. With tables and without, and by the system alone.
TEST_F(KCharFallbackTest, OnlyMinusOneReadsUpToTheZeroUnit) {
    const KChar kText[] = {0x8861, 0x8862, 0x8861, 0x8862, 0};
    const WCHAR wText[] = u"\xAC00\xAC01\xAC00\xAC01";
    const std::u16string johab = u"\x8861\x8862\x8861\x8862", bytes = u"\xB0\xA1\xB0\xA2\xB0\xA1\xB0\xA2";
    // Each call with its whole output and the units of it that the first two characters give.
    const struct {
        const char* name;
        std::function<std::u16string(int)> run;
        std::u16string whole;
        size_t firstTwo;
    } calls[] = {
        {"to Unicode",
         Converting<WCHAR>([&](int n, WCHAR* o, int s) { ZelKCharToUnicode(kAll, kText, n, o, s, nullptr); }), wText,
         2},
        {"to Unicode by the system",
         Converting<WCHAR>([&](int n, WCHAR* o, int s) { ZelKCharToUnicode(kAll, kText, n, o, s); }), wText, 2},
        {"to KChar",
         Converting<KChar>([&](int n, KChar* o, int s) { ZelUnicodeToKChar(kAll, wText, n, o, s, nullptr); }), johab,
         2},
        {"to KChar by the system",
         Converting<KChar>([&](int n, KChar* o, int s) { ZelUnicodeToKChar(kAll, wText, n, o, s); }), johab, 2},
        {"to 949", Converting<char>([&](int n, char* o, int s) { ZelKCharToAnsi(kAll, 949, kText, n, o, s, nullptr); }),
         bytes, 4},
        {"to 949 by the system",
         Converting<char>([&](int n, char* o, int s) { ZelKCharToAnsi(kAll, 949, kText, n, o, s); }), bytes, 4},
    };
    enum Expect { kWhole, kFirstTwo, kNone };
    const std::pair<int, Expect> rows[] = {{-1, kWhole}, {INT_MAX, kWhole}, {2, kFirstTwo},
                                           {0, kNone},   {-2, kNone},       {INT_MIN, kNone}};
    for (const bool tables : {false, true}) {
        if (tables) {
            ZelResetCodeTablesForTest();
            WriteMainGroup(std::vector<uint16_t>(25600, 0x3441));
            ASSERT_EQ(kZelTableReady, LoadUnicodeTbl());
        }
        for (const auto& call : calls) {
            for (const auto& [length, expect] : rows) {
                SCOPED_TRACE(std::string(call.name) + (tables ? " with tables" : "") + ", length " +
                             std::to_string(length));
                const size_t units = expect == kWhole ? call.whole.size() : expect == kFirstTwo ? call.firstTwo : 0;
                EXPECT_EQ(call.whole.substr(0, units), call.run(length));
            }
        }
    }
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
