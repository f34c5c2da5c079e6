// The table path's bulk walks against its one-character-at-a-time walks: same count, same bytes
// in the whole output buffer, for every code page, every buffer size around the end of the text,
// counted and zero-terminated input, tables full of odd entries, with and without the block
// kernels of the decoder.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "codetables/codepage_front.h"
#include "codetables/codepage_table_path.h"
#include "codetables/table_path_fixture.h"
#include "strings/utf_blocks.h"

namespace {

constexpr UINT kPages[] = {949, 1361, 932, 936, 950, 9566};

// Mostly double-byte codes and characters, with every kind of odd entry among them: single bytes,
// the byte 0x3F, U+FFFD, surrogates, the two markers of 936.
uint16_t OddEntry(uint32_t key) {
    uint32_t h = key * 2654435761u;
    h ^= h >> 13;
    switch (h % 20) {
    case 0: return 0xFFFD;
    case 1: return 0x3F;
    case 2: return uint16_t((h >> 8) % 0x100);
    case 3: return uint16_t(0xD800 + (h >> 8) % 0x800);
    case 4: return kZel936FourByteMarker;
    case 5: return kZel936OpenerMarker;
    default: return uint16_t(0x8140 + (h >> 8) % 0x7EBF);
    }
}

struct Tables {
    explicit Tables(UINT page) : mb2Uni(0x10000 - ZelFirstCodeOf(page)), uni2Mb(0x10000) {
        for (size_t i = 0; i < mb2Uni.size(); ++i) mb2Uni[i] = OddEntry(uint32_t(i) * 3 + page);
        for (size_t u = 0; u < uni2Mb.size(); ++u) uni2Mb[u] = OddEntry(uint32_t(u) * 7 + page + 1);
        // As in the real table of 936: the marker on the surrogates and on many code points with
        // a four-byte form.
        if (page == 936) {
            for (size_t u = 0xD800; u <= 0xDFFF; ++u) uni2Mb[u] = kZel936FourByteMarker;
            for (size_t u = 0x80; u < uni2Mb.size(); u += 2)
                if (Zel936FourByteCode(WCHAR(u)) != 0) uni2Mb[u] = kZel936FourByteMarker;
        }
        view = {mb2Uni.data(), DWORD(mb2Uni.size()), uni2Mb.data(), ZelFirstCodeOf(page)};
    }
    std::vector<uint16_t> mb2Uni;
    std::vector<uint16_t> uni2Mb;
    ZelCodePageTables view{};
};

// Runs of ASCII long enough for the eight-at-once steps, characters of every kind, surrogates
// paired and alone, the half-width range of 932.
std::u16string RandomWide(std::mt19937& random, size_t units) {
    std::u16string text;
    while (text.size() < units) {
        switch (random() % 6) {
        case 0:
            for (uint32_t n = random() % 20; n > 0; --n) text += char16_t(0x20 + random() % 0x5F);
            break;
        case 1: text += char16_t(0xD800 + random() % 0x400); text += char16_t(0xDC00 + random() % 0x400); break;
        case 2: text += char16_t(0xD800 + random() % 0x800); break;
        case 3: text += char16_t(0xFF50 + random() % 0x60); break;
        default: text += char16_t(1 + random() % 0xFFFF); break;
        }
    }
    text.resize(units);
    return text;
}

std::string RandomNarrow(std::mt19937& random, size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        switch (random() % 5) {
        case 0:
            for (uint32_t n = random() % 24; n > 0; --n) text += char(0x20 + random() % 0x5F);
            break;
        case 1:  // the shape of a four-byte sequence, in range and out of it
            text += char(0x81 + random() % 0x7E);
            text += char(0x2E + random() % 0x0E);
            text += char(0x7F + random() % 0x81);
            text += char(0x2E + random() % 0x0E);
            break;
        default: text += char(1 + random() % 0xFF); break;
        }
    }
    text.resize(bytes);
    return text;
}

// Text the block kernels take whole: mostly double-byte codes, short runs of ASCII, well-formed
// four-byte sequences, with now and then a byte that a kernel must get right or leave alone: the
// lead bytes around the first code, the half-width bytes, 0x80, 0xFF 0xFF.
std::string RandomCodes(std::mt19937& random, size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        const uint32_t pick = random() % 40;
        if (pick < 24) {
            text += char(0x81 + random() % 0x7E);
            text += char(0x40 + random() % 0xBF);
        } else if (pick < 30) {
            for (uint32_t n = random() % 6; n > 0; --n) text += char(0x20 + random() % 0x5F);
        } else if (pick < 34) {
            text += char(0x81 + random() % 0x7E);
            text += char(0x30 + random() % 10);
            text += char(0x81 + random() % 0x7E);
            text += char(0x30 + random() % 10);
        } else if (pick < 36) {
            text += char(0xA0 + random() % 0x40);
        } else if (pick == 36) {
            text += char(0x81);
            text += char(0x30 + random() % 0x20);
        } else if (pick == 37) {
            text += "\xFF\xFF";
        } else {
            text += char(0x80 + (random() % 2) * 0x7F);
        }
    }
    text.resize(bytes);
    return text;
}

// Runs body at every level of the block kernels up to the processor's own: none first.
template <typename Body>
void AtEveryBlockLevel(Body body) {
    zel::utf::LimitBlockLevel(2);
    const int widest = zel::utf::BlockLevel();
    for (int level = 0; level <= widest; ++level) {
        SCOPED_TRACE(testing::Message() << "block level " << level);
        zel::utf::LimitBlockLevel(level);
        body();
        if (testing::Test::HasFatalFailure()) break;
    }
    zel::utf::LimitBlockLevel(2);
}

constexpr int kCanary = 0x5A;

// Every size from 0 to a little beyond what the text can need, the text counted and terminated.
void CompareToUnicode(UINT page, const ZelCodePageTables& tables, const std::string& text) {
    const int maxSize = int(text.size()) + 6;
    for (int counted = 0; counted < 2; ++counted) {
        const int length = counted ? int(text.size()) : -1;
        for (int size = 0; size <= maxSize; ++size) {
            std::vector<WCHAR> fast(size_t(maxSize) + 4, kCanary), plain(size_t(maxSize) + 4, kCanary);
            const int a = ZelTableToUnicode(page, tables, text.c_str(), length, fast.data(), size);
            const int b = ZelTableToUnicodeOneByOne(page, tables, text.c_str(), length, plain.data(), size);
            ASSERT_EQ(b, a) << page << " size " << size << " length " << length;
            ASSERT_EQ(plain, fast) << page << " size " << size << " length " << length;
        }
    }
}

void CompareFromUnicode(UINT page, const ZelCodePageTables& tables, const std::u16string& text) {
    const int maxSize = int(text.size()) * 4 + 6;
    for (int counted = 0; counted < 2; ++counted) {
        const int length = counted ? int(text.size()) : -1;
        for (int size = 0; size <= maxSize; ++size) {
            std::vector<char> fast(size_t(maxSize) + 4, kCanary), plain(size_t(maxSize) + 4, kCanary);
            const int a = ZelTableFromUnicode(page, tables, text.c_str(), length, fast.data(), size);
            const int b = ZelTableFromUnicodeOneByOne(page, tables, text.c_str(), length, plain.data(), size);
            ASSERT_EQ(b, a) << page << " size " << size << " length " << length;
            ASSERT_EQ(plain, fast) << page << " size " << size << " length " << length;
        }
    }
}

TEST(TablePathWalks, BulkWalksMatchTheOneByOneWalksOnRandomText) {
    std::mt19937 random(0x7AB1E);
    for (UINT page : kPages) {
        SCOPED_TRACE(page);
        const Tables tables(page);
        for (int round = 0; round < 40; ++round) {
            const size_t units = 1 + random() % 70;
            const std::u16string wide = RandomWide(random, units);
            AtEveryBlockLevel([&] { CompareFromUnicode(page, tables.view, wide); });
            const std::string narrow = RandomNarrow(random, units * 2);
            AtEveryBlockLevel([&] { CompareToUnicode(page, tables.view, narrow); });
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

// Tables of odd entries and tables that hold the markers of 936 only where its real tables do
// (the opener before a digit, the marker on the surrogates and the code points with a four-byte
// form), so that the kernels of 936 run on for whole blocks as they do on real text.
template <typename Body>
void WithOddAndRealShapedTables(Body body) {
    for (UINT page : kPages) {
        SCOPED_TRACE(page);
        Tables odd(page);
        Tables shaped(page);
        for (size_t i = 0; i < shaped.mb2Uni.size(); ++i) {
            const unsigned trail = (ZelFirstCodeOf(page) + unsigned(i)) & 0xFF;
            uint16_t& entry = shaped.mb2Uni[i];
            if (entry == kZel936OpenerMarker) entry = 0x4E00;
            if (page == 936 && trail >= 0x30 && trail <= 0x39) entry = kZel936OpenerMarker;
        }
        for (size_t u = 0; u < shaped.uni2Mb.size(); ++u) {
            uint16_t& entry = shaped.uni2Mb[u];
            if (entry == kZel936FourByteMarker) entry = 0xB0A1;
            const bool marked = (u >= 0xD800 && u <= 0xDFFF) || Zel936FourByteCode(WCHAR(u)) != 0;
            if (page == 936 && marked) entry = kZel936FourByteMarker;
        }
        for (const Tables* tables : {&odd, &shaped}) {
            body(page, tables->view);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

// Several blocks of text, every buffer size.
TEST(TablePathWalks, BlockDecodingMatchesTheOneByOneWalk) {
    std::mt19937 random(0xB10C5);
    WithOddAndRealShapedTables([&](UINT page, const ZelCodePageTables& tables) {
        for (int round = 0; round < 12; ++round) {
            const std::string text = RandomCodes(random, 64 + random() % 300);
            AtEveryBlockLevel([&] { CompareToUnicode(page, tables, text); });
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

TEST(TablePathWalks, BulkWalksMatchAtTheEdges) {
    const std::u16string wide[] = {
        u"abcdefghijklmnopqrstuvwxyz0123456789",
        // A pair, lone halves of both kinds, a high half at the very end.
        u"abcdefgh\xD840\xDC00xyz\xDC00\xD800q\xD800",
        u"\x0080\x00A5\xE76C\xFA2A\xFFFF\xFF60\xFF9F\xFF5F\xFFA0\xD7FF\xE000\xFFFD",
        std::u16string(40, u'\xAC00') + u"abcdefghi" + std::u16string(5, u'\xDBFF'),
    };
    const std::string narrow[] = {
        "abcdefghijklmnopqrstuvwxyz0123456789",
        "\x81\x30\x81\x30\x90\x30\x81\x30\x84\x31\xA4\x39\xFE\x39\xFE\x39\xE3\x32\x9A\x35",
        "\x81\x30\x81\x30\x90\x30\x81",
        "abcdefg\xB0\xA1\xA0\xDF\x81\x20\x80\x2B\xA1\x40\xA1\xA0\xFF\xFF\x81",
    };
    for (UINT page : kPages) {
        SCOPED_TRACE(page);
        const Tables tables(page);
        for (const auto& text : wide) AtEveryBlockLevel([&] { CompareFromUnicode(page, tables.view, text); });
        for (const auto& text : narrow) AtEveryBlockLevel([&] { CompareToUnicode(page, tables.view, text); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// Text the encoder's kernels take whole: mostly characters of the double-byte range, short runs
// of ASCII, half-width Katakana, code points with a four-byte form in 936, now and then a pair, a
// lone half or U+FFFF.
std::u16string RandomCharacters(std::mt19937& random, size_t units) {
    std::u16string text;
    while (text.size() < units) {
        const uint32_t pick = random() % 40;
        if (pick < 24) {
            text += char16_t(0x4E00 + random() % 0x5200);
        } else if (pick < 30) {
            for (uint32_t n = random() % 6; n > 0; --n) text += char16_t(0x20 + random() % 0x5F);
        } else if (pick < 34) {
            text += char16_t(0x3400 + random() % 0x19B6);
        } else if (pick < 36) {
            text += char16_t(0xFF50 + random() % 0x60);
        } else if (pick == 36) {
            text += char16_t(0xD800 + random() % 0x400);
            text += char16_t(0xDC00 + random() % 0x400);
        } else if (pick == 37) {
            text += char16_t(0xD800 + random() % 0x800);
        } else {
            text += char16_t(0xFFFF - random() % 2);
        }
    }
    text.resize(units);
    return text;
}

// Several blocks of UTF-16, every buffer size.
TEST(TablePathWalks, BlockEncodingMatchesTheOneByOneWalk) {
    std::mt19937 random(0xE4C0DE);
    WithOddAndRealShapedTables([&](UINT page, const ZelCodePageTables& tables) {
        for (int round = 0; round < 10; ++round) {
            const std::u16string text = RandomCharacters(random, 32 + random() % 150);
            AtEveryBlockLevel([&] { CompareFromUnicode(page, tables, text); });
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

// Through the front end with the tables loaded from files: the default character and the
// used-default flag change nothing on the table path.
TEST_F(TablePathFixture, DefaultCharacterAndUsedDefaultLeaveTheTablePathAlone) {
    std::mt19937 random(0xDEFA);
    for (UINT page : {936u, 949u}) {
        SCOPED_TRACE(page);
        const Tables tables(page);
        Write16(std::to_string(page), tables.mb2Uni, tables.mb2Uni.size());
        ASSERT_EQ(kZelTableReady, EnsureCodePageTbl(page));
        const ZelCodePageTables* loaded = ZelCodePageTablesOf(page);
        ASSERT_NE(nullptr, loaded);
        for (int round = 0; round < 30; ++round) {
            const std::u16string text = RandomWide(random, 1 + random() % 50);
            const int size = 1 + int(random() % (text.size() * 4 + 4));
            std::vector<char> expected(text.size() * 4 + 8, kCanary);
            const int count = ZelTableFromUnicodeOneByOne(page, *loaded, text.c_str(), int(text.size()),
                                                          expected.data(), size);
            for (const char* defaultChar : {static_cast<const char*>(nullptr), "*"}) {
                std::vector<char> got(expected.size(), kCanary);
                BOOL usedDefault = TRUE;
                ASSERT_EQ(count, UnicodeToCodePage(page, defaultChar ? 0x40 : 0, text.c_str(), int(text.size()),
                                                   got.data(), size, defaultChar, &usedDefault));
                EXPECT_FALSE(usedDefault);
                ASSERT_EQ(expected, got);
                std::vector<char> viaApi(expected.size(), kCanary);
                ASSERT_EQ(count, ZelUnicodeToAnsi(0, page, text.c_str(), int(text.size()), viaApi.data(), size,
                                                  defaultChar));
                ASSERT_EQ(expected, viaApi);
            }
        }
    }
}

}  // namespace
