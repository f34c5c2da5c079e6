// Kana class tests, half-width and full-width Katakana, the string operations with their sound
// marks, and the general width exchange.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <zel/codetables.h>

namespace {

std::u16string Half(WCHAR c, int expected) {
    WCHAR out[3] = {u'#', u'#', u'#'};
    EXPECT_EQ(FullKanaToHalfKana(c, out), expected) << std::hex << static_cast<int>(c);
    return std::u16string(out);  // the terminator must be there
}

// The string operations over exact-size heap buffers, so that a step past either bound shows.
std::u16string Large(const std::u16string& source, int script) {
    std::vector<WCHAR> in(source.begin(), source.end());
    std::vector<WCHAR> out(source.size());
    const int n = ToLargeKanaStr(in.data(), static_cast<int>(in.size()), out.data(), script);
    return std::u16string(out.data(), static_cast<size_t>(n));
}

std::u16string Small(const std::u16string& source) {
    std::vector<WCHAR> in(source.begin(), source.end());
    std::vector<WCHAR> out(source.size() * 2);
    const int n = ToSmallKanaStr(in.data(), static_cast<int>(in.size()), out.data());
    return std::u16string(out.data(), static_cast<size_t>(n));
}

TEST(KanaClasses, ListsWithTheirTerminator) {
    int base = 0, small = 0;
    for (WCHAR c = 0x3041; c <= 0x309F; ++c) {
        EXPECT_EQ(IsJpnBaseHiragana(c), IsJpnBaseKatakana(c + 0x60)) << std::hex << static_cast<int>(c);
        EXPECT_EQ(IsJpnSmallHiragana(c), IsJpnSmallKatakana(c + 0x60)) << std::hex << static_cast<int>(c);
        base += IsJpnBaseHiragana(c);
        small += IsJpnSmallHiragana(c);
    }
    EXPECT_EQ(std::pair(base, small), std::pair(65, 10));
    EXPECT_EQ(IsJpnBaseHiragana(0x3084) + IsJpnBaseKatakana(0x30F3), 0);  // ya row, sound n
    EXPECT_EQ(IsJpnSmallHalfKatakana(0xFF6F) - IsJpnSmallHalfKatakana(0xFF70), 1);
    // The search takes in the terminator; only the small Hiragana test turns 0 away.
    EXPECT_EQ(IsJpnBaseHiragana(0) + IsJpnBaseKatakana(0) + IsJpnSmallKatakana(0) + IsJpnSmallHalfKatakana(0), 4);
    EXPECT_EQ(IsJpnSmallHiragana(0), 0);
    EXPECT_EQ(IsJpnBaseHalfKatakana(0), 36);
    // Places: the h row, then k, s, t, then n, m, r; wa and the vowels are not on the list.
    const std::pair<WCHAR, int> places[] = {{0xFF8A, 1},  {0xFF8E, 5},  {0xFF76, 6},  {0xFF84, 20},
                                            {0xFF85, 21}, {0xFF8F, 26}, {0xFF97, 31}, {0xFF99, 33},
                                            {0xFF9B, 35}, {0xFF9C, 0},  {0xFF71, 0}};
    for (auto [c, place] : places) EXPECT_EQ(IsJpnBaseHalfKatakana(c), place) << std::hex << static_cast<int>(c);
}

TEST(KanaWidth, SingleCharacters) {
    EXPECT_EQ(std::u16string({HalfKanaToFullKana(0xFF60), HalfKanaToFullKana(0xFF9F), HalfKanaToFullKana(0xFF5F),
                              HalfKanaToFullKana(0xFFA0)}),
              u"\x30A0\x309C\xFF5F\xFFA0");
    // Wa with its small form has no half-width form, and Hiragana stays.
    EXPECT_EQ(Half(0x30AC, 2) + Half(0x30D1, 2) + Half(0x30F4, 2) + Half(0x30EE, 1) + Half(0x3042, 1),
              u"\xFF76\xFF9E\xFF8A\xFF9F\xFF73\xFF9E\x30EE\x3042");
    EXPECT_EQ(Half(0x3001, 1) + Half(0x3002, 1) + Half(0x300C, 1) + Half(0x300D, 1), u"\xFF64\xFF61\xFF62\xFF63");
    // Every half-width character but the blank U+FF60 and the two marks comes back from full width.
    for (WCHAR c = 0xFF61; c <= 0xFF9D; ++c) EXPECT_EQ(Half(HalfKanaToFullKana(c), 1), std::u16string(1, c));
}

TEST(KanaStrings, ToLargeJoinsMarks) {
    const struct { std::u16string in; int script; std::u16string out; } cases[] = {
        {u"\xFF76\xFF9E", 0, u"\x304C"}, {u"\xFF9E", 1, u"\x309B"},
        {u"\xFF71\xFF9E", 1, u"\x30A2\x309B"},  // a vowel takes no mark
        {u"\xFF76\xFF9F", 1, u"\x30AB\x309C"},  // the k row takes no semi-voiced mark
        {u"\x304B\x309B\x306F\x309C", 1, u"\x30AC\x30D1"},  // full-width marks join too
        {u"\x30AB\x309B\x30FD\x3094", 0, u"\x304C\x309D\x3094"},
        // The remembered kana is the unmarked one, so a second mark raises the result once more.
        {u"\xFF76\xFF9E\xFF9E", 1, u"\x30AD"}, {u"\xFF8A\xFF9F\xFF9E", 1, u"\x30D2"},
        {u"\xFF8C\xFF9E\xFF99\xFF70\xFF64 \xFF8D\xFF9F\xFF9D\xFF61", 1, u"\x30D6\x30EB\x30FC\x3001 \x30DA\x30F3\x3002"},
        {u"\xFF76\xFF9E\x3042", 2, u"\x30AB\x309B\x3042"},  // another script changes nothing, joins no marks
    };
    for (const auto& c : cases) EXPECT_EQ(Large(c.in, c.script), c.out) << testing::PrintToString(c.in);
    // The count bounds the read; nothing is written for a count below 1, and never a terminator.
    WCHAR out[2] = {u'#', u'#'};
    EXPECT_EQ(ToLargeKanaStr(u"\xFF76", 0, out, 1) + ToLargeKanaStr(u"\xFF76", -1, out, 1), 0);
    EXPECT_EQ(out[0], u'#');
    EXPECT_EQ(ToLargeKanaStr(u"\xFF76\xFF9E", 1, out, 1), 1);
    EXPECT_EQ(std::u16string(out, 2), u"\x30AB#");
}

TEST(KanaStrings, ToSmallSplitsMarks) {
    WCHAR out[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(ToSmallKanaStr(u"\x304C", -1, out), 2);
    EXPECT_EQ(std::u16string(out, 3), u"\xFF76\xFF9E#");
    EXPECT_EQ(Small(u"\x3071\x30D1\x3001x\x3093\x309D"), u"\xFF8A\xFF9F\xFF8A\xFF9F\xFF64x\xFF9D\x30FD");

    out[0] = u'#';
    EXPECT_EQ(ToSmallKanaStr(u"\x3042", 0, out) + ToSmallKanaStr(u"\x3042", -2, out) + ToSmallKanaStr(u"", -1, out), 0);
    EXPECT_EQ(out[0], u'#');
    // Every base kana splits into half-width units and joins back in either script.
    for (WCHAR c = 0x30A1; c <= 0x30FF; ++c) {
        if (!IsJpnBaseKatakana(c)) continue;
        const std::u16string half = Small(std::u16string(1, c));
        EXPECT_EQ(Large(half, 1), std::u16string(1, c)) << std::hex << int{c};
        EXPECT_EQ(Large(half, 0), std::u16string(1, WCHAR(c - 0x60))) << std::hex << int{c};
    }
}

TEST(HalfFullChange, AsciiAndPairs) {
    // The way back for the printable ASCII and the half-width Katakana is the round trip below.
    const struct { WCHAR c; int direction; WCHAR result; } cases[] = {
        {0x0041, 0, 0xFF21}, {0x0020, 0, 0x3000}, {0x3000, 1, 0x0020}, {0x007F, 0, 0x007F}, {0x0041, 1, 0x0041},
        {0xFF71, 0, 0x30A2}, {0x2018, 0, 0xA850}, {0xA850, 1, 0x2018}, {0xA854, 0, 0x300E}, {0x25CB, 1, 0xFFEE},
        {0x3042, 0, 0x3042}, {0x3042, 1, 0x3042},
        {0xFF60, 0, 0xFF60}, {0x30A0, 1, 0x30A0},  // U+FF60 has no width pair
        {0x0041, 2, 0x0041}, {0xFF21, -1, 0xFF21},  // only directions 0 and 1 exchange
    };
    for (const auto& c : cases)
        EXPECT_EQ(ZelUniHalfFullChange(c.c, c.direction), c.result) << std::hex << static_cast<int>(c.c);
    for (WCHAR c = 0x21; c <= 0xFF9F; c = c == 0x7E ? 0xFF61 : c + 1)
        EXPECT_EQ(ZelUniHalfFullChange(ZelUniHalfFullChange(c, 0), 1), c) << std::hex << static_cast<int>(c);
}

}  // namespace
