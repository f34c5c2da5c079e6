// The library's area U+A000 to U+A8FF and its outside form: plane 15 pairs, the Yi table and
// the four fixed letters, one character at a time and as text, with and without the table.
#include <gtest/gtest.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <climits>
#include <string>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "codetables/table_path_fixture.h"
#include "platform/win32.h"
#include "support/support.h"

namespace {

// A private ${Common}: the main group (needed before the Yi table can become ready) and, when a
// case asks, a Yi table.
class Plane15Test : public TablePathFixture {
protected:
    void WriteMain() {
        std::vector<uint16_t> pua(25600, 0);
        for (size_t i = 0; i < pua.size(); i += 4) pua[i] = 0x3441;
        WriteMainGroup(pua);
    }
    // Main group and a Yi table of 16 entries: U+A700 is U+20000, U+A701 an ideograph of the
    // basic plane, U+A702 the code point U+F0700, and U+A703 and U+A704 share U+20001.
    void LoadTables() {
        WriteMain();
        std::vector<uint32_t> yi(16, 0xF0000 + 0x700);
        yi[0] = 0x20000;
        yi[1] = 0x4E00;
        yi[3] = 0x20001;
        yi[4] = 0x20001;
        for (size_t i = 5; i < yi.size(); ++i) yi[i] = 0x20100 + uint32_t(i);
        Write32("zel", yi);
        ASSERT_EQ(2, LoadUnicodeTbl());
        ASSERT_EQ(2, LoadUniYi2UniSurrogatePuaTbl());
    }

};

std::u16string ToPua(const std::u16string& text, int size, int length = -1) {
    std::u16string out(size_t(size), u'\x7777');
    const int n = ZelUnicodeToSurrogatePua(0, text.c_str(), length, out.data(), size);
    EXPECT_EQ(0, out[size_t(size - 1)]) << "the last unit is always cleared";
    return out.substr(0, size_t(n));
}

std::u16string FromPua(const std::u16string& text, int size, int length = -1) {
    std::u16string out(size_t(size), u'\x7777');
    const int n = ZelSurrogatePuaToUnicode(0, text.c_str(), length, out.data(), size);
    return out.substr(0, size_t(n));
}

TEST_F(Plane15Test, SingleCharactersWithTheTable) {
    LoadTables();
    EXPECT_EQ(0xDB80DC00u, UniYi2UniSurrogatePua(0xA000));
    EXPECT_EQ(0xDB82DCFFu, UniYi2UniSurrogatePua(0xA8FF));
    EXPECT_EQ(0x0101u, UniYi2UniSurrogatePua(0xA400));
    EXPECT_EQ(0x00E0u, UniYi2UniSurrogatePua(0xA403));
    EXPECT_EQ(0xDB81DC04u, UniYi2UniSurrogatePua(0xA404));
    EXPECT_EQ(0xD840DC00u, UniYi2UniSurrogatePua(0xA700));
    EXPECT_EQ(0x4E00u, UniYi2UniSurrogatePua(0xA701));
    EXPECT_EQ(0xFFFDu, UniYi2UniSurrogatePua(0xA7FF)) << "beyond the table's count: no mapping";
    EXPECT_EQ(0x9FFFu, UniYi2UniSurrogatePua(0x9FFF));
    EXPECT_EQ(0xA900u, UniYi2UniSurrogatePua(0xA900));

    // An internal character needs room for a pair even when it comes out as one unit; a plain
    // one needs one place.
    WCHAR out[3] = {0x7777, 0x7777, 0x7777};
    EXPECT_EQ(0, UniYi2UniSurrogatePuaEx(0xA400, out, 1));
    EXPECT_EQ(0, UniYi2UniSurrogatePuaEx(u'A', out, 0));
    EXPECT_EQ(0x7777, out[0]);
    EXPECT_EQ(1, UniYi2UniSurrogatePuaEx(u'A', out, 1));
    EXPECT_EQ(1, UniYi2UniSurrogatePuaEx(0xA701, out, 2));
    EXPECT_EQ(0x4E00, out[0]);
    ASSERT_EQ(2, UniYi2UniSurrogatePuaEx(0xA000, out, 2));
    EXPECT_EQ(0xDB80, out[0]);
    EXPECT_EQ(0xDC00, out[1]);

    // Back: the plane 15 image and the table's pairs come home; any other pair folds.
    WCHAR back = 0;
    EXPECT_EQ(1, SurrogatePairToUni(0xDB80DC00, &back, 1));
    EXPECT_EQ(0xA000, back);
    EXPECT_EQ(1, SurrogatePairToUni(0xD800DC00, &back, 1));
    EXPECT_EQ(0xA000, back) << "U+10000 folds to U+A000";
    EXPECT_EQ(1, SurrogatePairToUni(0xD840DC00, &back, 1));
    EXPECT_EQ(0xA700, back);
    EXPECT_EQ(1, SurrogatePairToUni(0xD840DC01, &back, 1));
    EXPECT_EQ(0xA704, back) << "the last entry that matches stands";
    EXPECT_EQ(1, SurrogatePairToUni(0xDB81DF00, &back, 1));
    EXPECT_EQ(0xA702, back) << "U+F0700 is looked up in the table, not folded";
    back = 0x1234;
    EXPECT_EQ(1, SurrogatePairToUni(0xD87EDC00, &back, 1));
    EXPECT_EQ(0x1234, back) << "a pair of the Yi ranges without an entry leaves the output";
    EXPECT_EQ(0, SurrogatePairToUni(0xDB80DC00, &back, 0));
    EXPECT_EQ(0, UniYi2UniSurrogatePuaEx(0xA000, nullptr, 2));
    EXPECT_EQ(0, SurrogatePairToUni(0xDB80DC00, nullptr, 1));
}

TEST_F(Plane15Test, TextBothWays) {
    LoadTables();
    const std::u16string text = u"A\uA000\uA8FF\uA700\uA701\uA400z";
    const std::u16string outside = u"A\U000F0000\U000F08FF\U00020000\u4E00\u0101z";
    EXPECT_EQ(outside, ToPua(text, 32));
    EXPECT_EQ(u"A\uA000\uA8FF\uA700\u4E00\u0101z", FromPua(outside, 32)) << "the fixed letters stay outside";

    // Counted lengths, and -1 up to the zero unit in both directions.
    EXPECT_EQ(u"A\U000F0000", ToPua(text, 32, 2));
    EXPECT_EQ(u"A\uA000", FromPua(outside, 32, 3));
    EXPECT_EQ(u"A", ToPua(std::u16string(u"A\0\uA000", 3), 32, 3));
    EXPECT_EQ(u"A", FromPua(std::u16string(u"A\0\uA000", 3), 32, 3));

    // A pair takes two places out of size - 2; a character that doesn't fit is passed over and the
    // next one still tried.
    EXPECT_EQ(u"", ToPua(text, 2));
    EXPECT_EQ(u"Az", ToPua(u"A\uA000z", 4));
    EXPECT_EQ(u"A\U000F0000", ToPua(u"A\uA000z", 5));

    // Lone halves: a low one is dropped, a high one is kept, also when the counted text ends
    // between the two halves of a pair.
    EXPECT_EQ(u"a\xD800" u"b", FromPua(u"a\xDC00\xD800" u"b", 16));
    EXPECT_EQ(u"a\xDB80", FromPua(u"a\U000F0000", 16, 2));
    // A pair of the Yi ranges without an entry counts one cleared unit.
    const std::u16string unmapped = FromPua(u"a\U0002FFFFb", 16);
    ASSERT_EQ(3u, unmapped.size());
    EXPECT_EQ(std::u16string(u"a\0b", 3), unmapped);
    // Output bound: size - 1 units, then the terminator.
    EXPECT_EQ(u"abc", FromPua(u"abcdef", 4));
    EXPECT_EQ(0, ZelSurrogatePuaToUnicode(0, u"abc", -1, nullptr, 8));
    EXPECT_EQ(0, ZelUnicodeToSurrogatePua(0, nullptr, -1, nullptr, 1));
}

// Only -1 reads up to the zero unit: any other negative length is no text, and a zero unit ends
// the text whatever the length. The counted part is followed by more text.
TEST_F(Plane15Test, OnlyMinusOneReadsUpToTheZeroUnit) {
    LoadTables();
    const std::u16string inside = u"a\uA000b\uA000", outside = u"a\U000F0000b\U000F0000";
    const struct {
        int length;
        std::u16string toPua, fromPua;
    } rows[] = {{-1, outside, inside}, {INT_MAX, outside, inside}, {3, u"a\U000F0000b", u"a\uA000"},
                {0, u"", u""},         {-2, u"", u""},             {INT_MIN, u"", u""}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.toPua, ToPua(inside, 16, row.length)) << row.length;
        EXPECT_EQ(row.fromPua, FromPua(outside, 16, row.length)) << row.length;
    }
}

TEST_F(Plane15Test, WithoutTheTableTextPassesThrough) {
    WriteMain();
    Write32("zel", std::vector<uint32_t>(256, 0x20000));
    // The first text call comes before the main group: the Yi table fails for good.
    EXPECT_EQ(u"\uA000\uA700", ToPua(u"\uA000\uA700", 8));
    EXPECT_EQ(1, ZelYiPuaTableState());
    ASSERT_EQ(2, LoadUnicodeTbl());
    EXPECT_EQ(1, LoadUniYi2UniSurrogatePuaTbl());

    EXPECT_EQ(0xA000u, UniYi2UniSurrogatePua(0xA000));
    WCHAR out = 0;
    EXPECT_EQ(1, UniYi2UniSurrogatePuaEx(0xA000, &out, 0)) << "passing through needs no room";
    EXPECT_EQ(0xA000, out);
    EXPECT_EQ(1, SurrogatePairToUni(0xDB80DC00, &out, 0));
    EXPECT_EQ(0xDB80, out);
    // Still bound by the buffer: size - 1 units and a terminator.
    EXPECT_EQ(u"\uA000\uA001\uA002", ToPua(u"\uA000\uA001\uA002\uA003", 4));
    EXPECT_EQ(u"x\xDB80y", FromPua(u"x\U000F0000y", 8)) << "only the high half of a pair";
}

}  // namespace

namespace {

TEST(PuaCommand, PlaneFifteenBothWays) {
    auto run = [](const std::vector<std::string>& args) { return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args); };
    EXPECT_EQ("DB80 DC00 0101 007A\n", run({"pua", "to", "--units", "\uA000\uA400z"}).out);
    EXPECT_EQ("A000 A8FF\n", run({"pua", "from", "--units", "\U000F0000\U000F08FF"}).out);
    EXPECT_EQ(2, run({"pua", "sideways", "x"}).status);
    EXPECT_EQ(0, run({"pua", "--help"}).status);
}

}  // namespace
