// The bounded string helpers of the three families and the character tests under them. Buffers
// are heap blocks of exactly their size, so that the address sanitizer catches any touch beyond.
// Korean samples: \xC7\xD1 and \xB1\xDB are characters, \xA1\xA1 is the ideographic space, and
// \xB0 right before the terminator is a lead byte without its trail byte.
#include <gtest/gtest.h>

#include <zel/strings.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/mbcs.h"
#include "strings/wctype16.h"
#include "support/support.h"

namespace {

using namespace std::string_literals;
using zeltest::SystemLocale;

template <typename T>
std::unique_ptr<T[]> Exact(const std::basic_string<T>& text) {
    auto units = std::make_unique<T[]>(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, units.get());
    return units;
}

// A copy when dest is empty, else an append to it, into a buffer as large as after and filled
// with # at first.
template <typename T>
struct CopyRow { std::basic_string<T> dest, src; int size, result; std::basic_string<T> after; };

template <typename T>
void ExpectCopies(const std::vector<CopyRow<T>>& rows, int (*copy)(T*, const T*, int),
                  int (*append)(T*, const T*, int)) {
    for (const CopyRow<T>& row : rows) {
        auto src = Exact(row.src);
        auto buffer = std::make_unique<T[]>(row.after.size());
        std::fill_n(buffer.get(), row.after.size(), T('#'));
        std::copy_n(row.dest.c_str(), row.dest.empty() ? 0 : row.dest.size() + 1, buffer.get());
        auto* op = row.dest.empty() ? copy : append;
        EXPECT_EQ(op(buffer.get(), src.get(), row.size), row.result) << row.src.size() << " " << row.size;
        EXPECT_EQ(std::basic_string<T>(buffer.get(), row.after.size()), row.after) << row.size;
    }
}

// A cut or trim of text in place.
template <typename T>
struct InPlaceRow { std::basic_string<T> text; int (*op)(T*, int); int size, result; std::basic_string<T> after; };

template <typename T, int (*Trim)(T*)>
int Whole(T* s, int) { return Trim(s); }

template <typename T>
void ExpectInPlace(const std::vector<InPlaceRow<T>>& rows) {
    for (size_t i = 0; i < rows.size(); ++i) {
        auto text = Exact(rows[i].text);
        EXPECT_EQ(rows[i].op(text.get(), rows[i].size), rows[i].result) << "row " << i;
        EXPECT_EQ(std::basic_string<T>(text.get()), rows[i].after) << "row " << i;
    }
}

TEST(BoundedHelpers, CopyAndAppendTellWhetherTheTerminatorFitted) {
    // size - 1 units go whole, yet give 0; a negative size acts as 1; an append needs room for one more unit.
    ExpectCopies<WCHAR>({{u"", u"abcdefg", 8, 0, u"abcdefg\0"s}, {u"", u"abcdef", 8, 1, u"abcdef\0#"s},
                         {u"", u"abcdefg", 4, 0, u"abc\0"s}, {u"", u"", 1, 0, u"\0#"s},
                         {u"", u"abc", -5, 0, u"\0#"s}, {u"", u"abc", 0, 0, u"#"},
                         {u"abcde", u"", 6, 0, u"abcde\0"s}, {u"ab", u"cd", 6, 1, u"abcd\0#"s},
                         {u"abcd", u"xyz", 6, 0, u"abcdx\0"s}},
                        ustrlcpy, ustrlcat);
    const std::string korean = "a\xC7\xD1\xB1\xDB";
    ExpectCopies<char>({{"", korean, 3, 0, "a\xC7\0"s}}, sstrlcpy, sstrlcat);  // splits it
    if (SystemLocale locale({.acp = "949"}); locale.active()) {
        // A character that does not fit leaves the rest of the buffer as it was.
        ExpectCopies<char>({{"", korean, 4, 0, "a\xC7\xD1\0"s}, {"", korean, 3, 0, "a\0#"s},
                            {"", korean, 6, 0, korean + '\0'}, {"", korean, 7, 1, korean + "\0#"s},
                            {"", "ab", 0, 0, "##"}, {"a", korean.substr(1), 5, 0, "a\xC7\xD1\0#"s},
                            {"a\xC7\xD1", "b", 5, 0, "a\xC7\xD1" "b\0"s}, {"", "ab\xB0", 4, 0, "ab\xB0\0"s},
                            {"x", "ab\xB0", 6, 1, "xab\xB0\0#"s}},
                           mstrlcpy, mstrlcat);
    }
    if (SystemLocale locale({.acp = "932"}); locale.active())  // 0x5C is a trail byte, not a character of its own
        ExpectCopies<char>({{"", "x\x83\x5C", 3, 0, "x\0#"s}}, mstrlcpy, mstrlcat);
    if (SystemLocale locale({.acp = "1252"}); locale.active())
        ExpectCopies<char>({{"", korean, 3, 0, "a\xC7\0"s}}, mstrlcpy, mstrlcat);
}

TEST(BoundedHelpers, DestinationsWithoutTerminatorAreReadNoFurtherThanSize) {
    auto wide = std::make_unique<WCHAR[]>(4);
    std::fill_n(wide.get(), 4, u'#');
    EXPECT_EQ(ustrlcat(wide.get(), u"a", 4) + ustrcut(wide.get(), 4), 0);
    EXPECT_EQ(wide[3], 0);
}

TEST(BoundedHelpers, CutAndTrimInPlace) {
    constexpr auto utl = Whole<WCHAR, ustrtriml>, utr = Whole<WCHAR, ustrtrimr>;
    ExpectInPlace<WCHAR>({{u"abc", ustrcut, 4, 1, u"abc"},
                          {u"a\xD83D\xDE00", ustrcut, 3, 0, u"a\xD83D"},  // may split a pair
                          {u"ab", ustrcut, 0, 0, u"ab"}, {u"ab", ustrcut, -1, 0, u""},
                          {u"\x3000 \t\xA0x\x2028 ", utl, 0, 1, u"x\x2028 "},
                          {u"\xFEFFx\x200B\x2028\x205F ", utr, 0, 1, u"\xFEFFx\x200B"},
                          {u"\xFEFFx\x200B", utl, 0, 0, u"\xFEFFx\x200B"},
                          {u" \n", utr, 0, 1, u""}, {u"", utr, 0, 0, u""}});
    constexpr auto stl = Whole<char, sstrtriml>, str = Whole<char, sstrtrimr>;
    constexpr auto mtl = Whole<char, mstrtriml>, mtr = Whole<char, mstrtrimr>;
    ExpectInPlace<char>({{"a\xB0\xA1", sstrcut, 4, 1, "a\xB0\xA1"}, {"a\xB0\xA1", sstrcut, 3, 0, "a\xB0"},
                         {" \xA0 x", stl, 0, 1, "\xA0 x"},  // a high byte ends the trim
                         {"x \xA0\v\r ", str, 0, 1, "x \xA0"},
                         {"abc", mstrcut, 4, 0, "abc"},  // exactly size - 1 bytes
                         {"abc", mstrcut, 5, 1, "abc"}, {"ab", mstrcut, 0, 0, "ab"}, {"ab", mstrcut, -3, 0, ""},
                         {"", mtl, 0, 0, ""}});
    if (SystemLocale locale({.acp = "949"}); locale.active()) {
        ExpectInPlace<char>({{"a\xC7\xD1\xB1\xDB", mstrcut, 5, 0, "a\xC7\xD1"},
                             {"a\xC7\xD1", mstrcut, 3, 0, "a"}, {"ab\xB0", mstrcut, 3, 0, "ab"},
                             {"\xA1\xA1 \xC7\xD1 a", mtl, 0, 1, "\xC7\xD1 a"}, {" \xA1\xA1 ", mtr, 0, 1, ""},
                             {"a\xC7\xD1 \xA1\xA1\t", mtr, 0, 1, "a\xC7\xD1"},
                             {" \xA1\xA1\xB0", mtr, 0, 0, " \xA1\xA1\xB0"}, {" \xA1\xA1\xB0", mtl, 0, 1, "\xB0"}});
    }
    if (SystemLocale locale({.acp = "932"}); locale.active()) {
        ExpectInPlace<char>(
            {{"a\x83\x5C\x81\x40", mtr, 0, 1, "a\x83\x5C"}, {"\xA1\xA1" "a", mtl, 0, 0, "\xA1\xA1" "a"}});
    }
    if (SystemLocale locale({.acp = "1252"}); locale.active())
        ExpectInPlace<char>({{"a\xC7\xD1", mstrcut, 3, 0, "a\xC7"}, {"x \xA1\xA1", mtr, 0, 0, "x \xA1\xA1"}});
}

TEST(BoundedHelpers, NullStringsGiveZeroAndWriteNothing) {
    WCHAR wide[2] = {u'#', u'#'};
    char bytes[2] = {'#', '#'};
    EXPECT_EQ(ustrlcpy(wide, nullptr, 2) | ustrlcat(wide, nullptr, 2) | ustrlcpy(nullptr, u"a", 2), 0);
    EXPECT_EQ(mstrlcpy(bytes, nullptr, 2) | mstrlcat(bytes, nullptr, 2) | sstrlcpy(bytes, nullptr, 2), 0);
    EXPECT_TRUE(wide[0] == u'#' && bytes[0] == '#');
    EXPECT_EQ(ustrcut(nullptr, 4) | mstrcut(nullptr, 4) | sstrcut(nullptr, 4), 0);
    EXPECT_EQ(ustrtriml(nullptr) | mstrtriml(nullptr) | sstrtriml(nullptr), 0);
    EXPECT_EQ(ustrtrimr(nullptr) | mstrtrimr(nullptr) | sstrtrimr(nullptr), 0);
}

TEST(BoundedHelpers, CompareFoldsOnlyLatinLettersToUpperCase) {
    // Units count unsigned, null counts as empty; a count below 0 here stands for the unbounded compare.
    const struct { const WCHAR *a, *b; int count, result; } cases[] = {
        {u"MiXeD", u"mIxEd", -1, 0}, {u"a", u"_", -1, 0x41 - 0x5F}, {u"\xE9", u"\xC9", -1, 0x20},
        {u"\xAC00", u"a", -1, 0xAC00 - 0x41}, {u"ab", u"ABc", -1, -0x43}, {u"abc", nullptr, -1, 0x41},
        {u"abX", u"ABY", 3, 0x58 - 0x59}, {u"abX", u"ABY", 2, 0}, {u"x", u"y", 0, 0}, {u"ab", u"AB", 100, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(c.count < 0 ? _ustricmp(c.a, c.b) : _ustrnicmp(c.a, c.b, unsigned(c.count)), c.result) << &c - cases;
}

TEST(BoundedHelpers, WhiteSpaceOfAUnitIsTheUnicodeSet) {
    int count = 0;
    for (unsigned c = 0; c <= 0xFFFF; ++c) count += iswspace(static_cast<WCHAR>(c)) != 0;
    EXPECT_EQ(count, 25);
    for (WCHAR c : {0x85, 0x1680, 0x2000, 0x200A, 0x2029, 0x202F, 0x3000}) EXPECT_TRUE(iswspace(c)) << unsigned{c};
}

TEST(BoundedHelpers, LeadBytesAndSpacesFollowTheAnsiCodePage) {
    struct Page { const char* codePage; std::vector<unsigned> leads, others; unsigned space; };
    for (const Page& page : {Page{"949", {0x81, 0xFE}, {0x80, 0xFF}, 0xA1A1},
                             Page{"936", {0x81, 0xFE}, {0x80, 0xFF}, 0xA1A1},
                             Page{"950", {0x81, 0xFE}, {0x80, 0xFF}, 0xA140},
                             Page{"932", {0x81, 0x9F, 0xE0, 0xFC}, {0x80, 0xA0, 0xDF, 0xFD}, 0x8140},
                             Page{"1361", {0x84, 0xD3, 0xD8, 0xDE, 0xE0, 0xF9}, {0x83, 0xD4, 0xDF, 0xFA}, 0xD931},
                             Page{"1252", {}, {0x81, 0xA1, 0xFE}, 0}}) {
        SystemLocale locale({.acp = page.codePage});
        if (!locale.active()) continue;
        for (unsigned b : page.leads) EXPECT_TRUE(_ismbblead(b)) << page.codePage << " " << b;
        for (unsigned b : page.others) EXPECT_FALSE(_ismbblead(b)) << page.codePage << " " << b;
        EXPECT_EQ(_ismbcspace(page.space), page.space != 0) << page.codePage;
        EXPECT_FALSE(_ismbcspace(page.space == 0xA1A1 ? 0x8140 : 0xA1A1)) << page.codePage;
        EXPECT_TRUE(_ismbcspace('\t') && !_ismbcspace(0xA0) && !_ismbblead(0x181)) << page.codePage;
    }
    SystemLocale korean({.acp = "949"});
    if (!korean.active()) return;
    auto text = Exact("\xC7\xD1\xB0"s);
    auto* p = reinterpret_cast<const unsigned char*>(text.get());
    EXPECT_EQ(_mbclen(p), 2u);
    EXPECT_EQ(_mbclen(p + 2), 1u);  // the lone lead byte: the step stops at the terminator
    EXPECT_EQ(_mbsinc(_mbsinc(p)), p + 3);
}

}  // namespace
