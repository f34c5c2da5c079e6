// Hangul: the KS lists, the Jamo numberings, decomposition and composition, old Hangul through the
// "pua" records, and the KS and private-use Jamo forms.
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "codetables/hangul.h"
#include "table_path_fixture.h"

namespace {

struct Indexes {
    int i, m, f;
    bool operator==(const Indexes& o) const { return i == o.i && m == o.m && f == o.f; }
};
std::ostream& operator<<(std::ostream& os, const Indexes& x) {
    return os << std::hex << "(" << x.i << ", " << x.m << ", " << x.f << ")";
}

Indexes Decompose(UINT u, Indexes start = {-1, -1, -1}) {
    DecomposeHangul(u, &start.i, &start.m, &start.f);
    return start;
}
Indexes DecomposeS(UINT u, Indexes start = {-1, -1, -1}) {
    DecomposeToSUni(u, &start.i, &start.m, &start.f);
    return start;
}

std::u16string Multi() { return GetMultiCode(); }

// The Johab code of a modern syllable, from its Unicode indexes: the five-bit fields of Johab
// skip some values, which the tables below account for.
unsigned JohabOf(int i, int m, int f) {
    static const int medial[] = {3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15, 18, 19, 20, 21, 22, 23, 26, 27, 28, 29};
    const int final = f == 0 ? 1 : (f <= 16 ? f + 1 : f + 2);
    return 0x8000u | unsigned(i + 2) << 10 | unsigned(medial[m - 1]) << 5 | unsigned(final);
}

TEST(HangulKs, TableHoldsTheKsSyllablesInOrder) {
    const WORD* table = ZelGetKSTblPtr();
    EXPECT_EQ(0x8861, table[0]);
    EXPECT_EQ(0xD3B7, table[kZelKsCount - 1]);
    // The generated list must be exactly the Johab codes of a set of syllables, ascending.
    std::set<unsigned> johab;
    for (int s = 0; s < 11172; ++s) johab.insert(JohabOf(s / 588, s % 588 / 28 + 1, s % 28));
    for (int k = 0; k < kZelKsCount; ++k) {
        EXPECT_TRUE(johab.count(table[k])) << std::hex << table[k];
        if (k > 0) {
            EXPECT_LT(table[k - 1], table[k]);
        }
    }
    EXPECT_EQ(JohabOf(0, 1, 0), table[0]);      // 가
    EXPECT_EQ(JohabOf(18, 21, 21), table[kZelKsCount - 1]);  // 힝: 힣 is not in the list
}

// The committed list is what the generator makes of the system's iconv.
TEST(HangulKs, GeneratedSourceMatchesGenerator) {
#ifdef _WIN32
    GTEST_SKIP() << "a check of the source tree against its generator, made where the generators run";
#endif
    const std::string source = ZEL_SOURCE_DIR;
    zeltest::TempDir out;
    const auto run = zeltest::RunProgram(
        "/usr/bin/env", {"python3", source + "/tools/gen_ks_syllables.py", "--output", out.file("ks.cpp")});
    if (run.status == 127) GTEST_SKIP() << "python3 is not on PATH";
    ASSERT_EQ(0, run.status) << run.err;
    const std::string committed = zeltest::ReadFile(source + "/src/codetables/hangul_ks_table.cpp");
    EXPECT_TRUE(zeltest::ReadFile(out.file("ks.cpp")) == committed)
        << "src/codetables/hangul_ks_table.cpp differs from the generator's output; run the generator";
}

TEST(HangulKs, SearchesAndMembership) {
    for (int k = 0; k < kZelKsCount; ++k) ASSERT_EQ(k, KsSearch(KsTbl[k]));
    EXPECT_EQ(1, IsInKs(0x8861));
    EXPECT_EQ(1, IsInKs(0xD3C5));  // the last Jamo code counts, though not a syllable
    EXPECT_EQ(0, IsInKs(0xD3C1));
    EXPECT_EQ(0, IsInKs(0x8863));
    // A miss still gives a valid position, at both ends too.
    for (WORD code : {WORD(0), WORD(0x8863), WORD(0xFFFF)}) {
        const int position = KsSearch(code);
        EXPECT_GE(position, 0);
        EXPECT_LT(position, kZelKsCount);
    }

    EXPECT_EQ(0, JasoSearch(0x8461));
    EXPECT_EQ(41, JasoSearch(0xD3C5));
    EXPECT_EQ(21, JasoSearch(0x8841));
    EXPECT_EQ(-1, JasoSearch(0x8861));
    EXPECT_EQ(-1, JasoSearch(0));
    EXPECT_EQ(-1, JasoSearch(0xFFFF));
}

TEST(HangulIndex, NumberingsAreInversesWithDefaults) {
    const int counts[3] = {91, 67, 83};
    for (int column = 0; column < 3; ++column) {
        int both = 0;
        for (int s = 0; s < 160; ++s) {
            if (SUni2UniTbl[s][column] == 0xFFFF) continue;
            ++both;
            EXPECT_EQ(s, Uni2SUni_JamoIndex(SUni2Uni_JamoIndex(s, column), column)) << column << " " << s;
        }
        EXPECT_EQ(counts[column], both);
    }
    // None, out of range and a bad column give the defaults.
    EXPECT_EQ(0x5F, SUni2Uni_JamoIndex(3, 0));
    EXPECT_EQ(0x5F, SUni2Uni_JamoIndex(160, 0));
    EXPECT_EQ(0x5F, SUni2Uni_JamoIndex(-1, 0));
    EXPECT_EQ(0, SUni2Uni_JamoIndex(200, 2));
    EXPECT_EQ(0, SUni2Uni_JamoIndex(1, 3));
    EXPECT_EQ(0, Uni2SUni_JamoIndex(0x5A, 0));
    EXPECT_EQ(0, Uni2SUni_JamoIndex(96, 1));
    EXPECT_EQ(0, Uni2SUni_JamoIndex(-5, 2));
    EXPECT_EQ(0, Uni2SUni_JamoIndex(1, -1));
    EXPECT_EQ(0, Uni2SUni_JamoIndex(0x5F, 0));  // the filler is index 0
}

TEST(HangulDecompose, EveryForm) {
    EXPECT_EQ((Indexes{0, 1, 0}), Decompose(0xAC00));
    EXPECT_EQ((Indexes{18, 21, 27}), Decompose(0xD7A3));
    EXPECT_EQ((Indexes{0x12, 1, 4}), Decompose(0xD55C));  // 한
    // Conjoining: one column set, fillers elsewhere; the gaps of the block give all fillers.
    EXPECT_EQ((Indexes{0x59, 0, 0}), Decompose(0x1159));
    EXPECT_EQ((Indexes{0x5F, 0x42, 0}), Decompose(0x11A2));
    EXPECT_EQ((Indexes{0x5F, 0, 0x52}), Decompose(0x11F9));
    EXPECT_EQ((Indexes{0x5F, 0, 0}), Decompose(0x1160));
    EXPECT_EQ((Indexes{0x5F, 0, 0}), Decompose(0x11FF));
    // Compatibility: the initial wins over the final for a consonant.
    EXPECT_EQ((Indexes{0, 0, 0}), Decompose(0x3131));
    EXPECT_EQ((Indexes{0x5F, 1, 0}), Decompose(0x314F));
    EXPECT_EQ((Indexes{0x5F, 0, 3}), Decompose(0x3133));  // ㄳ is only a final
    EXPECT_EQ((Indexes{0x5F, 0, 0}), Decompose(0x3130));
    // Private-use Jamo through the SUni numbering.
    EXPECT_EQ((Indexes{0, 0, 0}), Decompose(0xF785));
    EXPECT_EQ((Indexes{0x5F, 0, 0}), Decompose(0xF787));  // SUni initial 3 has no Uni index
    EXPECT_EQ((Indexes{0x5F, 1, 0}), Decompose(0xF807));
    EXPECT_EQ((Indexes{0x5F, 0, 1}), Decompose(0xF86B));
    // Outside every form, the caller's values stay.
    EXPECT_EQ((Indexes{-1, -1, -1}), Decompose(0x41));
    EXPECT_EQ((Indexes{-1, -1, -1}), Decompose(0xD7A4));
    EXPECT_EQ((Indexes{-1, -1, -1}), Decompose(0xF783));
    EXPECT_EQ((Indexes{-1, -1, -1}), Decompose(0x1AC00));
    EXPECT_EQ((Indexes{-1, -1, -1}), Decompose(0xF050));  // the hole of the composed range

    EXPECT_EQ((Indexes{1, 1, 0}), DecomposeS(0xAC00));
    EXPECT_EQ((Indexes{0, 0, 0}), DecomposeS(0x3130));
    EXPECT_EQ((Indexes{-1, 1, -1}), DecomposeS(0xF807));  // only its own column
    EXPECT_EQ((Indexes{-1, -1, 0x95}), DecomposeS(0xF8FF));
}

TEST(HangulCompose, ModernSyllablesAndSingleJamo) {
    ZelSetMultiMode(0);
    int split = -1;
    for (UINT u = 0xAC00; u <= 0xD7A3; ++u) {
        const Indexes x = Decompose(u);
        ASSERT_EQ(u, ComposeHangul(x.i, x.m, x.f, &split));
    }
    EXPECT_EQ(0, split);
    EXPECT_EQ(0x3131, ComposeHangul(0, 0, 0, nullptr));  // compatibility form, not U+1100
    EXPECT_EQ(0x314E, ComposeHangul(0x12, 0, 0, nullptr));
    EXPECT_EQ(0x314F, ComposeHangul(0x5F, 1, 0, nullptr));
    EXPECT_EQ(0x3131, ComposeHangul(0x5F, 0, 1, nullptr));
    EXPECT_EQ(0x3133, ComposeHangul(0x5F, 0, 3, nullptr));
    EXPECT_EQ(0xFFFD, ComposeHangul(0x5F, 0, 0, nullptr));
    EXPECT_EQ(0xFFFD, ComposeHangul(0, 0, 1, nullptr));
    EXPECT_EQ(0xFFFD, ComposeHangul(-1, 1, 0, nullptr));
    EXPECT_EQ(0xFFFD, ComposeHangul(0x13, 1, 0, &split));
    EXPECT_EQ(0, split);

    // Multi mode: the last modern Jamo stands alone, conjoining, with the split flag.
    ZelSetMultiMode(5);
    EXPECT_EQ(1, ZelMultiMode());
    EXPECT_EQ(0x1161, ComposeHangul(0x13, 1, 0, &split));
    EXPECT_EQ(1, split);
    EXPECT_EQ(0x11A8, ComposeHangul(0, 0x16, 1, &split));
    EXPECT_EQ(0x1100, ComposeHangul(0, 0x16, 0, &split));
    EXPECT_EQ(1, split);
    EXPECT_EQ(0xFFFD, ComposeHangul(0x13, 0x16, 0x1C, &split));
    EXPECT_EQ(0, split);
    EXPECT_EQ(0xAC00, ComposeHangul(0, 1, 0, &split));  // rules 1 to 4 are unchanged
    ZelSetMultiMode(0);
}

TEST(HangulCompose, OldHangulAndTheMultiCodeBuffer) {
    ZelSetMultiMode(0);
    EXPECT_EQ(0, ComposeOldHangul(0, 0, 0));  // the empty key
    EXPECT_EQ(0x3165, ComposeOldHangul(6, 0, 0));  // old initial 0x14 has a compatibility form
    EXPECT_EQ(0x1113, ComposeOldHangul(5, 0, 0));  // 0x13 has none
    EXPECT_EQ(0xFFFE, ComposeOldHangul(3, 0, 0));
    EXPECT_EQ(u"\uF787\uF806\uF86A", Multi());  // a lone Jamo without Uni index stays a sequence
    EXPECT_EQ(0xFFFE, ComposeOldHangul(0, 0, 3));
    EXPECT_EQ(u"\uF784\uF806\uF86D", Multi());
    // Without "pua" records, a full old sequence has no code point.
    EXPECT_EQ(0xFFFE, ComposeOldHangul(5, 1, 0));
    EXPECT_EQ(u"\uF789\uF807\uF86A", Multi());
    EXPECT_EQ(0xFFFE, ComposeOldHangul(200, 0, 0));
    EXPECT_EQ(0xFFFE, IndexesToMultiCode(0x12, 1, 4));
    EXPECT_EQ(u"\uF7FC\uF807\uF875", Multi());

    int split = -1;
    EXPECT_EQ(0xD55C, MultiCodeToUnicode(&split));  // 한 from its private-use Jamo
    WCHAR* buffer = GetMultiCode();
    buffer[0] = 0xF807;  // any order; a later unit of a column replaces an earlier one
    buffer[1] = 0xF785;
    buffer[2] = 0xF80B;
    EXPECT_EQ(0xAC1C, MultiCodeToUnicode(&split));  // 개
    buffer[2] = 0x1100;
    EXPECT_EQ(0xFFFD, MultiCodeToUnicode(&split));
    buffer[0] = 0xF789;  // old initial with a modern medial: no syllable, back into the buffer
    buffer[1] = 0xF807;
    buffer[2] = 0xF86A;
    EXPECT_EQ(0xFFFE, MultiCodeToUnicode(&split));
    EXPECT_EQ(u"\uF789\uF807\uF86A", Multi());
    buffer[0] = 0xF787;  // an initial without a conjoining Jamo skips the modern composition
    buffer[1] = 0xF806;
    EXPECT_EQ(0xFFFE, MultiCodeToUnicode(&split));
}

TEST(HangulCompose, BufferAndModeArePerThread) {
    IndexesToMultiCode(0, 1, 0);
    ZelSetMultiMode(1);
    std::u16string other;
    int otherMode = -1;
    std::thread([&] {
        otherMode = ZelMultiMode();
        other = Multi();
        IndexesToMultiCode(0x12, 1, 4);
    }).join();
    EXPECT_EQ(0, otherMode);
    EXPECT_EQ(u"", other);
    EXPECT_EQ(u"\uF785\uF807\uF86A", Multi());
    ZelSetMultiMode(0);
}

TEST(HangulJaso, KsAndPrivateUseForms) {
    WCHAR out[8];
    EXPECT_EQ(1, UniHangul2UniKSJaso(0xAC00, out, 8));
    EXPECT_EQ(u"\u3131\u314F\u3164", std::u16string(out));
    EXPECT_EQ(1, UniHangul2UniKSJaso(0xD55C, out, 8));
    EXPECT_EQ(u"\u314E\u314F\u3134", std::u16string(out));
    EXPECT_EQ(1, UniHangul2UniKSJaso(0x41, out, 8));  // start values 0, 0, 0
    EXPECT_EQ(u"\u3131\u3164\u3164", std::u16string(out));
    EXPECT_EQ(1, UniHangul2UniKSJaso(0x314F, out, 8));
    EXPECT_EQ(u"\u3164\u314F\u3164", std::u16string(out));
    EXPECT_EQ(0, UniHangul2UniKSJaso(0x1112 + 1, out, 8));  // old initial: no KS form, stops at once
    EXPECT_EQ(u"", std::u16string(out));
    EXPECT_EQ(0, UniHangul2UniKSJaso(0xAC00, out, 3));
    EXPECT_EQ(u"\u3131\u314F", std::u16string(out));
    out[0] = 0x55;
    EXPECT_EQ(0, UniHangul2UniKSJaso(0xAC00, out, 1));
    EXPECT_EQ(0, out[0]);
    EXPECT_EQ(0, UniHangul2UniKSJaso(0xAC00, out, 0));
    EXPECT_EQ(0, UniHangul2UniKSJaso(0xAC00, nullptr, 8));

    EXPECT_EQ(1, UniHangul2UniPUAJaso(0xAC00, out, 8));
    EXPECT_EQ(u"\uF785\uF807\uF86A", std::u16string(out));
    EXPECT_EQ(1, UniHangul2UniPUAJaso(0x41, out, 8));
    EXPECT_EQ(u"\uF784\uF806\uF86A", std::u16string(out));
    EXPECT_EQ(0, UniHangul2UniPUAJaso(0xAC00, out, 2));
    EXPECT_EQ(u"\uF785", std::u16string(out));

    const WCHAR ga[] = {0x3131, 0x314F, 0};
    EXPECT_EQ(0xAC00, UniKSJaso2UniHangul(ga));
    const WCHAR han[] = {0x314E, 0x314F, 0x3134};
    EXPECT_EQ(0xD55C, UniKSJaso2UniHangul(han));
    const WCHAR lone[] = {0x3131, 0, 0};
    EXPECT_EQ(0x3131, UniKSJaso2UniHangul(lone));
    const WCHAR old[] = {0x3165, 0, 0};
    EXPECT_EQ(0x3165, UniKSJaso2UniHangul(old));  // old Jamo round trip through SUni
    // Units outside the block read entry 0: an empty sequence, which is the empty old key.
    const WCHAR junk[] = {0x41, 0x42, 0x43};
    EXPECT_EQ(0, UniKSJaso2UniHangul(junk));
    EXPECT_EQ(0xFFFD, UniKSJaso2UniHangul(nullptr));
    // KS form and back for every syllable.
    for (UINT u = 0xAC00; u <= 0xD7A3; ++u) {
        ASSERT_EQ(1, UniHangul2UniKSJaso(u, out, 8));
        if (out[2] == 0x3164) out[2] = 0;
        ASSERT_EQ(u, UniKSJaso2UniHangul(out));
    }
}

// The "pua" records of composed old Hangul: two sorted runs of keys, searched by bisection.
class HangulPuaTest : public TablePathFixture {
protected:
    static constexpr int kFirstLow = 188, kFirstHigh = 4095, kSecondLow = 4352, kSecondHigh = 5742;

    static Indexes RecordJamo(int record) {
        if (record <= kFirstHigh) {
            const int k = record - kFirstLow;
            return {2 + k / 99, 1 + k % 99, 0};
        }
        const int k = record - kSecondLow;
        return {0x64 + k / 99, 1 + k % 99, 5};
    }

    void WriteMainTables() {
        std::vector<uint16_t> pua(25600, 0);
        for (int r = 0; r < 6400; ++r) pua[r * 4] = 0x3441;
        for (int r = kFirstLow; r <= kSecondHigh; ++r) {
            if (r > kFirstHigh && r < kSecondLow) continue;
            const Indexes x = RecordJamo(r);
            pua[r * 4 + 1] = uint16_t(x.i);
            pua[r * 4 + 2] = uint16_t(x.m);
            pua[r * 4 + 3] = uint16_t(x.f);
        }
        Write("gen", std::vector<uint16_t>(16384, 0x3441), 16384);
        Write("com", std::vector<uint16_t>(3328, 0x3441), 3328);
        Write("pua", pua, 6400);
        Write("cjk", std::vector<uint16_t>(28416, 0x3441), 28416);
    }

private:
    void Write(const std::string& kind, const std::vector<uint16_t>& elements, size_t count) {
        WCHAR code[MAX_PATH];
        ZelPathToAbsolute(u"${Common}\\Code", code);
        const std::string dir = ZelPlatformPathToSystem(code);
        ASSERT_TRUE(zeltables::WriteFile(zeltables::FileName(dir, 320, kind), zeltables::Header{}, count,
                                         zeltables::Payload16(elements)));
    }
};

TEST_F(HangulPuaTest, WithoutRecordsNothingIsFound) {
    EXPECT_EQ(0xFFFD, SortedPuaSearch(2, 1, 0));
    EXPECT_EQ((Indexes{0x5F, 0, 0}), Decompose(0xE0BC));
    EXPECT_EQ((Indexes{0, 0, 0}), DecomposeS(0xE0BC));
}

TEST_F(HangulPuaTest, RecordsComposeAndDecompose) {
    WriteMainTables();
    ASSERT_EQ(kZelTableReady, LoadUnicodeTbl());
    for (int r = kFirstLow; r <= kSecondHigh; ++r) {
        if (r > kFirstHigh && r < kSecondLow) continue;
        const Indexes x = RecordJamo(r);
        ASSERT_EQ(0xE000 + r, SortedPuaSearch(x.i, x.m, x.f)) << r;
    }
    EXPECT_EQ(0xFFFD, SortedPuaSearch(2, 1, 1));
    EXPECT_EQ(0xFFFD, SortedPuaSearch(1, 1, 0));     // below the first key
    EXPECT_EQ(0xFFFD, SortedPuaSearch(0x7F, 1, 5));  // beyond the last key
    EXPECT_EQ(0, SortedPuaSearch(0, 0, 0));

    // U+E0BC is record 188: SUni 2, 1, 0.
    EXPECT_EQ((Indexes{2, 1, 0}), DecomposeS(0xE0BC));
    EXPECT_EQ((Indexes{SUni2Uni_JamoIndex(2, 0), 1, 0}), Decompose(0xE0BC));
    EXPECT_EQ(0xE0BC, ComposeOldHangul(2, 1, 0));
    WCHAR out[4];
    EXPECT_EQ(1, UniHangul2UniPUAJaso(0xE0BC, out, 4));
    EXPECT_EQ(u"\uF786\uF807\uF86A", std::u16string(out));
    // Through the buffer: old initial, modern medial, no syllable of its own.
    WCHAR* buffer = GetMultiCode();
    const Indexes x = RecordJamo(kSecondLow + 7);
    buffer[0] = WCHAR(0xF784 + x.i);
    buffer[1] = WCHAR(0xF806 + x.m);
    buffer[2] = WCHAR(0xF86A + x.f);
    int split = 0;
    EXPECT_EQ(0xE000 + kSecondLow + 7, MultiCodeToUnicode(&split));
    // Records in U+F000 to U+F0FF are not composed syllables.
    EXPECT_EQ((Indexes{-1, -1, -1}), DecomposeS(0xF000 + 0x10));
}

TEST(HangulJamoCommand, SplitsAndJoins) {
    auto run = [](const std::vector<std::string>& args, const std::string& input = {}) {
        return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {}, input);
    };
    EXPECT_EQ("\u314E\u314F\u3134\u3131\u3161\u3139 x\n", run({"jamo", "ks", "\uD55C\uAE00 x"}).out);
    EXPECT_EQ("U+F7FC U+F807 U+F875\n", run({"jamo", "pua", "--codes", "-"}, "\uD55C\n").out);
    // Greedy grouping: a consonant before a vowel opens the next syllable.
    EXPECT_EQ("\uAC00\uBC14\uD55C\n", run({"jamo", "join", "\u3131\u314F\u3142\u314F\u314E\u314F\u3134"}).out);
    EXPECT_EQ("\u3131 \u314F\n", run({"jamo", "join", "\u3131 \u314F"}).out);
    EXPECT_EQ(2, run({"jamo"}).status);
    EXPECT_EQ(2, run({"jamo", "mix", "x"}).status);
    EXPECT_EQ(0, run({"jamo", "--help"}).status);
}

}  // namespace
