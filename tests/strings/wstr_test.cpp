// The 16-bit string primitives: the run-time rules that the rest of the library leans on.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "strings/wstr.h"
#include "support/support.h"

namespace {

using namespace std::string_literals;

std::u16string S(const WCHAR* s) { return s ? std::u16string(s) : std::u16string(u"<null>"); }

TEST(WideStrings, CompareAndSearch) {
    // Units compare unsigned: a unit above 0x7FFF sorts after ASCII.
    EXPECT_LT(wcscmp(u"a", u"\xAC00"), 0);
    EXPECT_GT(wcscmp(u"abc", u"ab"), 0);
    EXPECT_EQ(wcscmp(u"", u""), 0);
    EXPECT_EQ(wcsncmp(u"abcX", u"abcY", 3), 0);
    EXPECT_LT(wcsncmp(u"ab", u"abc", 5), 0);
    EXPECT_EQ(wcsncmp(u"ab\0x", u"ab\0y", 4), 0);  // stops at the terminator

    const WCHAR* text = u"a\\b\\c";
    EXPECT_EQ(wcschr(text, u'\\'), text + 1);
    EXPECT_EQ(wcsrchr(text, u'\\'), text + 3);
    EXPECT_EQ(wcschr(text, 0), text + 5);
    EXPECT_EQ(wcsrchr(text, 0), text + 5);
    EXPECT_EQ(wcschr(text, u'z'), nullptr);

    const WCHAR* hay = u"aaab";
    EXPECT_EQ(wcsstr(hay, u"aab"), hay + 1);
    EXPECT_EQ(wcsstr(hay, u""), hay);
    EXPECT_EQ(wcsstr(hay, u"abx"), nullptr);
    EXPECT_EQ(wcsstr(hay, u"aaabb"), nullptr);
    EXPECT_EQ(wcslen(hay), 4u);
}

TEST(WideStrings, CopyPadsAndLeavesLongSourcesUnterminated) {
    WCHAR buffer[6];
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    wcsncpy(buffer, u"ab", 5);
    EXPECT_EQ(std::u16string(buffer, 6), u"ab\0\0\0#"s);
    wcsncpy(buffer, u"abcdefg", 5);  // no terminator, nothing past count
    EXPECT_EQ(std::u16string(buffer, 6), u"abcde#");
    EXPECT_EQ(S(wcscpy(buffer, u"xyz")), u"xyz");
    WCHAR upper[] = u"mixed Case \xE9z";
    EXPECT_EQ(S(_wcsupr(upper)), u"MIXED CASE \xE9Z");
}

// The tokens that wcstok gives from s on, up to the first null.
std::vector<std::u16string> Tokens(WCHAR* s, const WCHAR* delimiters) {
    std::vector<std::u16string> tokens;
    for (WCHAR* t = wcstok(s, delimiters); t; t = wcstok(nullptr, delimiters)) tokens.push_back(t);
    return tokens;
}

TEST(WideStrings, TokensSkipRunsOfDelimitersAndKeepStatePerThread) {
    WCHAR text[] = u";;one; two;;three;";
    EXPECT_EQ(S(wcstok(text, u"; ")), u"one");
    // Another thread tokenizing meanwhile does not disturb this thread's position.
    std::thread other([] {
        WCHAR mine[] = u"x,y";
        EXPECT_EQ(Tokens(mine, u","), (std::vector<std::u16string>{u"x", u"y"}));
    });
    other.join();
    EXPECT_EQ(Tokens(nullptr, u"; "), (std::vector<std::u16string>{u"two", u"three"}));
    EXPECT_EQ(wcstok(nullptr, u"; "), nullptr);  // and stays at the end
    WCHAR only[] = u";;;";
    EXPECT_EQ(wcstok(only, u";"), nullptr);
}

struct Split {
    std::u16string drive, dir, fname, ext;
    bool operator==(const Split&) const = default;
};

void PrintTo(const Split& s, std::ostream* os) {
    *os << testing::PrintToString(std::vector{s.drive, s.dir, s.fname, s.ext});
}

Split SplitPath(const WCHAR* path) {
    WCHAR drive[_MAX_DRIVE], dir[_MAX_DIR], fname[_MAX_FNAME], ext[_MAX_EXT];
    _wsplitpath(path, drive, dir, fname, ext);
    return {drive, dir, fname, ext};
}

TEST(WideStrings, SplitPathFollowsTheRunTimeRules) {
    const std::pair<const WCHAR*, Split> cases[] = {
        {u"c:\\dir\\sub\\file.txt", {u"c:", u"\\dir\\sub\\", u"file", u".txt"}},
        {u"c:file", {u"c:", u"", u"file", u""}},
        {u"\\\\server\\share\\a.tar.gz", {u"", u"\\\\server\\share\\", u"a.tar", u".gz"}},
        {u"dir.d\\file", {u"", u"dir.d\\", u"file", u""}},  // a dot in the directory is no extension
        {u"a/b\\c.x/d", {u"", u"a/b\\c.x/", u"d", u""}},
        {u".profile", {u"", u"", u"", u".profile"}},
        {u"name.", {u"", u"", u"name", u"."}},
        {u"x:", {u"x:", u"", u"", u""}},
        {u":x", {u"", u"", u":x", u""}},
        {u"dir\\", {u"", u"dir\\", u"", u""}},
        {u"", {u"", u"", u"", u""}},
    };
    for (const auto& [path, expected] : cases) EXPECT_EQ(SplitPath(path), expected) << S(path).size();
    // Null outputs are skipped.
    WCHAR ext[_MAX_EXT];
    _wsplitpath(u"c:\\a\\b.c", nullptr, nullptr, nullptr, ext);
    EXPECT_EQ(S(ext), u".c");
}

TEST(WideStrings, SplitPathCutsEachPartToItsBuffer) {
    const std::u16string dir(400, u'd'), name(300, u'n'), ext(300, u'e');
    // Guard units after each buffer catch a write past its size.
    struct Guarded {
        WCHAR buffer[_MAX_DIR];
        WCHAR guard[4] = {u'G', u'G', u'G', u'G'};
    } drive{}, d{}, f{}, e{};
    static_assert(_MAX_DIR == _MAX_FNAME && _MAX_DIR == _MAX_EXT);
    _wsplitpath((u"c:\\" + dir + u"\\" + name + u"." + ext).c_str(), drive.buffer, d.buffer, f.buffer, e.buffer);
    EXPECT_EQ(S(d.buffer), (u"\\" + dir).substr(0, _MAX_DIR - 1));
    EXPECT_EQ(S(f.buffer), name.substr(0, _MAX_FNAME - 1));
    EXPECT_EQ(S(e.buffer), (u"." + ext).substr(0, _MAX_EXT - 1));
    for (const Guarded* g : {&d, &f, &e}) EXPECT_EQ(std::u16string(g->guard, 4), u"GGGG");
}

std::u16string MakePath(const WCHAR* drive, const WCHAR* dir, const WCHAR* fname, const WCHAR* ext) {
    WCHAR path[_MAX_PATH + 4];
    std::fill(std::begin(path), std::end(path), u'G');
    _wmakepath(path, drive, dir, fname, ext);
    EXPECT_EQ(std::u16string(path + _MAX_PATH, 4), u"GGGG");
    return path;
}

TEST(WideStrings, MakePathAddsSeparatorsAndStaysInBounds) {
    EXPECT_EQ(MakePath(u"c", u"\\dir", u"file", u"txt"), u"c:\\dir\\file.txt");
    EXPECT_EQ(MakePath(u"c:", u"dir/", u"file", u".txt"), u"c:dir/file.txt");
    EXPECT_EQ(MakePath(u"", u"dir\\", u"file", u""), u"dir\\file");
    EXPECT_EQ(MakePath(nullptr, nullptr, u"file", nullptr), u"file");
    EXPECT_EQ(MakePath(nullptr, u"", nullptr, u"ext"), u".ext");
    const std::u16string dir(250, u'd');
    EXPECT_EQ(MakePath(u"c", dir.c_str(), u"file", u"ext"), (u"c:" + dir + u"\\file.ext").substr(0, _MAX_PATH - 1));
}

TEST(WideStrings, GetenvConvertsUtf8AndKeepsEachNamesValue) {
    zeltest::ScopedEnv korean("ZEL_TEST_WSTR_A", std::string("\xED\x95\x9C\xEA\xB8\x80 \xF0\x9F\x98\x80"));
    zeltest::ScopedEnv latin("ZEL_TEST_WSTR_B", std::string("caf\xC3\xA9"));
    zeltest::ScopedEnv unset("ZEL_TEST_WSTR_C", std::nullopt);

    const WCHAR* a = _wgetenv(u"ZEL_TEST_WSTR_A");
    EXPECT_EQ(S(a), u"\xD55C\xAE00 \xD83D\xDE00");
    EXPECT_EQ(S(_wgetenv(u"ZEL_TEST_WSTR_B")), u"caf\xE9");
    EXPECT_EQ(S(a), u"\xD55C\xAE00 \xD83D\xDE00");  // still valid after another name was asked for
    EXPECT_EQ(_wgetenv(u"ZEL_TEST_WSTR_C"), nullptr);
    EXPECT_EQ(_wgetenv(u""), nullptr);
}

TEST(WideStrings, FormatConversions) {
    WCHAR buffer[128];
    auto format = [&buffer](const WCHAR* f, auto... args) { return _snwprintf(buffer, 128, f, args...), S(buffer); };
    EXPECT_EQ(_snwprintf(buffer, 128, u"%s|%S|%c|%%", u"\xD55C", "ab", u'x'), 8);
    EXPECT_EQ(S(buffer), u"\xD55C|ab|x|%");
    EXPECT_EQ(format(u"%d %i %u %x %X", -42, 7, 4000000000u, 0xBEEFu, 0xBEEFu), u"-42 7 4000000000 beef BEEF");
    EXPECT_EQ(format(u"[%08x][%5d][%-5d][%05d][%04X]", 0x1234u, -12, 3, -12, 0xABCDEFu),
              u"[00001234][  -12][3    ][-0012][ABCDEF]");
    EXPECT_EQ(format(u"%x %d", -1, INT32_MIN), u"ffffffff -2147483648");
    // 'l' is 32 bits here as where the formats come from; 'll' and 'I64' are 64.
    EXPECT_EQ(format(u"%lu %lld %I64x", static_cast<DWORD>(5), -5ll, 0x123456789ull), u"5 -5 123456789");
    EXPECT_EQ(format(u"[%s][%S][%4s][%.2s]", static_cast<const WCHAR*>(nullptr), static_cast<const char*>(nullptr),
                     u"ab", u"abc"),
              u"[(null)][(null)][  ab][ab]");
}

TEST(WideStrings, FormatTruncationResult) {
    // Fits with its terminator; fits exactly, without one; does not fit: count units and -1.
    const struct { size_t count; const WCHAR* text; int result; std::u16string after; } cases[] = {
        {5, u"abcd", 4, u"abcd\0#"s}, {4, u"abcd", 4, u"abcd#"}, {3, u"123456", -1, u"123#"}, {0, u"x", -1, u"#"}};
    for (const auto& c : cases) {
        WCHAR buffer[8];
        std::fill(std::begin(buffer), std::end(buffer), u'#');
        EXPECT_EQ(_snwprintf(buffer, c.count, u"%s", c.text), c.result) << c.count;
        EXPECT_EQ(std::u16string(buffer, c.after.size()), c.after) << c.count;
    }
    EXPECT_EQ(_snwprintf(nullptr, 0, u"%05d", 1), 5);  // a size query
}

}  // namespace
