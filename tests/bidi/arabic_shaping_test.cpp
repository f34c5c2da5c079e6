// Arabic shaping: letter forms, lam-alef ligatures, controls left as blanks, the exact copy of a line
// with nothing to shape, the destination's bounds, long lines, and the tables against the properties.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <zel/bidi.h>

namespace {

constexpr WCHAR kSentinel = 0xBEEF;

struct Shaped { DWORD result; std::u16string text; };  // text up to the terminator

// Shapes into exactly count + 1 heap units, so that a step past them shows; the terminator lies within.
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

// Sources in logical order; a right-to-left line (direction 1) begins with its rightmost character.
struct Case { const char16_t* source; int direction; const char16_t* expected; int mirror = 0; };

constexpr Case kCases[] = {
    // Beh joins on both sides; alef only to the letter before it in reading.
    {u"\u0628", 1, u"\uFE8F"}, {u"\u0628\u0628\u0628", 1, u"\uFE91\uFE92\uFE90"},
    {u"\u0628\u0628\u0628", 0, u"\uFE90\uFE92\uFE91"}, {u"\u0628\u0627", 1, u"\uFE91\uFE8E"},
    {u"\u0627\u0628", 1, u"\uFE8D\uFE8F"}, {u"\u0628\u0627\u0628", 1, u"\uFE91\uFE8E\uFE8F"},
    // Alef maksura has forms of its own outside the contiguous rows.
    {u"\u0628\u0649", 1, u"\uFE91\uFEF0"}, {u"\u0649\u0628", 1, u"\uFBE8\uFE90"},
    // No forms: the letter stays; hamza has one form and joins nothing. Arabic-Indic digits raise
    // the level of a left-to-right line: shaped and terminated, unchanged.
    {u"\u067C\u067C", 1, u"\u067C\u067C"}, {u"\u0628\u0621\u0628", 1, u"\uFE8F\uFE80\uFE8F"},
    {u"\u0661\u0662", 0, u"\u0661\u0662"},
    // Marks don't break a join and stay in place; a non-joiner or a space does, the non-joiner
    // leaving a blank; a joiner and tatweel join on both sides and keep their own form.
    {u"\u0628\u064E\u0651\u0628\u064E", 1, u"\uFE91\u064E\u0651\uFE90\u064E"},
    {u"\u0628\u200C\u0628", 1, u"\uFE8F\u200B\uFE8F"}, {u"\u0628 \u0628", 1, u"\uFE8F \uFE8F"},
    {u"\u0628\u200D", 1, u"\uFE91\u200B"}, {u"\u200D\u0628", 1, u"\u200B\uFE90"},
    {u"\u0628\u0640\u0628", 1, u"\uFE91\u0640\uFE90"},
    // Lam-alef: initial and medial ligatures of the four alefs, in both directions.
    {u"\u0644\u0627", 1, u"\uFEFB"}, {u"\u0628\u0644\u0627", 1, u"\uFE91\uFEFC"},
    {u"\u0628\u0644\u0627", 0, u"\uFEFC\uFE91"}, {u"\u0644\u0622\u0628\u0644\u0622", 1, u"\uFEF5\uFE91\uFEF6"},
    {u"\u0644\u0623\u0628\u0644\u0623", 1, u"\uFEF7\uFE91\uFEF8"},
    {u"\u0644\u0625\u0628\u0644\u0625", 1, u"\uFEF9\uFE91\uFEFA"},
    // A mark between lam and alef follows the ligature; a non-joiner keeps them apart, and alef
    // before lam in reading or waw with hamza makes none.
    {u"\u0644\u064E\u0627", 1, u"\uFEFB\u064E"}, {u"\u0644\u200C\u0627", 1, u"\uFEDD\u200B\uFE8D"},
    {u"\u0627\u0644", 1, u"\uFE8D\uFEDD"}, {u"\u0644\u0624", 1, u"\uFEDF\uFE86"},
    // Latin right to left reads turned around with mirrored characters exchanged; Arabic inside
    // a left-to-right line is turned around in place. Brackets between Arabic letters are
    // mirrored once by the backward walk, and once more with the mirror flag.
    {u"a(b)c", 1, u"c(b)a"}, {u"a\u200Eb", 1, u"b\u200Ba"}, {u"ab \u0628\u0628 c", 0, u"ab \uFE90\uFE91 c"},
    {u"\u0628(\u0628)", 1, u"\uFE8F)\uFE8F("}, {u"\u0628(\u0628)", 1, u"\uFE8F(\uFE8F)", 1},
};

TEST(ArabicShaping, FormsLigaturesAndControls) {
    for (const Case& c : kCases) {
        const Shaped s = Shape(c.source, c.direction, c.mirror);
        EXPECT_EQ(s.result, std::u16string(c.source).size());
        EXPECT_EQ(s.text, c.expected) << "case " << (&c - kCases);
    }
    // Every formatting control is blanked in place; the joiner still joins.
    for (WCHAR c : {0x200C, 0x200D, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E}) {
        const std::u16string expected{0xFE8D, 0x200B, c == 0x200D ? u'\uFE8E' : u'\uFE8D'};
        EXPECT_EQ(Shape(std::u16string{u'\u0627', c, u'\u0627'}, 1).text, expected) << std::hex << static_cast<int>(c);
    }
}

TEST(ArabicShaping, LeftToRightCopyCallerArraysAndEmptyLines) {
    // Nothing raised left to right (any direction but 1): an exact copy, controls kept, no terminator.
    const std::u16string latin = u"a(b)\u200Ec";
    for (int direction : {0, 2}) {
        std::vector<WCHAR> out(latin.size() + 1, kSentinel);
        EXPECT_EQ(ShapeString(out.data(), latin.data(), 6, nullptr, nullptr, 1, direction), 6u);
        EXPECT_EQ(std::u16string(out.data(), 6), latin);
        EXPECT_EQ(out[6], kSentinel);
    }

    const std::u16string source = u"\u0628 a";
    std::vector<WORD> classes(3, 0xAAAA);
    std::vector<WORD> levels(3, 0xAAAA);
    std::vector<WCHAR> out(4, kSentinel);
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
    // Each group of four loses a unit to its ligature; the rightmost character, read first, comes first.
    ASSERT_EQ(s.text.size(), source.size() / 4 * 3);
    EXPECT_EQ(s.text.substr(0, 3), u"\uFEFB\uFE8F ");

    // A long run of marks is walked once by the letters at its ends, not once per mark.
    const std::u16string marks = u"\u0628" + std::u16string(kCount, u'\u064E') + u"\u0628";
    const Shaped m = Shape(marks, 1);
    ASSERT_EQ(m.text.size(), marks.size());
    EXPECT_EQ(m.text.front(), 0xFE91);
    EXPECT_EQ(m.text.back(), 0xFE90);
}

TEST(ArabicShapingTables, FormsAgreeWithTheirTags) {
    // Letters with forms give isolated, final, initial, medial forms tagged so; the others themselves.
    constexpr WORD kTags[4] = {7, 6, 4, 5};
    int withForms = 0;
    for (int low = 0; low < 256; ++low) {
        const WCHAR c = static_cast<WCHAR>(0x0600 + low);
        if (GetBidiShape(c, static_cast<BYTE>(low), 0) == c) {
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
            if ((alef == 0x22 || alef == 0x23 || alef == 0x25 || alef == 0x27) && (form == 2 || form == 3)) {
                EXPECT_EQ(ZelDecompositionTag(cell), form == 2 ? 7 : 6) << std::hex << alef;
            } else {
                EXPECT_EQ(cell, 0xFFFD) << std::hex << alef << " form " << form;
            }
        }
    }
}

TEST(ArabicShapingTables, ExtendableCharacters) {
    // What the shaper writes reads back as its forms.
    const std::u16string sad = Shape(u"\u0633\u0633\u0633", 0).text;
    ASSERT_EQ(sad.size(), 3u);
    struct Case { std::u16string text; DWORD index; BYTE expected; };
    const Case cases[] = {
        {u"\uFE90\uFE92\uFE91", 1, 0x85}, {u"\uFE91\uFE92\uFE90", 1, 5}, {u"\uFE91\uFE92\uFE90", 0, 4},
        {u"\uFE91\uFE92\uFE90", 2, 6}, {u"\uFE8F", 0, 7}, {u"\u0628", 0, 0},
        // Marks and blanks are passed over on the way to the letter before; the start is no final.
        {u"\uFE90\u064E\u200B\uFE92", 3, 0x85}, {u"\uFE90 \uFE92", 2, 5}, {u"\u200B\uFE92", 1, 5},
        // An index outside the text has no form.
        {u"\uFE91\uFE92\uFE90", 3, 0}, {sad, 0, 6}, {sad, 1, 0x85}, {sad, 2, 4},
    };
    for (const Case& c : cases)
        EXPECT_EQ(BidiExtendableChar(c.text.data(), static_cast<DWORD>(c.text.size()), c.index), c.expected)
            << "case " << &c - cases;
}

}  // namespace
