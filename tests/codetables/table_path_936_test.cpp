// Code page 936: the runs of four-byte codes, the place of every code point in them, and the
// four-byte sequences through a table with its markers.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <cstring>
#include <string>

#include "codetables/codepage_table_path.h"
#include "codetables/gb_four_byte_runs.h"
#include "codetables/table_path_fixture.h"

namespace {

using Wide = std::u16string;

std::string Bytes(DWORD place) {
    BYTE bytes[4];
    Zel936FourBytesOfPlace(place, bytes);
    return std::string(reinterpret_cast<const char*>(bytes), 4);
}

Wide Decode(const std::string& bytes) {
    WCHAR units[2];
    const auto b = [&](int i) { return BYTE(bytes[size_t(i)]); };
    return Wide(units, units + Zel936FourBytesToUnicode(b(0), b(1), b(2), b(3), units));
}

TEST(TablePath936Runs, EveryCodePointOfTheRunsHasTheNextPlace) {
    long expected = 0;
    for (const ZelFourByteRun& run : kZelFourByteRuns) {
        ASSERT_EQ(run.count, run.last - run.first + 1);
        if (run.first == kZelSurrogateRunFirst) continue;
        for (DWORD u = run.first; u <= run.last; ++u, ++expected) {
            ASSERT_EQ(expected, Zel936FourBytePlaceOf(WCHAR(u))) << std::hex << u;
            ASSERT_EQ(Wide(1, char16_t(u)), Decode(Bytes(DWORD(expected)))) << std::hex << u;
        }
    }
    // L runs from 0 for U+0080 to 39419 for U+FFFF.
    EXPECT_EQ(39420, expected);
    EXPECT_EQ(0, Zel936FourBytePlaceOf(0x0080));
    EXPECT_EQ(36, Zel936FourBytePlaceOf(0x00A5));
    EXPECT_EQ(33469, Zel936FourBytePlaceOf(0xE76C));
    EXPECT_EQ(38078, Zel936FourBytePlaceOf(0xFA2A));
    EXPECT_EQ(39419, Zel936FourBytePlaceOf(0xFFFF));
    // Outside the runs, and on the surrogates, there is no place.
    EXPECT_EQ(-1, Zel936FourBytePlaceOf(0x00A4));
    EXPECT_EQ(-1, Zel936FourBytePlaceOf(0x4E00));
    EXPECT_EQ(-1, Zel936FourBytePlaceOf(0xD800));
}

TEST(TablePath936Runs, PlacesBeyondTheBasicPlane) {
    for (DWORD c = 0x10000; c <= 0x10FFFF; ++c) {
        const std::string bytes = Bytes(DWORD(Zel936SupplementaryPlaceOf(c)));
        const Wide pair = {char16_t(0xD800 + ((c - 0x10000) >> 10)), char16_t(0xDC00 + (c & 0x3FF))};
        ASSERT_EQ(pair, Decode(bytes)) << std::hex << c;
    }
    EXPECT_EQ("\x90\x30\x81\x30", Bytes(DWORD(Zel936SupplementaryPlaceOf(0x10000))));
    EXPECT_EQ("\xE3\x32\x9A\x35", Bytes(DWORD(Zel936SupplementaryPlaceOf(0x10FFFF))));
    // Past the last plane nothing is mapped; between the basic plane and U+10000 the opener stays.
    EXPECT_EQ(Wide(u"\uFFFD"), Decode("\xE3\x32\x9A\x36"));
    EXPECT_EQ(Wide(u"\uFFFD"), Decode("\xFE\x39\xFE\x39"));
    EXPECT_EQ(Wide(u"\uAC00"), Decode(Bytes(39420)));
    EXPECT_EQ(Wide(u"\uAC00"), Decode("\x8F\x39\xFE\x39"));
}

// The direct tables answer as the walks of the runs do, for every four-byte shape (with bytes
// just outside the ranges too) and every code point.
TEST(TablePath936Runs, DirectTablesAgreeWithTheRuns) {
    for (unsigned b1 = 0x80; b1 <= 0xFF; ++b1)
        for (unsigned b2 = 0x2F; b2 <= 0x3A; ++b2)
            for (unsigned b3 = 0x80; b3 <= 0xFF; ++b3)
                for (unsigned b4 = 0x2F; b4 <= 0x3A; ++b4) {
                    WCHAR direct[2] = {0, 0}, walked[2] = {0, 0};
                    const int n = Zel936FourBytesToUnicode(BYTE(b1), BYTE(b2), BYTE(b3), BYTE(b4), direct);
                    ASSERT_EQ(Zel936FourBytesToUnicodeByRuns(BYTE(b1), BYTE(b2), BYTE(b3), BYTE(b4), walked), n);
                    ASSERT_EQ(Wide(walked, walked + n), Wide(direct, direct + n))
                        << std::hex << b1 << ' ' << b2 << ' ' << b3 << ' ' << b4;
                }
    for (DWORD u = 0; u < 0x10000; ++u) {
        const long place = (u >= 0xD800 && u <= 0xDFFF) ? -1 : Zel936FourBytePlaceOf(WCHAR(u));
        const DWORD code = Zel936FourByteCode(WCHAR(u));
        if (place < 0) {
            ASSERT_EQ(0u, code) << std::hex << u;
            continue;
        }
        const std::string bytes = Bytes(DWORD(place));
        for (int i = 0; i < 4; ++i) ASSERT_EQ(BYTE(bytes[size_t(i)]), BYTE(code >> 8 * i)) << std::hex << u;
    }
}

using TablePath936 = TablePathFixture;

Wide ToWide(const std::string& text, int length, int size = 32) {
    WCHAR buffer[40];
    std::fill(buffer, buffer + 40, u'#');
    const int count = ZelAnsiToUnicode(0, 936, text.c_str(), length, buffer, size, 0);
    EXPECT_EQ(0, buffer[count]);
    EXPECT_EQ(u'#', buffer[size]);
    return Wide(buffer, buffer + count);
}

std::string ToNarrow(const Wide& text, int length, int size = 32) {
    char buffer[40];
    std::memset(buffer, '#', sizeof buffer);
    const int count = ZelUnicodeToAnsi(0, 936, text.c_str(), length, buffer, size, nullptr);
    EXPECT_EQ(0, buffer[count]);
    EXPECT_EQ('#', buffer[size]);
    return std::string(buffer, buffer + count);
}

TEST_F(TablePath936, FourByteSequencesBothWays) {
    WriteTable(936, {{0xB0A1, 0x554A}});
    const struct {
        Wide unicode;
        std::string bytes;
    } cases[] = {
        {u"\u0080", "\x81\x30\x81\x30"},
        {u"\u00A5", "\x81\x30\x84\x36"},
        {u"\uE76C", "\x83\x36\xC7\x39"},
        {u"\uFFFF", "\x84\x31\xA4\x39"},
        {u"\U00010000", "\x90\x30\x81\x30"},
        {u"\U0010FFFF", "\xE3\x32\x9A\x35"},
        {u"A\u554A\u0080B", "A\xB0\xA1\x81\x30\x81\x30" "B"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.bytes, ToNarrow(c.unicode, -1));
        EXPECT_EQ(c.unicode, ToWide(c.bytes, -1));
    }
}

TEST_F(TablePath936, LoneSurrogatesGiveTheMarkerBytes) {
    WriteTable(936, {});
    EXPECT_EQ("\x81\x30", ToNarrow(u"\xDC00", -1));
    EXPECT_EQ("\x81\x30" "A", ToNarrow(u"\xD800" "A", -1));
    // A high surrogate whose low half lies beyond the counted text stands alone.
    EXPECT_EQ("\x81\x30", ToNarrow(u"\xD800\xDC00", 1));
    // A marker in the last byte of room keeps its lead byte, as any double-byte code does.
    EXPECT_EQ("A\x81", ToNarrow(u"A\xDC00", -1, 3));
}

TEST_F(TablePath936, AFourByteCodeOrAPairIsWrittenWholeOrNotAtAll) {
    WriteTable(936, {});
    EXPECT_EQ("A", ToNarrow(u"A\u0080", -1, 5));
    EXPECT_EQ("A\x81\x30\x81\x30", ToNarrow(u"A\u0080", -1, 6));
    EXPECT_EQ("", ToNarrow(u"\U00010000", -1, 4));
    EXPECT_EQ(Wide(u"A"), ToWide("A\x90\x30\x81\x30", -1, 3));
    EXPECT_EQ(Wide(u"A\U00010000"), ToWide("A\x90\x30\x81\x30", -1, 4));
    EXPECT_EQ(Wide(u"A\u0080"), ToWide("A\x81\x30\x81\x30", -1, 3));
}

TEST_F(TablePath936, ShortSequencesReadTheMissingBytesAsTerminators) {
    WriteTable(936, {});
    // A counted text ends where its length says; a zero-terminated one at its terminator. Either
    // way the four bytes are used and the walk ends there.
    const std::string sequence = "\x81\x30\x81\x30";
    for (int length = 2; length <= 3; ++length) {
        const std::string cut = sequence.substr(0, size_t(length));
        const Wide zeroTerminated = ToWide(cut, -1);
        EXPECT_EQ(1u, zeroTerminated.size());
        EXPECT_EQ(zeroTerminated, ToWide(sequence, length));
    }
    // The opener takes the two bytes behind it as they stand, whatever they are.
    const Wide odd = ToWide("\x81\x30\x30\x30" "A", -1);
    ASSERT_EQ(2u, odd.size());
    EXPECT_EQ(u'A', odd[1]);
}

}  // namespace
