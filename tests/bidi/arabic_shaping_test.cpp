// Arabic shaping: forms of letters in a right-to-left and a left-to-right line, the lam-alef
// ligatures, controls left as blanks, the exact copy of a line with nothing to shape, the bounds of
// the destination, long lines, and the tables against the character properties.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <zel/bidi.h>

namespace {

constexpr WCHAR kSentinel = 0xBEEF;

struct Shaped {
    DWORD result;
    std::u16string text;  // up to the terminator
};

// Shapes into a heap buffer of exactly count + 1 units, so that a step past the bound shows; the
// terminator must lie within it.
Shaped Shape(const std::u16string& source, int direction, int mirror = 0) {
    std::vector<WCHAR> in(source.begin(), source.end());
    std::vector<WCHAR> out(source.size() + 1, kSentinel);
    const DWORD n = ShapeString(out.data(), in.data(), static_cast<DWORD>(in.size()), nullptr, nullptr, mirror,
                                direction);
    EXPECT_EQ(std::u16string(in.begin(), in.end()), source) << "the source is not changed";
    size_t end = 0;
    while (end < out.size() && out[end] != 0) ++end;
    EXPECT_LT(end, out.size()) << "no terminator within count + 1 units";
    return {n, std::u16string(out.data(), end)};
}

std::u16string Rtl(const std::u16string& source, int mirror = 0) { return Shape(source, 1, mirror).text; }
std::u16string Ltr(const std::u16string& source) { return Shape(source, 0).text; }

// Sources in logical order; a right-to-left line (direction 1) begins with its rightmost character.
struct Case {
    const char16_t* source;
    int direction;
    const char16_t* expected;
};

constexpr Case kCases[] = {
    // Beh joins on both sides.
    {u"\u0628", 1, u"\uFE8F"},
    {u"\u0628\u0628\u0628", 1, u"\uFE91\uFE92\uFE90"},
    {u"\u0628\u0628\u0628", 0, u"\uFE90\uFE92\uFE91"},
    // Alef joins only to the letter before it in reading.
    {u"\u0628\u0627", 1, u"\uFE91\uFE8E"},
    {u"\u0627\u0628", 1, u"\uFE8D\uFE8F"},
    {u"\u0628\u0627\u0628", 1, u"\uFE91\uFE8E\uFE8F"},
    // Alef maksura has forms of its own outside the contiguous rows.
    {u"\u0628\u0649", 1, u"\uFE91\uFEF0"},
    {u"\u0649\u0628", 1, u"\uFBE8\uFE90"},
    // No forms: the letter stays; hamza has one form and joins nothing.
    {u"\u067C\u067C", 1, u"\u067C\u067C"},
    {u"\u0628\u0621\u0628", 1, u"\uFE8F\uFE80\uFE8F"},
    // Arabic-Indic digits raise the level of a left-to-right line: shaped and terminated, unchanged.
    {u"\u0661\u0662", 0, u"\u0661\u0662"},
    // Marks don't break a join and stay in place; a non-joiner or a space does, the non-joiner
    // leaving a blank; a joiner and tatweel join on both sides and keep their own form.
    {u"\u0628\u064E\u0651\u0628\u064E", 1, u"\uFE91\u064E\u0651\uFE90\u064E"},
    {u"\u0628\u200C\u0628", 1, u"\uFE8F\u200B\uFE8F"},
    {u"\u0628 \u0628", 1, u"\uFE8F \uFE8F"},
    {u"\u0628\u200D", 1, u"\uFE91\u200B"},
    {u"\u200D\u0628", 1, u"\u200B\uFE90"},
    {u"\u0628\u0640\u0628", 1, u"\uFE91\u0640\uFE90"},
    // Lam-alef: initial and medial ligatures of the four alefs, in both directions.
    {u"\u0644\u0627", 1, u"\uFEFB"},
    {u"\u0628\u0644\u0627", 1, u"\uFE91\uFEFC"},
    {u"\u0628\u0644\u0627", 0, u"\uFEFC\uFE91"},
    {u"\u0644\u0622\u0628\u0644\u0622", 1, u"\uFEF5\uFE91\uFEF6"},
    {u"\u0644\u0623\u0628\u0644\u0623", 1, u"\uFEF7\uFE91\uFEF8"},
    {u"\u0644\u0625\u0628\u0644\u0625", 1, u"\uFEF9\uFE91\uFEFA"},
    // A mark between lam and alef follows the ligature; a non-joiner keeps them apart, and alef
    // before lam in reading or waw with hamza makes none.
    {u"\u0644\u064E\u0627", 1, u"\uFEFB\u064E"},
    {u"\u0644\u200C\u0627", 1, u"\uFEDD\u200B\uFE8D"},
    {u"\u0627\u0644", 1, u"\uFE8D\uFEDD"},
    {u"\u0644\u0624", 1, u"\uFEDF\uFE86"},
    // Latin right to left reads turned around with mirrored characters exchanged; Arabic inside
    // a left-to-right line is turned around in place.
    {u"a(b)c", 1, u"c(b)a"},
    {u"a\u200Eb", 1, u"b\u200Ba"},
    {u"ab \u0628\u0628 c", 0, u"ab \uFE90\uFE91 c"},
};

TEST(ArabicShaping, FormsLigaturesAndControls) {
    for (const Case& c : kCases) {
        const Shaped s = Shape(c.source, c.direction);
        EXPECT_EQ(s.result, std::u16string(c.source).size());
        EXPECT_EQ(s.text, c.expected) << "case " << (&c - kCases);
    }
    // Every formatting control is blanked in place.
    for (WCHAR c : {0x200C, 0x200D, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E}) {
        const std::u16string out = Rtl(std::u16string{u'\u0627', c, u'\u0627'});
        ASSERT_EQ(out.size(), 3u) << std::hex << static_cast<int>(c);
        EXPECT_EQ(out[1], 0x200B) << std::hex << static_cast<int>(c);
    }
}

TEST(ArabicShaping, DirectionAndMirroring) {
    // Nothing raised in a left-to-right line: an exact copy, controls kept, no terminator.
    const std::u16string latin = u"a(b)\u200Ec";
    std::vector<WCHAR> out(latin.size() + 1, kSentinel);
    EXPECT_EQ(ShapeString(out.data(), latin.data(), static_cast<DWORD>(latin.size()), nullptr, nullptr, 1, 0),
              latin.size());
    EXPECT_EQ(std::u16string(out.data(), latin.size()), latin);
    EXPECT_EQ(out[latin.size()], kSentinel);
    // Only direction 1 is right to left.
    out.assign(latin.size() + 1, kSentinel);
    ShapeString(out.data(), latin.data(), static_cast<DWORD>(latin.size()), nullptr, nullptr, 0, 2);
    EXPECT_EQ(out[latin.size()], kSentinel);
    // Brackets between Arabic letters: mirrored once by the backward walk, and once more with the
    // mirror flag.
    EXPECT_EQ(Rtl(u"\u0628(\u0628)", 0), u"\uFE8F)\uFE8F(");
    EXPECT_EQ(Rtl(u"\u0628(\u0628)", 1), u"\uFE8F(\uFE8F)");
}

TEST(ArabicShaping, CallerArraysAndEmptyLines) {
    const std::u16string source = u"\u0628 a";
    std::vector<WORD> classes(source.size(), 0xAAAA);
    std::vector<WORD> levels(source.size(), 0xAAAA);
    std::vector<WCHAR> out(source.size() + 1, kSentinel);
    EXPECT_EQ(ShapeString(out.data(), source.data(), 3, classes.data(), levels.data(), 0, 1), 3u);
    EXPECT_EQ(classes, (std::vector<WORD>{ZelBidiAL, ZelBidiWS, ZelBidiL}));
    EXPECT_EQ(levels, (std::vector<WORD>{1, 1, 2}));
    EXPECT_EQ(std::u16string(out.data()), u"\uFE8F a");

    // An empty line: nothing at all left to right, the terminator alone right to left.
    WCHAR one[1] = {kSentinel};
    EXPECT_EQ(ShapeString(one, u"", 0, nullptr, nullptr, 0, 0), 0u);
    EXPECT_EQ(one[0], kSentinel);
    EXPECT_EQ(ShapeString(one, u"", 0, nullptr, nullptr, 0, 1), 0u);
    EXPECT_EQ(one[0], 0);
}

TEST(ArabicShaping, LongLines) {
    // Far beyond the part of the scratch space that lies on the stack.
    constexpr size_t kCount = 1000000;
    std::u16string source;
    source.reserve(kCount);
    while (source.size() + 4 <= kCount) source += u"\u0644\u0627\u0628 ";
    const Shaped s = Shape(source, 1);
    EXPECT_EQ(s.result, source.size());
    // Each group of four loses one unit to its ligature; the rightmost character, the first one
    // read, comes first.
    ASSERT_EQ(s.text.size(), source.size() / 4 * 3);
    EXPECT_EQ(s.text.substr(0, 3), u"\uFEFB\uFE8F ");

    // A long run of marks is walked once by the letters at its ends, not once per mark.
    std::u16string marks = u"\u0628";
    marks.append(kCount, u'\u064E');
    marks += u"\u0628";
    const Shaped m = Shape(marks, 1);
    ASSERT_EQ(m.text.size(), marks.size());
    EXPECT_EQ(m.text.front(), 0xFE91);
    EXPECT_EQ(m.text.back(), 0xFE90);
}

TEST(ArabicShapingTables, FormsAgreeWithTheirTags) {
    // Every letter of the block that has forms: isolated, final, initial, medial as the
    // character properties tag them; letters without forms give themselves.
    constexpr WORD kTags[4] = {7, 6, 4, 5};
    int withForms = 0;
    for (int low = 0; low < 256; ++low) {
        const WCHAR c = static_cast<WCHAR>(0x0600 + low);
        const WCHAR isolated = GetBidiShape(c, static_cast<BYTE>(low), 0);
        if (isolated == c) {
            EXPECT_EQ(GetBidiShape(c, static_cast<BYTE>(low), 3), c) << std::hex << low;
            continue;
        }
        ++withForms;
        const int forms = ZelBidiJoining(c) == 1 ? 4 : ZelBidiJoining(c) == 2 ? 2 : 1;
        for (int form = 0; form < forms; ++form) {
            EXPECT_EQ(ZelDecompositionTag(GetBidiShape(c, static_cast<BYTE>(low), form)), kTags[form])
                << std::hex << low << " form " << form;
        }
    }
    EXPECT_EQ(withForms, 74);
    EXPECT_EQ(GetBidiShape(0, 0x49, 2), 0xFBE8);
    EXPECT_EQ(GetBidiShape(0, 0x49, 4), 0xFFFD);
    EXPECT_EQ(GetBidiShape(0, 0x21, 3), 0xFE80);

    // Ligatures exist for the initial and medial lam with the four alefs only.
    for (int alef = 0x20; alef < 0x2A; ++alef) {
        for (int form = -1; form < 5; ++form) {
            const WCHAR cell = GetArabicUnicodeLamAlefMapping(static_cast<BYTE>(alef), form);
            const bool exists = (alef == 0x22 || alef == 0x23 || alef == 0x25 || alef == 0x27) &&
                                (form == 2 || form == 3);
            if (!exists) {
                EXPECT_EQ(cell, 0xFFFD) << std::hex << alef << " form " << form;
                continue;
            }
            EXPECT_EQ(ZelDecompositionTag(cell), form == 2 ? 7 : 6) << std::hex << alef;
        }
    }
}

TEST(ArabicShapingTables, ExtendableCharacters) {
    const std::u16string ltr = u"\uFE90\uFE92\uFE91";
    const std::u16string rtl = u"\uFE91\uFE92\uFE90";
    EXPECT_EQ(BidiExtendableChar(ltr.data(), 3, 1), 0x85);
    EXPECT_EQ(BidiExtendableChar(rtl.data(), 3, 1), 5);
    EXPECT_EQ(BidiExtendableChar(rtl.data(), 3, 0), 4);
    EXPECT_EQ(BidiExtendableChar(rtl.data(), 3, 2), 6);
    EXPECT_EQ(BidiExtendableChar(u"\uFE8F", 1, 0), 7);
    EXPECT_EQ(BidiExtendableChar(u"\u0628", 1, 0), 0);
    // Marks and blanks are passed over on the way to the letter before; the start is no final.
    EXPECT_EQ(BidiExtendableChar(u"\uFE90\u064E\u200B\uFE92", 4, 3), 0x85);
    EXPECT_EQ(BidiExtendableChar(u"\uFE90 \uFE92", 3, 2), 5);
    EXPECT_EQ(BidiExtendableChar(u"\u200B\uFE92", 2, 1), 5);
    // An index outside the text has no form.
    EXPECT_EQ(BidiExtendableChar(rtl.data(), 3, 3), 0);

    // What the shaper writes reads back as its forms.
    const std::u16string shaped = Ltr(u"\u0633\u0633\u0633");
    ASSERT_EQ(shaped.size(), 3u);
    EXPECT_EQ(BidiExtendableChar(shaped.data(), 3, 0), 6);
    EXPECT_EQ(BidiExtendableChar(shaped.data(), 3, 1), 0x85);
    EXPECT_EQ(BidiExtendableChar(shaped.data(), 3, 2), 4);
}

}  // namespace
