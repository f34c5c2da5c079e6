// Sort keys of Hangul: the key of each form, the order they give, the way back from a key, and
// the text calls with their bounds.
#include <gtest/gtest.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "codetables/sort_index.h"
#include "codetables/table_path_fixture.h"
#include "platform/win32.h"
#include "support/support.h"

namespace {

constexpr DWORD kNoKey = 0xFFFFFFFF;

DWORD Key(DWORD u) { return DWORD(ZelUnicodeToSortIndexBase(0, u)); }
DWORD KeyOf(int initial, int medial, int final) {
    return 0x01000000u | DWORD(initial) << 16 | DWORD(medial) << 8 | DWORD(final);
}

// A private ${Common} with the main group. Three old Hangul syllables get "pua" records: U+E0BC,
// U+E0BD and U+E0BE with an initial that has no conjoining Jamo, so that only the records can
// compose them. The rest of records 188 to 4095 keeps the order the search needs.
class SortIndexTest : public TablePathFixture {
protected:
    static constexpr int kOldInitial = 3;  // SUni initial without a conjoining Jamo

    void WriteMain() {
        std::vector<uint16_t> pua(25600, 0);
        for (size_t i = 0; i < pua.size(); i += 4) pua[i] = 0x3441;
        auto record = [&](size_t index, int initial, int medial, int final) {
            pua[index * 4 + 1] = uint16_t(initial);
            pua[index * 4 + 2] = uint16_t(medial);
            pua[index * 4 + 3] = uint16_t(final);
        };
        record(188, kOldInitial, 1, 0);
        record(189, kOldInitial, 1, 1);
        record(190, kOldInitial, 5, 0);
        for (size_t i = 191; i <= 4095; ++i) record(i, 0x60, 0x30, 0x00);
        for (size_t i = 4352; i <= 5742; ++i) record(i, 0x70, 0x10, 0x00);
        WriteMainGroup(pua);
    }
    void LoadTables() {
        WriteMain();
        ASSERT_EQ(2, LoadUnicodeTbl());
    }

};

TEST(SortIndexBase, KeysOfTheHangulForms) {
    EXPECT_EQ(0x01010100u, Key(0xAC00));
    EXPECT_EQ(KeyOf(0x78, 0x49, 0x88), Key(0xD7A3));
    EXPECT_EQ(0x01010000u, Key(0x1100));
    EXPECT_EQ(0x01010000u, Key(0x3131)) << "the compatibility form sorts with its conjoining Jamo";
    EXPECT_EQ(0x01000100u, Key(0x314F));
    EXPECT_EQ(0x01000000u, Key(0x1160));
    EXPECT_EQ(0x01000001u, Key(0x11A8));
    EXPECT_EQ(0x01010100u, Key(0x2AC00)) << "only the low 16 bits count";

    // The private-use Jamo are their own SUni indexes.
    EXPECT_EQ(0x01000000u, Key(0xF784));
    EXPECT_EQ(0x01810000u, Key(0xF805));
    EXPECT_EQ(0x01006300u, Key(0xF869));
    EXPECT_EQ(0x01000095u, Key(0xF8FF));
    // Without the "pua" records an old syllable has no Jamo; the rest of the area has no key part.
    EXPECT_EQ(0x01000000u, Key(0xE0BC));
    EXPECT_EQ(0x01FFFFFFu, Key(0xE000));
    EXPECT_EQ(0x01FFFFFFu, Key(0xF000));
    EXPECT_EQ(0x01FFFFFFu, Key(0xF66F));

    for (DWORD u : {0x0041u, 0x10FFu, 0x1200u, 0x3190u, 0x3400u, 0x4E00u, 0xA000u, 0xA700u, 0xABFFu, 0xD7A4u,
                    0xF900u, 0xFFFDu})
        EXPECT_EQ(kNoKey, Key(u)) << std::hex << u;
}

TEST(SortIndexBase, ModernSyllablesSortInCodeOrder) {
    for (DWORD u = 0xAC00; u < 0xD7A3; ++u) ASSERT_LT(Key(u), Key(u + 1)) << std::hex << u;
    // A lone initial comes before the syllables that begin with it, and after those of the one before.
    EXPECT_LT(Key(0x1101), Key(0xAE4C));
    EXPECT_GT(Key(0x1101), Key(0xAE4B));
}

TEST(SortIndexBase, BackFromAKey) {
    EXPECT_EQ(0xFFFD, ZelSortIndexToUnicodeBase(0, 0x02010100));
    EXPECT_EQ(0xFFFD, ZelSortIndexToUnicodeBase(0, kNoKey));
    EXPECT_EQ(0, ZelSortIndexToUnicodeBase(0, 0x01000000)) << "the empty key";
    EXPECT_EQ(0xAC00, ZelSortIndexToUnicodeBase(0, 0x01010100));
    EXPECT_EQ(0xD7A3, ZelSortIndexToUnicodeBase(0, KeyOf(0x78, 0x49, 0x88)));
    EXPECT_EQ(0x3131, ZelSortIndexToUnicodeBase(0, 0x01010000)) << "a modern Jamo in its compatibility form";
    // A medial beyond its range names no private-use Jamo.
    EXPECT_EQ(0xFFFD, ZelSortIndexToUnicodeBase(0, 0x0100FF00));
    EXPECT_EQ(0xFFFD, ZelSortIndexToUnicodeBase(0, 0x01FFFFFF));

    // Without the records an old syllable is a sequence, left in the multi-code buffer.
    EXPECT_EQ(0xFFFE, ZelSortIndexToUnicodeBase(0, KeyOf(3, 1, 0)));
    const WCHAR* multi = GetMultiCode();
    EXPECT_EQ(std::u16string(u"\xF787\xF807\xF86A"), std::u16string(multi));
}

TEST_F(SortIndexTest, OldSyllablesComeBackByTheirRecords) {
    LoadTables();
    EXPECT_EQ(KeyOf(kOldInitial, 1, 0), Key(0xE0BC));
    EXPECT_EQ(KeyOf(kOldInitial, 5, 0), Key(0xE0BE));
    EXPECT_EQ(0xE0BC, ZelSortIndexToUnicodeBase(0, KeyOf(kOldInitial, 1, 0)));
    EXPECT_EQ(0xE0BD, ZelSortIndexToUnicodeBase(0, KeyOf(kOldInitial, 1, 1)));
    EXPECT_EQ(0xE0BE, ZelSortIndexToUnicodeBase(0, KeyOf(kOldInitial, 5, 0)));
    EXPECT_EQ(0xFFFE, ZelSortIndexToUnicodeBase(0, KeyOf(kOldInitial, 5, 1)));
    EXPECT_LT(Key(0xE0BD), Key(0xE0BE)) << "an old syllable sorts by its Jamo";
}

// Every character with a key of its own comes back to a character of the same key, or to a
// sequence of the same Jamo; the modern syllables come back as themselves.
TEST_F(SortIndexTest, KeysRoundTripForEveryHangulCharacter) {
    LoadTables();
    int checked = 0;
    for (DWORD u = 0; u <= 0xFFFF; ++u) {
        const DWORD key = Key(u);
        if (key == kNoKey || key == 0x01000000 || key == 0x01FFFFFF) continue;
        ASSERT_EQ(0x01u, key >> 24) << std::hex << u;
        const WCHAR back = ZelSortIndexToUnicodeBase(0, key);
        if (u >= 0xAC00 && u <= 0xD7A3) {
            ASSERT_EQ(u, back) << std::hex << u;
        }
        if (back == 0xFFFE) {
            const WCHAR* multi = GetMultiCode();
            ASSERT_EQ(KeyOf(multi[0] - 0xF784, multi[1] - 0xF806, multi[2] - 0xF86A), key) << std::hex << u;
            ASSERT_EQ(0, multi[3]);
        } else if (Key(back) != key) {
            // A lone Jamo comes back in its compatibility form, which can't tell an initial from a
            // final: that form is then a fixed point of its own key.
            ASSERT_TRUE(back >= 0x3131 && back <= 0x318E) << std::hex << u << " came back as " << int(back);
            ASSERT_EQ(back, ZelSortIndexToUnicodeBase(0, Key(back))) << std::hex << u;
        }
        ++checked;
    }
    EXPECT_GT(checked, 11172 + 380);
}

TEST_F(SortIndexTest, TextCalls) {
    DWORD keys[8] = {};
    // No tables: nothing is written.
    EXPECT_EQ(0, ZelUnicodeToSortIndex(0, u"\uAC00", -1, keys, 8));
    EXPECT_EQ(0u, keys[0]);
    ZelResetCodeTablesForTest();
    LoadTables();

    // Up to size - 1 keys, no terminator written; the length argument is not read.
    std::fill(std::begin(keys), std::end(keys), 0x7777u);
    EXPECT_EQ(3, ZelUnicodeToSortIndex(0, u"\uAC00A\u1100\uAC01", 99, keys, 4));
    EXPECT_EQ(0x01010100u, keys[0]);
    EXPECT_EQ(kNoKey, keys[1]);
    EXPECT_EQ(0x01010000u, keys[2]);
    EXPECT_EQ(0x7777u, keys[3]);
    EXPECT_EQ(1, ZelUnicodeToSortIndex(0, u"\uAC00", 8, keys, 8));
    EXPECT_EQ(0, ZelUnicodeToSortIndex(0, u"\uAC00", -1, keys, 1));
    EXPECT_EQ(0, ZelUnicodeToSortIndex(0, nullptr, -1, keys, 8));

    // Back: up to a key 0 or size - 1 units.
    const DWORD in[] = {0x01010100, 0x02000000, KeyOf(kOldInitial, 1, 1), 0x01010000, 0, 0x01010100};
    WCHAR text[8];
    std::fill(std::begin(text), std::end(text), u'\x7777');
    ASSERT_EQ(4, ZelSortIndexToUnicode(0, in, 1, text, 8));
    EXPECT_EQ(std::u16string(u"\uAC00\uFFFD\uE0BD\u3131\x7777"), std::u16string(text, 5));
    EXPECT_EQ(2, ZelSortIndexToUnicode(0, in, -1, text, 3));
    EXPECT_EQ(0, ZelSortIndexToUnicode(0, in, -1, text, 1));
}

// The text call reads modern syllables from tables and everything else one character at a time:
// it must give what the plain walk gives, for every unit, in random texts of all the Hangul forms
// and their neighbours, cut by every kind of size, with and without the "pua" records.
TEST_F(SortIndexTest, TextCallGivesThePlainWalksKeys) {
    auto same = [](const std::u16string& text, int size) {
        std::vector<DWORD> fast(size_t(std::max(size, 0)) + 1, 0x5A5A5A5A), plain = fast;
        const int count = ZelUnicodeToSortIndex(0, text.c_str(), -1, fast.data(), size);
        ASSERT_EQ(ZelUnicodeToSortIndexReference(0, text.c_str(), plain.data(), size), count) << size;
        ASSERT_EQ(plain, fast) << size;
    };
    std::u16string every;
    for (DWORD u = 1; u <= 0xFFFF; ++u) every.push_back(char16_t(u));
    same(every, int(every.size()) + 1);

    const std::pair<DWORD, DWORD> ranges[] = {{0x0001, 0x10FF}, {0x1100, 0x11FF}, {0x3130, 0x318F},
                                              {0xABF0, 0xAC10}, {0xAC00, 0xD7A3}, {0xD790, 0xD7B0},
                                              {0xE000, 0xF8FF}, {0x0001, 0xFFFF}};
    std::mt19937 random(0x5027);
    auto check = [&] {
        for (int round = 0; round < 2000; ++round) {
            std::u16string text;
            const size_t length = random() % 40;
            for (size_t i = 0; i < length; ++i) {
                const auto [first, last] = ranges[random() % std::size(ranges)];
                text.push_back(char16_t(first + random() % (last - first + 1)));
            }
            if (length && random() % 8 == 0) text[random() % length] = 0;
            same(text, int(random() % 48) - 2);
        }
    };
    check();  // no tables: both give nothing
    ZelResetCodeTablesForTest();
    LoadTables();
    same(every, int(every.size()) + 1);
    check();
}

}  // namespace

namespace {

TEST(SortKeyCommand, ListsAndSorts) {
    auto run = [](const std::vector<std::string>& args, const std::string& input = {}) {
        return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {}, input);
    };
    EXPECT_EQ("\uAC00 U+AC00 01010100\nA U+0041 -\n\u1100 U+1100 01010000\n", run({"sortkey", "\uAC00A\u1100"}).out);
    // A lone initial before its syllables, and text without keys after all Hangul.
    const auto sorted = run({"sortkey", "--sort"}, "\uB098\nabc\n\uAC00\uB098\n\u1100\n\uAC00\r\n");
    EXPECT_EQ(0, sorted.status);
    EXPECT_EQ("\u1100\n\uAC00\n\uAC00\uB098\n\uB098\nabc\n", sorted.out);
    EXPECT_EQ(2, run({"sortkey", "--bogus"}).status);
    EXPECT_EQ(2, run({"sortkey", "--sort", "a", "b"}).status);
}

}  // namespace
