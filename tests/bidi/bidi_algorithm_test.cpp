// Level resolution and display order of single lines: the weak and neutral rules through whole
// lines of Arabic, Hebrew, Latin and digits, white space at the line's end and before separators,
// mirroring, and lines far longer than the stack scratch space.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <zel/bidi.h>

#include "bidi/bidi_internal.h"

namespace {

using Levels = std::vector<WORD>;

// Arabic letters (AL), Hebrew letters as stored here (L), Hebrew presentation forms (R).
constexpr WCHAR kAlef = 0x0627;
constexpr WCHAR kBeh = 0x0628;
constexpr WCHAR kTeh = 0x062A;
constexpr WCHAR kHebAlef = 0x05D0;
constexpr WCHAR kHebBet = 0x05D1;
constexpr WCHAR kWideAlef = 0xFB21;
constexpr WCHAR kWideDalet = 0xFB22;
constexpr WCHAR kZwj = 0x200D;
constexpr WCHAR kLre = 0x202A;
constexpr WCHAR kRlo = 0x202E;
constexpr WCHAR kPdf = 0x202C;
constexpr WORD kSkip = 0xFFFF;

struct Line {
    std::u16string display;
    Levels levels;
    DWORD result;
};

// BidiString over exact-size heap buffers, so that a step past either end shows.
Line Display(const std::u16string& text, int direction, int mirror = 0) {
    std::vector<WCHAR> buffer(text.begin(), text.end());
    Levels classes(text.size(), 0x5555);
    Levels levels(text.size(), 0x5555);
    const DWORD n = BidiString(buffer.data(), static_cast<DWORD>(buffer.size()), classes.data(), levels.data(),
                               mirror, direction);
    return {std::u16string(buffer.begin(), buffer.end()), levels, n};
}

struct Resolved {
    Levels classes;
    Levels levels;
    DWORD raised;
};

Resolved Resolve(Levels classes, LONG base, Levels levels = {}) {
    levels.resize(classes.size(), 0x5555);
    DWORD raised = 7;
    EXPECT_EQ(BidiAlgorithm(base, nullptr, static_cast<DWORD>(classes.size()), classes.data(), levels.data(), &raised),
              classes.size());
    return {classes, levels, raised};
}

TEST(BidiResolve, WeakTypesAfterArabicAndLatin) {
    // Digits behind Arabic letters: the first turns AN, the ones behind it stay EN.
    auto r = Resolve({ZelBidiAL, ZelBidiAL, ZelBidiAL, ZelBidiEN, ZelBidiEN, ZelBidiEN}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiAN, ZelBidiEN, ZelBidiEN}));
    EXPECT_EQ(r.levels, (Levels{1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(r.raised, 1u);

    // Behind a neutral after Arabic the first digit becomes L, and the neutral step takes the
    // others along.
    r = Resolve({ZelBidiAL, ZelBidiAL, ZelBidiAL, ZelBidiON, ZelBidiEN, ZelBidiEN, ZelBidiEN}, 0);
    EXPECT_EQ(r.levels, (Levels{1, 1, 1, 0, 0, 0, 0}));

    // A common separator between numbers after Arabic joins them as AN; one at the end is a
    // neutral and takes the base direction.
    r = Resolve({ZelBidiAL, ZelBidiEN, ZelBidiCS, ZelBidiEN, ZelBidiCS}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, ZelBidiAN, ZelBidiAN, ZelBidiAN, ZelBidiL}));

    // Terminators take the class of the number they touch after L, and stay neutral after R.
    r = Resolve({ZelBidiL, ZelBidiET, ZelBidiET, ZelBidiEN, ZelBidiR, ZelBidiET, ZelBidiON}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiL, ZelBidiL, ZelBidiL, ZelBidiL, ZelBidiR, ZelBidiL, ZelBidiL}));
    r = Resolve({ZelBidiR, ZelBidiEN, ZelBidiET, ZelBidiET, ZelBidiR}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, ZelBidiEN, ZelBidiEN, ZelBidiEN, ZelBidiR}));
    EXPECT_EQ(r.levels, (Levels{1, 2, 2, 2, 1}));

    // Marks follow the letter before them, and at the line's start the base direction.
    r = Resolve({ZelBidiNSM, ZelBidiR, ZelBidiNSM, ZelBidiNSM, ZelBidiL, ZelBidiNSM}, 1);
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiL, ZelBidiL}));
    EXPECT_EQ(r.levels, (Levels{1, 1, 1, 1, 2, 2}));
}

TEST(BidiResolve, NeutralsTakeTheirSurroundingsOrTheLevel) {
    // Between two R, and between R and a number, a neutral is R; between L and R it takes the
    // direction of the level.
    auto r = Resolve({ZelBidiR, ZelBidiON, ZelBidiR, ZelBidiON, ZelBidiAN, ZelBidiON, ZelBidiL}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiAN, ZelBidiL, ZelBidiL}));
    r = Resolve({ZelBidiL, ZelBidiON, ZelBidiR}, 1);
    EXPECT_EQ(r.classes, (Levels{ZelBidiL, ZelBidiR, ZelBidiR}));
    EXPECT_EQ(r.levels, (Levels{2, 1, 1}));
    // At the end of the line the base direction stands in for a next character.
    r = Resolve({ZelBidiL, ZelBidiON, ZelBidiON}, 1);
    EXPECT_EQ(r.levels, (Levels{2, 1, 1}));
    r = Resolve({ZelBidiL, ZelBidiON, ZelBidiON}, 0);
    EXPECT_EQ(r.levels, (Levels{0, 0, 0}));
    EXPECT_EQ(r.raised, 0u);
}

TEST(BidiResolve, ControlsSeparatorsAndSkippedPositions) {
    // Explicit controls and paragraph separators are BN: no embedding, no new paragraph. A BN
    // alone stays BN at the base level; inside a neutral run it is resolved with the run.
    auto r = Resolve({ZelBidiRLO, ZelBidiL, ZelBidiB, ZelBidiR, ZelBidiON, ZelBidiLRE, ZelBidiR, ZelBidiPDF}, 0);
    EXPECT_EQ(r.classes, (Levels{ZelBidiBN, ZelBidiL, ZelBidiBN, ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiR, ZelBidiBN}));
    EXPECT_EQ(r.levels, (Levels{0, 0, 0, 1, 1, 1, 1, 0}));

    // A skipped position keeps class and level, breaks no run and fills none.
    r = Resolve({ZelBidiAL, kSkip, ZelBidiEN}, 0, {9, 9, 9});
    EXPECT_EQ(r.classes, (Levels{ZelBidiR, kSkip, ZelBidiAN}));
    EXPECT_EQ(r.levels, (Levels{1, 9, 2}));
    r = Resolve({ZelBidiL, ZelBidiET, kSkip, ZelBidiEN, ZelBidiR, kSkip, ZelBidiON, kSkip}, 0, {9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_EQ(r.classes, (Levels{ZelBidiL, ZelBidiL, kSkip, ZelBidiL, ZelBidiR, kSkip, ZelBidiL, kSkip}));
    EXPECT_EQ(r.levels, (Levels{0, 0, 9, 0, 1, 9, 0, 9}));

    // Only the lowest bit of the base level gives the direction; its lower 16 bits are stored.
    r = Resolve({ZelBidiL, ZelBidiR, ZelBidiEN}, 0x10002);
    EXPECT_EQ(r.levels, (Levels{2, 3, 4}));
    r = Resolve({ZelBidiL, ZelBidiR}, 5);
    EXPECT_EQ(r.levels, (Levels{6, 5}));

    // Nothing to resolve: raised is 0. A null raised pointer changes nothing else.
    r = Resolve({}, 1);
    EXPECT_EQ(r.raised, 0u);
    Levels classes{ZelBidiAL, ZelBidiWS, ZelBidiEN, ZelBidiS};
    Levels levels(4);
    EXPECT_EQ(BidiAlgorithm(0, nullptr, 4, classes.data(), levels.data(), nullptr), 4u);
    r = Resolve({ZelBidiAL, ZelBidiWS, ZelBidiEN, ZelBidiS}, 0);
    EXPECT_EQ(classes, r.classes);
    EXPECT_EQ(levels, r.levels);
}

TEST(BidiResolve, WhitespaceBackToTheBaseLevel) {
    // Trailing white space and white space before a segment separator; an explicit control in the
    // run neither ends it nor counts, so the reset is counted back from the separator.
    Levels levels{1, 1, 1, 1, 1, 1};
    BidiResolveWhitespace(0, Levels{ZelBidiAL, ZelBidiWS, ZelBidiLRE, ZelBidiWS, ZelBidiS, ZelBidiAL}.data(),
                          levels.data(), 6);
    EXPECT_EQ(levels, (Levels{1, 1, 0, 0, 0, 1}));

    levels = {2, 2, 2, 2, 2};
    BidiResolveWhitespace(1, Levels{ZelBidiL, ZelBidiWS, ZelBidiL, ZelBidiWS, ZelBidiWS}.data(), levels.data(), 5);
    EXPECT_EQ(levels, (Levels{2, 2, 2, 1, 1}));

    // A BN takes the level before it and lengthens the run; a skipped position lengthens the run
    // without its level being taken over.
    levels = {2, 5, 7, 2, 3, 2};
    BidiResolveWhitespace(1, Levels{ZelBidiL, ZelBidiBN, kSkip, ZelBidiBN, ZelBidiB, ZelBidiL}.data(), levels.data(),
                          6);
    EXPECT_EQ(levels, (Levels{2, 1, 1, 1, 1, 2}));
    levels = {2, 5, 7};
    BidiResolveWhitespace(1, Levels{ZelBidiL, ZelBidiBN, ZelBidiL}.data(), levels.data(), 3);
    EXPECT_EQ(levels, (Levels{2, 2, 7}));
}

TEST(BidiString, LeftToRightLinesStayAsTheyAre) {
    // Nothing raised at base level 0: no reordering, no mirroring, no white space step.
    const std::u16string latin = u"a(b) [c]  ";
    Line line = Display(latin, 0, 1);
    EXPECT_EQ(line.display, latin);
    EXPECT_EQ(line.levels, Levels(latin.size(), 0));
    EXPECT_EQ(line.result, latin.size());

    // The Hebrew letters are L in these tables.
    const std::u16string hebrew{kHebAlef, kHebBet, u' ', kHebBet};
    EXPECT_EQ(Display(hebrew, 0).display, hebrew);

    // Explicit controls don't embed or override.
    const std::u16string controls{kRlo, u'a', u'b', kPdf};
    EXPECT_EQ(Display(controls, 0).display, controls);

    // In a right-to-left line L is raised to 2 and the two reversals cancel out.
    line = Display(u"abc", 1);
    EXPECT_EQ(line.display, u"abc");
    EXPECT_EQ(line.levels, (Levels{2, 2, 2}));
}

TEST(BidiString, MixedLines) {
    // Arabic and digits in a left-to-right line: the number keeps its order within the Arabic.
    Line line = Display({kAlef, kBeh, kTeh, u'1', u'2', u'3'}, 0);
    EXPECT_EQ(line.levels, (Levels{1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(line.display, (std::u16string{u'1', u'2', u'3', kTeh, kBeh, kAlef}));

    line = Display({kAlef, kBeh, kTeh, u' ', u'1', u'2', u'3'}, 0);
    EXPECT_EQ(line.levels, (Levels{1, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(line.display, (std::u16string{kTeh, kBeh, kAlef, u' ', u'1', u'2', u'3'}));

    // Latin, Arabic, digits and Latin in both directions.
    const std::u16string text{u'a', u'b', u' ', kAlef, kBeh, u' ', u'1', u'2', u' ', u'c'};
    line = Display(text, 0);
    EXPECT_EQ(line.levels, (Levels{0, 0, 0, 1, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(line.display, (std::u16string{u'a', u'b', u' ', kBeh, kAlef, u' ', u'1', u'2', u' ', u'c'}));
    line = Display(text, 1);
    EXPECT_EQ(line.levels, (Levels{2, 2, 1, 1, 1, 1, 2, 2, 2, 2}));
    EXPECT_EQ(line.display, (std::u16string{u'1', u'2', u' ', u'c', u' ', kBeh, kAlef, u' ', u'a', u'b'}));

    // Hebrew presentation forms are R, and a Hebrew letter between them is L.
    line = Display({kWideAlef, u' ', kHebAlef, u' ', kWideDalet}, 0);
    EXPECT_EQ(line.levels, (Levels{1, 0, 0, 0, 1}));
    line = Display({kWideAlef, u' ', kWideDalet, u'!'}, 0);
    EXPECT_EQ(line.display, (std::u16string{kWideDalet, u' ', kWideAlef, u'!'}));
    // Any direction other than exactly 1 is left to right.
    EXPECT_EQ(Display({kWideAlef, u' ', kWideDalet, u'!'}, 2).display, line.display);
}

TEST(BidiString, FullStopsBehindNumbers) {
    // The full stop behind a number is part of it, in either direction.
    Line line = Display(u"1.", 1);
    EXPECT_EQ(line.levels, (Levels{2, 2}));
    EXPECT_EQ(line.display, u"1.");
    line = Display(u"a.", 1);
    EXPECT_EQ(line.levels, (Levels{2, 1}));
    EXPECT_EQ(line.display, u".a");

    // A decimal number inside Arabic reads as one; so does a run of full stops behind it.
    line = Display({kAlef, u' ', u'1', u'.', u'5', u'.', u'.'}, 1);
    EXPECT_EQ(line.levels, (Levels{1, 1, 2, 2, 2, 2, 2}));
    EXPECT_EQ(line.display, (std::u16string{u'1', u'.', u'5', u'.', u'.', u' ', kAlef}));
    // A full stop that opens the line has nothing to follow.
    line = Display({u'.', u'1', kAlef}, 1);
    EXPECT_EQ(line.levels, (Levels{1, 2, 1}));
}

TEST(BidiString, WhitespaceAndSeparatorsInALine) {
    // White space before a tab, and a line feed, go to the base level; the line feed starts no
    // new paragraph, the text behind it resolves as before.
    Line line = Display(u"a \tb", 1);
    EXPECT_EQ(line.levels, (Levels{2, 1, 1, 2}));
    EXPECT_EQ(line.display, u"b\t a");
    line = Display(u"a\nb c", 1);
    EXPECT_EQ(line.levels, (Levels{2, 1, 2, 2, 2}));
    EXPECT_EQ(line.display, u"b c\na");

    // Trailing white space behind Latin in a right-to-left line.
    line = Display(u"ab  ", 1);
    EXPECT_EQ(line.levels, (Levels{2, 2, 1, 1}));
    EXPECT_EQ(line.display, u"  ab");

    // The white space step reads the text's own classes: a joiner (BN) between two Arabic
    // letters takes the level before it, an embedding control keeps the base level.
    line = Display({kAlef, kZwj, kBeh}, 0);
    EXPECT_EQ(line.levels, (Levels{1, 1, 1}));
    EXPECT_EQ(line.display, (std::u16string{kBeh, kZwj, kAlef}));
    line = Display({kAlef, kLre, kBeh}, 0);
    EXPECT_EQ(line.levels, (Levels{1, 0, 1}));
    EXPECT_EQ(line.display, (std::u16string{kAlef, kLre, kBeh}));
}

TEST(BidiString, MirroringAtOddLevels) {
    const std::u16string text{kAlef, u'(', kBeh, u')'};
    EXPECT_EQ(Display(text, 1, 0).display, (std::u16string{u')', kBeh, u'(', kAlef}));
    EXPECT_EQ(Display(text, 1, 1).display, (std::u16string{u'(', kBeh, u')', kAlef}));

    // Only odd levels mirror: the bracket inside the Latin run (level 2) stays, the one that
    // ends the line (level 1) turns. A mirrored character without a partner stays too.
    Line line = Display(u"a(b)", 1, 1);
    EXPECT_EQ(line.levels, (Levels{2, 2, 2, 1}));
    EXPECT_EQ(line.display, u"(a(b");
    const std::u16string noPartner{kAlef, 0x2201, u'<', kBeh};
    EXPECT_EQ(Display(noPartner, 1, 1).display, (std::u16string{kBeh, u'>', 0x2201, kAlef}));
}

TEST(BidiString, NullArraysAndEmptyText) {
    std::u16string text{kAlef, u' ', u'a', u'b', u'(', u'1', u')'};
    const Line withArrays = Display(text, 1, 1);
    EXPECT_EQ(BidiString(text.data(), static_cast<DWORD>(text.size()), nullptr, nullptr, 1, 1), text.size());
    EXPECT_EQ(text, withArrays.display);

    // The classes array receives the stored classes, not the resolved ones.
    std::u16string spaced{kAlef, u' ', u'\t', kRlo};
    Levels classes(4);
    BidiString(spaced.data(), 4, classes.data(), nullptr, 0, 1);
    EXPECT_EQ(classes, (Levels{ZelBidiAL, ZelBidiWS, ZelBidiS, ZelBidiRLO}));

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
    std::u16string scratch = text;
    ASSERT_EQ(BidiString(scratch.data(), kCount, nullptr, nullptr, 1, 1), kCount);
    EXPECT_EQ(own, scratch);

    // A right-to-left line of repeated units displays as the units in reverse order, each one
    // ordered as on its own; the tail of Arabic letters comes first.
    const Line alone = Display(unit + unit, 1, 1);
    const size_t units = kCount / unit.size();
    const size_t tail = kCount - units * unit.size();
    EXPECT_EQ(own.substr(0, tail), std::u16string(tail, kBeh));
    const std::u16string second = alone.display.substr(0, unit.size());
    for (size_t k = 0; k < units; k += 9973)
        ASSERT_EQ(own.substr(tail + k * unit.size(), unit.size()), second) << k;
    for (size_t k = 0; k < units; k += 9973)
        ASSERT_EQ(Levels(levels.begin() + static_cast<long>(k * unit.size()),
                         levels.begin() + static_cast<long>((k + 1) * unit.size())),
                  Levels(alone.levels.begin(), alone.levels.begin() + static_cast<long>(unit.size())));
}

TEST(BidiReorder, NestedLevels) {
    // Levels as the resolution leaves them for base level 1: runs at 2 and 3 inside 1.
    std::u16string text = u"abcdefg";
    const Levels levels{1, 2, 2, 3, 3, 2, 1};
    zelbidi::BidiReorder(1, text.data(), levels.data(), 7);
    EXPECT_EQ(text, u"gbcedfa");
    // At base level 0 a run at 2 directly beside a run at 0 is reversed twice.
    text = u"abcde";
    zelbidi::BidiReorder(0, text.data(), Levels{0, 2, 2, 1, 0}.data(), 5);
    EXPECT_EQ(text, u"adbce");
}

}  // namespace
