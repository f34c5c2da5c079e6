// Unicode character properties: the look-ups over every 16-bit unit, the places where the tables
// differ from the character database, the shape of the compiled tables, and the generated source
// against its generator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <set>
#include <sstream>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <zel/bidi.h>

#include "bidi/unicode_property_tables.h"
#include "support/support.h"

namespace {

using namespace zelbidi;

std::string Hex(int c) {
    std::ostringstream s;
    s << "U+" << std::hex << std::uppercase << c;
    return s.str();
}

// Checks a look-up against a list of characters and expected values.
void ExpectEach(WORD (*lookUp)(WCHAR), std::initializer_list<std::pair<WCHAR, WORD>> cases) {
    for (auto [c, expected] : cases) EXPECT_EQ(lookUp(c), expected) << Hex(c);
}

// Every 16-bit unit once.
template <typename F>
void ForEachUnit(F f) {
    for (int c = 0; c <= 0xFFFF; ++c) f(static_cast<WCHAR>(c));
}

TEST(UnicodeProperties, Categories) {
    ExpectEach(GetUnicodeCategory,
               {{0x0000, 10}, {0x0020, 7},  {0x0041, 15}, {0x0061, 16}, {0x01C5, 17}, {0x0300, 1},
                {0x2028, 8},  {0x2029, 9},  {0x00AB, 24}, {0x00BB, 25}, {0x00A6, 30}, {0xAC00, 19},
                {0xD7A3, 19}, {0xD7A4, 0},  {0x9FA5, 19}, {0x9FA6, 0},
                // Surrogates as code points, private use, unassigned units and non-characters.
                {0xD800, 12}, {0xDFFF, 12}, {0xE000, 13}, {0xF8FF, 13}, {0x0378, 0}, {0xFDD0, 0},
                {0xFFFF, 0}});

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

TEST(UnicodeProperties, ClassesAsStoredAndAsResolved) {
    struct Case {
        WCHAR c;
        WORD stored;
        WORD resolved;
    };
    const Case cases[] = {
        {0x0020, ZelBidiWS, ZelBidiON},   {0x0009, ZelBidiS, ZelBidiON},
        {0x000A, ZelBidiB, ZelBidiB},     {0x001D, ZelBidiS, ZelBidiON},
        {0x001C, ZelBidiB, ZelBidiB},     {0x2029, ZelBidiB, ZelBidiB},
        {0x2028, ZelBidiWS, ZelBidiON},   {0x0041, ZelBidiL, ZelBidiL},
        {0x0030, ZelBidiEN, ZelBidiEN},   {0x0660, ZelBidiAN, ZelBidiAN},
        {0x0627, ZelBidiAL, ZelBidiAL},   {0x0300, ZelBidiNSM, ZelBidiNSM},
        {0x002C, ZelBidiCS, ZelBidiCS},   {0x002F, ZelBidiES, ZelBidiES},
        {0x002B, ZelBidiET, ZelBidiET},   {0x200C, ZelBidiBN, ZelBidiBN},
        {0x200D, ZelBidiBN, ZelBidiBN},   {0x202A, ZelBidiLRE, ZelBidiLRE},
        {0x202B, ZelBidiRLE, ZelBidiRLE}, {0x202C, ZelBidiPDF, ZelBidiPDF},
        {0x202D, ZelBidiLRO, ZelBidiLRO}, {0x202E, ZelBidiRLO, ZelBidiRLO},
        {0x0021, ZelBidiON, ZelBidiON},   {0xD800, ZelBidiL, ZelBidiL},
        {0xE000, ZelBidiL, ZelBidiL},
    };
    for (const Case& k : cases) {
        EXPECT_EQ(ZelClassFromChWS(k.c), k.stored) << Hex(k.c);
        EXPECT_EQ(ZelClassFromChN(k.c), k.resolved) << Hex(k.c);
    }

    // The mapping only folds the separators; nothing comes back outside the class range.
    ForEachUnit([](WCHAR c) {
        const WORD stored = ZelClassFromChWS(c);
        ASSERT_LE(stored, ZelBidiPDF) << Hex(c);
        const bool folds = stored == ZelBidiS || stored == ZelBidiWS;
        ASSERT_EQ(ZelClassFromChN(c), folds ? WORD{ZelBidiON} : stored) << Hex(c);
    });
}

TEST(UnicodeProperties, HebrewLettersAreLeftToRight) {
    // Letters and punctuation are L, the points and accents NSM, the presentation forms R, and
    // the unassigned units of the block L like all others.
    ForEachUnit([](WCHAR c) {
        if (c < 0x0590 || c > 0x05FF) return;
        const WORD expected = GetUnicodeCategory(c) == 1 ? ZelBidiNSM : ZelBidiL;
        EXPECT_EQ(ZelClassFromChWS(c), expected) << Hex(c);
    });
    for (WCHAR c : {0x05BE, 0x05C0, 0x05C3, 0x05D0, 0x05EA, 0x05F0, 0x05F4, 0x0590, 0x05FF})
        EXPECT_EQ(ZelClassFromChWS(c), ZelBidiL) << Hex(c);
    EXPECT_EQ(ZelClassFromChWS(0x05B0), ZelBidiNSM);
    for (WCHAR c : {0xFB1D, 0xFB1F, 0xFB2A, 0xFB4F})
        EXPECT_EQ(ZelClassFromChWS(c), ZelBidiR) << Hex(c);
    EXPECT_EQ(ZelClassFromChWS(0xFB1E), ZelBidiNSM);
    // Unassigned in the Arabic block and in the Arabic presentation forms.
    for (WCHAR c : {0x0620, 0x063B, 0x06FF, 0xFDFE, 0xFEFD}) {
        EXPECT_EQ(GetUnicodeCategory(c), 0) << Hex(c);
        EXPECT_EQ(ZelClassFromChWS(c), ZelBidiL) << Hex(c);
    }
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
    // One of each tag.
    ExpectEach(ZelDecompositionTag,
               {{0xFE8F, 7},  {0xFE90, 6},  {0xFE91, 4},  {0xFE92, 5},  {0xAC00, 0},  {0x00C0, 1},
                {0x0041, 0},  {0x2102, 2},  {0x00A0, 3},  {0x2460, 8},  {0x00B2, 9},  {0x2080, 10},
                {0xFE30, 11}, {0xFF01, 12}, {0xFF61, 13}, {0xFE50, 14}, {0x3300, 15}, {0x00A8, 16},
                {0x00BC, 17}, {0xFFFF, 0},  {0xD800, 0}});
    ForEachUnit([](WCHAR c) { ASSERT_LE(ZelDecompositionTag(c), 17) << Hex(c); });
    // The syllables decompose by rule and have no record.
    for (int c = 0xAC00; c <= 0xD7A3; ++c) ASSERT_EQ(ZelDecompositionTag(static_cast<WCHAR>(c)), 0);
}

TEST(UnicodeProperties, MirroredCharactersAndPartners) {
    EXPECT_EQ(GetBidiMirroredChar(0x0028), 0x0029);
    EXPECT_EQ(GetBidiMirroredChar(0x0029), 0x0028);
    EXPECT_EQ(GetBidiMirroredChar(0x2215), 0x29F5);
    EXPECT_EQ(GetBidiMirroredChar(0x29F5), 0x2215);
    EXPECT_EQ(GetBidiMirroredChar(0xFF62), 0xFF63);
    EXPECT_EQ(GetBidiMirroredChar(0xFF63), 0xFF62);
    EXPECT_EQ(BidiMirrored(0x2201), 1);
    EXPECT_EQ(GetBidiMirroredChar(0x2201), 0x2201);
    EXPECT_EQ(BidiMirrored(0x0041), 0);
    EXPECT_EQ(GetBidiMirroredChar(0x0041), 0x0041);

    int mirrored = 0;
    int partnered = 0;
    ForEachUnit([&](WCHAR c) {
        const int flag = BidiMirrored(c);
        ASSERT_TRUE(flag == 0 || flag == 1) << Hex(c);
        const WCHAR partner = GetBidiMirroredChar(c);
        if (!flag) {
            ASSERT_EQ(partner, c) << Hex(c);
            return;
        }
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

// Counts the distinct pages of a table and checks that the index reaches only stored pages.
template <typename Entry, int N>
int DistinctPages(const BYTE (&index)[256], const Entry (&pages)[N][256]) {
    std::set<std::vector<Entry>> distinct;
    for (int p = 0; p < N; ++p) distinct.emplace(pages[p], pages[p] + 256);
    std::set<int> used;
    for (BYTE p : index) {
        EXPECT_LT(p, N);
        used.insert(p);
    }
    EXPECT_EQ(static_cast<int>(used.size()), N) << "a stored page that no index entry uses";
    return static_cast<int>(distinct.size());
}

TEST(UnicodeProperties, TablesSharePages) {
    EXPECT_EQ(DistinctPages(kCategoryIndex, kCategoryPages), 54);
    EXPECT_EQ(DistinctPages(kPropertyIndex, kPropertyPages), 40);
    EXPECT_EQ(DistinctPages(kDecompositionIndex, kDecompositionPages), 37);
    EXPECT_EQ(kCategoryPageCount, 54);
    EXPECT_EQ(kPropertyPageCount, 40);
    EXPECT_EQ(kDecompositionPageCount, 37);
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
std::string FindOnPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream dirs(path ? path : "");
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        if (dir.empty()) continue;
        const std::string candidate = dir + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

TEST(UnicodeProperties, GeneratedSourceMatchesGenerator) {
    const std::string python = FindOnPath("python3");
    if (python.empty()) {
        GTEST_SKIP() << "python3 is not on PATH";
    }
    const std::string source = ZEL_SOURCE_DIR;
    zeltest::TempDir out;
    const std::string generator = source + "/tools/gen_unicode_properties.py";
    const auto run = zeltest::RunProgram(python, {generator, "--output", out.path()});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* name : {"unicode_property_tables.h", "unicode_property_tables.cpp"}) {
        const std::string fresh = zeltest::ReadFile(out.file(name));
        ASSERT_FALSE(fresh.empty()) << name;
        EXPECT_TRUE(fresh == zeltest::ReadFile(source + "/src/bidi/" + name))
            << "src/bidi/" << name << " differs from the generator's output; run the generator";
    }
}

}  // namespace
