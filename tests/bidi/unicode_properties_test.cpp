// Unicode character properties: the look-ups over every 16-bit unit, the places where the tables
// differ from the character database, the compiled tables, and the generated source.
#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <zel/bidi.h>

#include "bidi/unicode_property_tables.h"
#include "support/support.h"

namespace {

using namespace zelbidi;

std::string Hex(int c) {
    char text[8];
    std::snprintf(text, sizeof text, "U+%04X", c);
    return text;
}

template <typename R>
void ExpectEach(R (*lookUp)(WCHAR), std::initializer_list<std::pair<WCHAR, int>> cases) {
    for (auto [c, expected] : cases) EXPECT_EQ(lookUp(c), expected) << Hex(c);
}

template <typename F>
void ForEachUnit(F f) {
    for (int c = 0; c <= 0xFFFF; ++c) f(static_cast<WCHAR>(c));
}

TEST(UnicodeProperties, Categories) {
    ExpectEach(GetUnicodeCategory,
               {{0x0000, 10}, {0x0020, 7},  {0x0041, 15}, {0x0061, 16}, {0x01C5, 17}, {0x0300, 1},
                {0x2028, 8},  {0x2029, 9},  {0x00AB, 24}, {0x00BB, 25}, {0x00A6, 30}, {0xAC00, 19},
                {0xD7A3, 19}, {0xD7A4, 0},  {0x9FA5, 19}, {0x9FA6, 0},
                // Surrogates, private use, unassigned (also Arabic and its presentation forms), non-characters.
                {0xD800, 12}, {0xDFFF, 12}, {0xE000, 13}, {0xF8FF, 13}, {0x0378, 0}, {0xFDD0, 0},
                {0xFFFF, 0},  {0x0620, 0},  {0x063B, 0},  {0x06FF, 0},  {0xFDFE, 0},  {0xFEFD, 0}});

    int unassigned = 0;
    ForEachUnit([&](WCHAR c) {
        const WORD category = GetUnicodeCategory(c);
        EXPECT_TRUE(category <= 30 && category != 14) << Hex(c);
        if (category == 0) {
            ++unassigned;
            EXPECT_EQ(ZelClassFromChWS(c), ZelBidiL) << Hex(c);
        }
    });
    EXPECT_GT(unassigned, 0);
}

TEST(UnicodeProperties, Classes) {
    // Surrogates, private use, Hebrew letters and punctuation are L, Hebrew presentation forms R, points NSM.
    ExpectEach(ZelClassFromChWS,
               {{0x0020, ZelBidiWS},  {0x0009, ZelBidiS},   {0x000A, ZelBidiB},   {0x001D, ZelBidiS},
                {0x001C, ZelBidiB},   {0x2029, ZelBidiB},   {0x2028, ZelBidiWS},  {0x0041, ZelBidiL},
                {0x0030, ZelBidiEN},  {0x0660, ZelBidiAN},  {0x0627, ZelBidiAL},  {0x0300, ZelBidiNSM},
                {0x002C, ZelBidiCS},  {0x002F, ZelBidiES},  {0x002B, ZelBidiET},  {0x200C, ZelBidiBN},
                {0x200D, ZelBidiBN},  {0x202A, ZelBidiLRE}, {0x202B, ZelBidiRLE}, {0x202C, ZelBidiPDF},
                {0x202D, ZelBidiLRO}, {0x202E, ZelBidiRLO}, {0x0021, ZelBidiON},  {0xD800, ZelBidiL},
                {0xE000, ZelBidiL},   {0x05BE, ZelBidiL},   {0x05C0, ZelBidiL},   {0x05C3, ZelBidiL},
                {0x05D0, ZelBidiL},   {0x05EA, ZelBidiL},   {0x05F0, ZelBidiL},   {0x05F4, ZelBidiL},
                {0x0590, ZelBidiL},   {0x05FF, ZelBidiL},   {0x05B0, ZelBidiNSM}, {0xFB1D, ZelBidiR},
                {0xFB1F, ZelBidiR},   {0xFB2A, ZelBidiR},   {0xFB4F, ZelBidiR},   {0xFB1E, ZelBidiNSM}});

    // Resolving folds only the separators; nothing comes back outside the class range.
    ForEachUnit([](WCHAR c) {
        const WORD stored = ZelClassFromChWS(c);
        ASSERT_LE(stored, ZelBidiPDF) << Hex(c);
        const bool folds = stored == ZelBidiS || stored == ZelBidiWS;
        ASSERT_EQ(ZelClassFromChN(c), folds ? WORD{ZelBidiON} : stored) << Hex(c);
        if (c >= 0x0590 && c <= 0x05FF) {
            EXPECT_EQ(stored, GetUnicodeCategory(c) == 1 ? ZelBidiNSM : ZelBidiL) << Hex(c);
        }
    });
}

TEST(UnicodeProperties, JoiningTypes) {
    ExpectEach(ZelBidiJoining,
               {{0x0621, 0}, {0x0622, 2}, {0x0626, 1}, {0x0627, 2}, {0x0640, 3}, {0x0648, 2},
                {0x0649, 1}, {0x064B, 0}, {0x0674, 0}, {0x06C0, 2}, {0x06C1, 1}, {0x06D4, 0},
                {0x0710, 2}, {0x0711, 0}, {0x072C, 2}, {0x072D, 0}, {0x200C, 0}, {0x200D, 3},
                {0xFE8F, 0}});

    // Only the Arabic and Syriac letters, the tatweel and the joiner join at all.
    int joining = 0;
    ForEachUnit([&](WCHAR c) {
        const WORD type = ZelBidiJoining(c);
        if (type == 0) return;
        ++joining;
        EXPECT_TRUE((c >= 0x0622 && c <= 0x072C) || c == 0x200D) << Hex(c);
        EXPECT_TRUE(type == 3 || GetUnicodeCategory(c) == 19) << Hex(c);
    });
    EXPECT_EQ(joining, 169);
}

TEST(UnicodeProperties, DecompositionTags) {
    ExpectEach(ZelDecompositionTag,
               {{0xFE8F, 7},  {0xFE90, 6},  {0xFE91, 4},  {0xFE92, 5},  {0xAC00, 0},  {0x00C0, 1},
                {0x0041, 0},  {0x2102, 2},  {0x00A0, 3},  {0x2460, 8},  {0x00B2, 9},  {0x2080, 10},
                {0xFE30, 11}, {0xFF01, 12}, {0xFF61, 13}, {0xFE50, 14}, {0x3300, 15}, {0x00A8, 16},
                {0x00BC, 17}, {0xFFFF, 0},  {0xD800, 0}});
    ForEachUnit([](WCHAR c) {
        ASSERT_LE(ZelDecompositionTag(c), 17) << Hex(c);
        // The syllables decompose by rule and have no record.
        if (c >= 0xAC00 && c <= 0xD7A3) {
            ASSERT_EQ(ZelDecompositionTag(c), 0) << Hex(c);
        }
    });
}

TEST(UnicodeProperties, MirroredCharactersAndPartners) {
    ExpectEach(GetBidiMirroredChar, {{0x0028, 0x0029}, {0x0029, 0x0028}, {0x2215, 0x29F5}, {0x29F5, 0x2215},
                                     {0xFF62, 0xFF63}, {0xFF63, 0xFF62}, {0x2201, 0x2201}, {0x0041, 0x0041}});
    ExpectEach(BidiMirrored, {{0x2201, 1}, {0x0041, 0}});

    int mirrored = 0;
    int partnered = 0;
    ForEachUnit([&](WCHAR c) {
        const int flag = BidiMirrored(c);
        const WCHAR partner = GetBidiMirroredChar(c);
        ASSERT_TRUE(flag == 1 || (flag == 0 && partner == c)) << Hex(c);
        if (!flag) return;
        ++mirrored;
        // The whole property byte of a mirrored character is the flag alone.
        EXPECT_EQ(ZelClassFromChWS(c), ZelBidiON) << Hex(c);
        EXPECT_EQ(ZelBidiJoining(c), 0) << Hex(c);
        if (partner == c) return;
        ++partnered;
        EXPECT_EQ(BidiMirrored(partner), 1) << Hex(c);
        EXPECT_EQ(GetBidiMirroredChar(partner), c) << Hex(c);
    });
    EXPECT_EQ(mirrored, 492);
    EXPECT_EQ(partnered, 316);
}

// Checks that each page is stored once and the index reaches all stored pages and no others; gives N.
template <typename Entry, int N>
int StoredPages(const BYTE (&index)[256], const Entry (&pages)[N][256]) {
    std::set<std::vector<Entry>> distinct;
    for (int p = 0; p < N; ++p) distinct.emplace(pages[p], pages[p] + 256);
    EXPECT_EQ(static_cast<int>(distinct.size()), N) << "a page stored twice";
    std::set<int> used;
    for (BYTE p : index) {
        EXPECT_LT(p, N);
        used.insert(p);
    }
    EXPECT_EQ(static_cast<int>(used.size()), N) << "a stored page that no index entry uses";
    return N;
}

TEST(UnicodeProperties, TablesSharePages) {
    EXPECT_EQ(StoredPages(kCategoryIndex, kCategoryPages), 54);
    EXPECT_EQ(StoredPages(kPropertyIndex, kPropertyPages), 40);
    EXPECT_EQ(StoredPages(kDecompositionIndex, kDecompositionPages), 37);
}

TEST(UnicodeProperties, DecompositionRecordsNameTheirCharacter) {
    ASSERT_EQ(kDecompositionPool[0], 0);
    int records = 0;
    ForEachUnit([&](WCHAR c) {
        const int at = kDecompositionPages[kDecompositionIndex[c >> 8]][c & 0xFF];
        if (at == 0) return;
        ++records;
        ASSERT_LT(at + 2, kDecompositionPoolSize) << Hex(c);
        EXPECT_GE(kDecompositionPool[at], 1) << Hex(c);
        EXPECT_EQ(kDecompositionPool[at + 1], c) << Hex(c);
        EXPECT_NE(kDecompositionPool[at + 2], 0) << Hex(c) << " has an empty decomposition";
        int end = at + 2;
        while (end < kDecompositionPoolSize && kDecompositionPool[end] != 0) ++end;
        ASSERT_LT(end, kDecompositionPoolSize) << Hex(c) << " has no closing 0";
    });
    EXPECT_GT(records, 3000);
    EXPECT_EQ(kDecompositionPool[kDecompositionPoolSize - 1], 0);
}

// The committed tables are what the generator makes of the character database.
TEST(UnicodeProperties, GeneratedSourceMatchesGenerator) {
#ifdef _WIN32
    GTEST_SKIP() << "a check of the source tree against its generator, made where the generators run";
#endif
    const std::string source = ZEL_SOURCE_DIR;
    zeltest::TempDir out;
    const auto run = zeltest::RunProgram(
        "/usr/bin/env", {"python3", source + "/tools/gen_unicode_properties.py", "--output", out.path()});
    if (run.status == 127) GTEST_SKIP() << "python3 is not on PATH";
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* name : {"unicode_property_tables.h", "unicode_property_tables.cpp"}) {
        const std::string fresh = zeltest::ReadFile(out.file(name));
        ASSERT_FALSE(fresh.empty()) << name;
        EXPECT_TRUE(fresh == zeltest::ReadFile(source + "/src/bidi/" + name))
            << "src/bidi/" << name << " differs from the generator's output; run the generator";
    }
}

}  // namespace
