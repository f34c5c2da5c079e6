// Level resolution and display order of single lines: the weak and neutral rules, white space at
// the line's end and before separators, mirroring, and lines far longer than the stack scratch space.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"
#include "bidi/bidi_reference.h"

using namespace std::string_literals;

namespace {

using Levels = std::vector<WORD>;

constexpr WORD ON = ZelBidiON, L = ZelBidiL, R = ZelBidiR, AN = ZelBidiAN, EN = ZelBidiEN, AL = ZelBidiAL;
constexpr WORD NSM = ZelBidiNSM, CS = ZelBidiCS, ET = ZelBidiET, BN = ZelBidiBN, S = ZelBidiS, WS = ZelBidiWS;
constexpr WORD B = ZelBidiB, RLO = ZelBidiRLO, LRE = ZelBidiLRE, PDF = ZelBidiPDF;
constexpr WORD kSkip = 0xFFFF;
constexpr WCHAR kAlef = 0x0627;
constexpr WCHAR kBeh = 0x0628;

struct Line { std::u16string display; Levels levels; DWORD result; };

// BidiString over exact-size heap buffers, so that a step past either end shows.
Line Display(const std::u16string& text, int direction, int mirror = 0) {
    std::vector<WCHAR> buffer(text.begin(), text.end());
    Levels classes(text.size(), 0x5555);
    Levels levels(text.size(), 0x5555);
    const DWORD n = BidiString(buffer.data(), static_cast<DWORD>(buffer.size()), classes.data(), levels.data(),
                               mirror, direction);
    return {std::u16string(buffer.begin(), buffer.end()), levels, n};
}

// Levels start as 9, which skipped positions keep.
struct ResolveCase { Levels classes; LONG base; Levels resolved, levels; };

const ResolveCase kResolveCases[] = {
    // Digits behind Arabic letters: the first turns AN, the ones behind it stay EN. Behind a
    // neutral after Arabic the first digit becomes L, and the neutral step takes the others along.
    {{AL, AL, AL, EN, EN, EN}, 0, {R, R, R, AN, EN, EN}, {1, 1, 1, 2, 2, 2}},
    {{AL, AL, AL, ON, EN, EN, EN}, 0, {R, R, R, L, L, L, L}, {1, 1, 1, 0, 0, 0, 0}},
    // A common separator between numbers after Arabic joins them as AN; one at the end is a neutral.
    {{AL, EN, CS, EN, CS}, 0, {R, AN, AN, AN, L}, {1, 2, 2, 2, 0}},
    // Terminators take the class of the number they touch after L, and stay neutral after R.
    {{L, ET, ET, EN, R, ET, ON}, 0, {L, L, L, L, R, L, L}, {0, 0, 0, 0, 1, 0, 0}},
    {{R, EN, ET, ET, R}, 0, {R, EN, EN, EN, R}, {1, 2, 2, 2, 1}},
    // Marks follow the letter before them, and at the line's start the base direction.
    {{NSM, R, NSM, NSM, L, NSM}, 1, {R, R, R, R, L, L}, {1, 1, 1, 1, 2, 2}},
    // Between two R, and between R and a number, a neutral is R; between L and R it takes the
    // direction of the level. At the end of the line the base direction stands in for a next one.
    {{R, ON, R, ON, AN, ON, L}, 0, {R, R, R, R, AN, L, L}, {1, 1, 1, 1, 2, 0, 0}},
    {{L, ON, R}, 1, {L, R, R}, {2, 1, 1}},
    {{L, ON, ON}, 1, {L, R, R}, {2, 1, 1}},
    {{L, ON, ON}, 0, {L, L, L}, {0, 0, 0}},
    // Explicit controls and paragraph separators are BN: no embedding, no new paragraph. A BN
    // alone stays BN at the base level; inside a neutral run it is resolved with the run.
    {{RLO, L, B, R, ON, LRE, R, PDF}, 0, {BN, L, BN, R, R, R, R, BN}, {0, 0, 0, 1, 1, 1, 1, 0}},
    // A skipped position keeps class and level, breaks no run and fills none.
    {{AL, kSkip, EN}, 0, {R, kSkip, AN}, {1, 9, 2}},
    {{L, ET, kSkip, EN, R, kSkip, ON, kSkip}, 0, {L, L, kSkip, L, R, kSkip, L, kSkip}, {0, 0, 9, 0, 1, 9, 0, 9}},
    // Only the lowest bit of the base level gives the direction; its lower 16 bits are stored.
    {{L, R, EN}, 0x10002, {L, R, EN}, {2, 3, 4}},
    {{L, R}, 5, {L, R}, {6, 5}},
    {{}, 1, {}, {}},
};

TEST(BidiResolve, WeakAndNeutralRules) {
    for (const ResolveCase& c : kResolveCases) {
        const auto at = &c - kResolveCases;
        bool above = false;
        for (size_t i = 0; i < c.levels.size(); ++i)
            above |= c.classes[i] != kSkip && c.levels[i] > static_cast<WORD>(c.base);
        // A null raised pointer changes nothing else.
        DWORD raised = 7;
        for (DWORD* raisedAt : {&raised, static_cast<DWORD*>(nullptr)}) {
            Levels classes = c.classes;
            Levels levels(classes.size(), 9);
            const auto count = static_cast<DWORD>(classes.size());
            EXPECT_EQ(BidiAlgorithm(c.base, nullptr, count, classes.data(), levels.data(), raisedAt), count);
            EXPECT_EQ(classes, c.resolved) << "case " << at;
            EXPECT_EQ(levels, c.levels) << "case " << at;
        }
        EXPECT_EQ(raised, above ? 1u : 0u) << "case " << at;
    }
}

TEST(BidiResolve, WhitespaceBackToTheBaseLevel) {
    struct Case { WORD base; Levels classes, levels, expected; };
    const Case cases[] = {
        // Trailing white space and white space before a segment separator; an explicit control in
        // the run neither ends it nor counts, so the reset is counted back from the separator.
        {0, {AL, WS, LRE, WS, S, AL}, {1, 1, 1, 1, 1, 1}, {1, 1, 0, 0, 0, 1}},
        {1, {L, WS, L, WS, WS}, {2, 2, 2, 2, 2}, {2, 2, 2, 1, 1}},
        // A BN takes the level before it and lengthens the run; a skipped position lengthens the
        // run without its level being taken over.
        {1, {L, BN, kSkip, BN, B, L}, {2, 5, 7, 2, 3, 2}, {2, 1, 1, 1, 1, 2}},
        {1, {L, BN, L}, {2, 5, 7}, {2, 2, 7}},
    };
    for (const Case& c : cases) {
        Levels levels = c.levels;
        BidiResolveWhitespace(c.base, c.classes.data(), levels.data(), static_cast<DWORD>(levels.size()));
        EXPECT_EQ(levels, c.expected) << "case " << &c - cases;
    }
}

// Lines in logical order. U+0627, U+0628, U+062A are Arabic letters (AL), U+05D0 a Hebrew letter,
// which these tables keep L, U+FB21, U+FB22 Hebrew presentation forms (R).
struct LineCase { std::u16string text; int direction, mirror; Levels levels; std::u16string display; };

const LineCase kLines[] = {
    // Nothing raised at base level 0: no reordering, no mirroring, no white space step; explicit
    // controls don't embed or override. Right to left, L is raised to 2 and the reversals cancel.
    {u"a(b) [c]  ", 0, 1, Levels(10, 0), u"a(b) [c]  "},
    {u"\u202Eab\u202C", 0, 0, {0, 0, 0, 0}, u"\u202Eab\u202C"},
    {u"abc", 1, 0, {2, 2, 2}, u"abc"},
    // A number keeps its order within the Arabic; behind a space it is back at the base level.
    {u"\u0627\u0628\u062A123", 0, 0, {1, 1, 1, 2, 2, 2}, u"123\u062A\u0628\u0627"},
    {u"\u0627\u0628\u062A 123", 0, 0, {1, 1, 1, 0, 0, 0, 0}, u"\u062A\u0628\u0627 123"},
    // Latin, Arabic, digits and Latin in both directions.
    {u"ab \u0627\u0628 12 c", 0, 0, {0, 0, 0, 1, 1, 0, 0, 0, 0, 0}, u"ab \u0628\u0627 12 c"},
    {u"ab \u0627\u0628 12 c", 1, 0, {2, 2, 1, 1, 1, 1, 2, 2, 2, 2}, u"12 c \u0628\u0627 ab"},
    // Presentation forms are R, a Hebrew letter between them L; any direction but 1 is left to right.
    {u"\uFB21 \u05D0 \uFB22", 0, 0, {1, 0, 0, 0, 1}, u"\uFB21 \u05D0 \uFB22"},
    {u"\uFB21 \uFB22!", 0, 0, {1, 1, 1, 0}, u"\uFB22 \uFB21!"},
    {u"\uFB21 \uFB22!", 2, 0, {1, 1, 1, 0}, u"\uFB22 \uFB21!"},
    // The full stop behind a number is part of it, in either direction; so is a run of them, and a
    // decimal number inside Arabic reads as one. A full stop that opens the line has nothing to follow.
    {u"1.", 1, 0, {2, 2}, u"1."},
    {u"a.", 1, 0, {2, 1}, u".a"},
    {u"\u0627 1.5..", 1, 0, {1, 1, 2, 2, 2, 2, 2}, u"1.5.. \u0627"},
    {u".1\u0627", 1, 0, {1, 2, 1}, u"\u06271."},
    // White space before a tab, a line feed (no new paragraph) and trailing white space go to the base level.
    {u"a \tb", 1, 0, {2, 1, 1, 2}, u"b\t a"},
    {u"a\nb c", 1, 0, {2, 1, 2, 2, 2}, u"b c\na"},
    {u"ab  ", 1, 0, {2, 2, 1, 1}, u"  ab"},
    // The white space step reads the text's own classes: a joiner (BN) between two Arabic letters
    // takes the level before it, an embedding control keeps the base level.
    {u"\u0627\u200D\u0628", 0, 0, {1, 1, 1}, u"\u0628\u200D\u0627"},
    {u"\u0627\u202A\u0628", 0, 0, {1, 0, 1}, u"\u0627\u202A\u0628"},
    // Mirroring happens at odd levels only and when asked for: the bracket inside the Latin run
    // (level 2) stays, the one that ends the line turns, one without a partner stays.
    {u"\u0627(\u0628)", 1, 0, {1, 1, 1, 1}, u")\u0628(\u0627"},
    {u"\u0627(\u0628)", 1, 1, {1, 1, 1, 1}, u"(\u0628)\u0627"},
    {u"a(b)", 1, 1, {2, 2, 2, 1}, u"(a(b"},
    {u"\u0627\u2201<\u0628", 1, 1, {1, 1, 1, 1}, u"\u0628>\u2201\u0627"},
};

TEST(BidiString, Lines) {
    for (const LineCase& c : kLines) {
        const auto at = &c - kLines;
        const auto count = static_cast<DWORD>(c.text.size());
        const Line line = Display(c.text, c.direction, c.mirror);
        EXPECT_EQ(line.result, count);
        EXPECT_EQ(line.levels, c.levels) << "case " << at;
        EXPECT_EQ(line.display, c.display) << "case " << at;
        // Classes alone or no arrays give the same display; classes come back as stored, not resolved.
        for (bool withClasses : {true, false}) {
            std::u16string bare = c.text;
            Levels stored(count, 0x5555);
            EXPECT_EQ(BidiString(bare.data(), count, withClasses ? stored.data() : nullptr, nullptr, c.mirror,
                                 c.direction),
                      count);
            EXPECT_EQ(bare, c.display) << "case " << at;
            for (DWORD i = 0; withClasses && i < count; ++i)
                EXPECT_EQ(stored[i], ZelClassFromChWS(c.text[i])) << "case " << at;
        }
    }
}

TEST(BidiString, MissingArraysAndEmptyText) {
    WCHAR none = u'x';
    EXPECT_EQ(BidiString(&none, 0, nullptr, nullptr, 1, 1), 0u);
    EXPECT_EQ(none, u'x');

    // Missing arrays give 0 and touch nothing.
    EXPECT_EQ(BidiString(nullptr, 3, nullptr, nullptr, 0, 1), 0u);
    Levels levels{7, 7};
    DWORD raised = 9;
    EXPECT_EQ(BidiAlgorithm(1, nullptr, 2, nullptr, levels.data(), &raised), 0u);
    EXPECT_EQ(raised, 0u);
    BidiResolveWhitespace(0, nullptr, levels.data(), 2);
    EXPECT_EQ(levels, (Levels{7, 7}));
}

// A count that only a negative length turned unsigned gives is no text: nothing is read or
// written, as for a count of 0, and the result is 0.
TEST(BidiString, NegativeLengthsAreNoText) {
    std::u16string text = u"\u05D0\uFE8D a";
    Levels classes(text.size(), 0x5555), levels(text.size(), 0x5555);
    WCHAR shaped[8] = {0x5555};
    DWORD raised = 9;
    const std::pair<const char*, std::function<DWORD(DWORD)>> calls[] = {
        {"BidiAlgorithm",
         [&](DWORD n) { return BidiAlgorithm(1, text.data(), n, classes.data(), levels.data(), &raised); }},
        {"BidiResolveWhitespace",
         [&](DWORD n) { return BidiResolveWhitespace(1, classes.data(), levels.data(), n), DWORD{0}; }},
        {"BidiString", [&](DWORD n) { return BidiString(text.data(), n, classes.data(), levels.data(), 1, 1); }},
        {"ShapeString",
         [&](DWORD n) { return ShapeString(shaped, text.data(), n, classes.data(), levels.data(), 1, 1); }},
        {"BidiExtendableChar", [&](DWORD n) { return DWORD{BidiExtendableChar(text.data(), n, 1)}; }},
    };
    for (const auto& [name, call] : calls) {
        for (const DWORD count : {0xFFFFFFFFu, 0xFFFFFFFEu, 0x80000000u}) {
            EXPECT_EQ(0u, call(count)) << name << ' ' << count;
            EXPECT_EQ(u"\u05D0\uFE8D a", text) << name;
            EXPECT_EQ(Levels(text.size(), 0x5555), classes) << name;
            EXPECT_EQ(Levels(text.size(), 0x5555), levels) << name;
        }
    }
    EXPECT_EQ(0u, raised);
    EXPECT_EQ(0, shaped[0]) << "an empty line right to left is the terminator alone";
    EXPECT_EQ(7, BidiExtendableChar(text.data(), 4, 1)) << "the isolated alef within the count";
}

// A line past the stack scratch space: the resolution and the order must be those of the same
// pattern in short, and the result the same with and without the caller's arrays.
TEST(BidiString, MillionUnitLine) {
    const std::u16string unit{kAlef, kBeh, u' ', u'1', u'2', u' ', u'a', u'(', u'b', u')', u' '};
    constexpr DWORD kCount = 1000000;
    std::u16string text;
    text.reserve(kCount);
    while (text.size() + unit.size() <= kCount) text += unit;
    text.append(kCount - text.size(), kBeh);

    std::u16string own = text;
    Levels levels(kCount);
    ASSERT_EQ(BidiString(own.data(), kCount, nullptr, levels.data(), 1, 1), kCount);
    ASSERT_EQ(BidiString(text.data(), kCount, nullptr, nullptr, 1, 1), kCount);
    EXPECT_EQ(own, text);

    // Right to left the units come in reverse order, each ordered as on its own; the Arabic tail first.
    const Line alone = Display(unit + unit, 1, 1);
    const size_t units = kCount / unit.size();
    const size_t tail = kCount - units * unit.size();
    EXPECT_EQ(own.substr(0, tail), std::u16string(tail, kBeh));
    const std::u16string second = alone.display.substr(0, unit.size());
    const Levels unitLevels(alone.levels.begin(), alone.levels.begin() + static_cast<long>(unit.size()));
    for (size_t k = 0; k < units; k += 9973) {
        ASSERT_EQ(own.substr(tail + k * unit.size(), unit.size()), second) << k;
        const auto from = levels.begin() + static_cast<long>(k * unit.size());
        ASSERT_EQ(Levels(from, from + static_cast<long>(unit.size())), unitLevels) << k;
    }
}

// Reordering in one pass against reversing the runs level by level, the deepest first, on every
// pattern of levels a resolved line can have: from the base level up to the lowest odd level
// above it plus one.
TEST(BidiReorder, OnePassAgainstLevelByLevel) {
    for (WORD base : {0, 1, 2, 3}) {
        const WORD lowest = (base & 1) ? base : static_cast<WORD>(base + 1);
        const int kinds = lowest + 2 - base;
        for (int count = 0; count <= 7; ++count) {
            int patterns = 1;
            for (int i = 0; i < count; ++i) patterns *= kinds;
            for (int pattern = 0; pattern < patterns; ++pattern) {
                Levels levels;
                for (int i = 0, p = pattern; i < count; ++i, p /= kinds) levels.push_back(static_cast<WORD>(base + p % kinds));
                const std::u16string text = u"a(b<c)d"s.substr(0, static_cast<size_t>(count));
                for (bool mirror : {false, true}) {
                    std::u16string expected = text;
                    if (mirror) zelbidi::reference::MirrorText(expected.data(), levels.data(), static_cast<DWORD>(count));
                    zelbidi::reference::Reorder(base, expected.data(), levels.data(), static_cast<DWORD>(count));
                    std::u16string out(text.size(), u'?');
                    zelbidi::ReorderInto(out.data(), text.data(), nullptr, levels.data(), static_cast<DWORD>(count), base,
                                         mirror);
                    ASSERT_EQ(out, expected) << "base " << base << " pattern " << pattern << " mirror " << mirror;
                }
            }
        }
    }
}

}  // namespace
