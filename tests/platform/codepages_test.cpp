// MultiByteToWideChar and WideCharToMultiByte: the Win32 counting rules, invalid input, default
// characters, the East Asian code pages, and the ANSI code page of the system's language.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

using zeltest::RunningUnderWine;
using zeltest::ScopedEnv;
using namespace std::string_literals;

// Whole conversions through the size query, checked against the real conversion's count.
std::u16string ToWide(UINT codePage, const std::string& bytes, DWORD flags = 0) {
    int size = MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    if (size <= 0) return u"<fail>";
    std::u16string out(static_cast<size_t>(size), u'\0');
    EXPECT_EQ(MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(bytes.size()), out.data(), size),
              size);
    return out;
}

std::string ToBytes(UINT codePage, const std::u16string& text, DWORD flags = 0, LPCSTR defaultChar = nullptr,
                    LPBOOL used = nullptr) {
    int length = static_cast<int>(text.size());
    int size = WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, defaultChar, used);
    if (size <= 0) return "<fail>";
    std::string out(static_cast<size_t>(size), '\0');
    EXPECT_EQ(WideCharToMultiByte(codePage, flags, text.data(), length, out.data(), size, defaultChar, used), size);
    return out;
}

// Expects a failed call with the given last error.
#define EXPECT_FAILS(call, error)                \
    do {                                         \
        SetLastError(0);                         \
        EXPECT_EQ((call), 0);                    \
        EXPECT_EQ(GetLastError(), DWORD{error}); \
    } while (0)

TEST(CodePages, CountingRules) {
    WCHAR wide[8];
    std::fill(std::begin(wide), std::end(wide), u'#');

    // -1: the terminator is converted and counted.
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, wide, 8), 4);
    EXPECT_EQ(std::u16string(wide, 5), u"abc\0#"s);
    // An explicit length converts exactly those bytes, zeros included, and adds no terminator.
    std::fill(std::begin(wide), std::end(wide), u'#');
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a\0b", 3, wide, 8), 3);
    EXPECT_EQ(std::u16string(wide, 4), u"a\0b#"s);
    // A size query leaves the destination alone, even when one is given.
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "hello", 5, wide, 0), 5);
    EXPECT_EQ(wide[0], u'a');

    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, "hello", 5, wide, 4), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, "hello", -1, wide, 5), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, "hello", 0, wide, 8), ERROR_INVALID_PARAMETER);
    // Any negative length stands for a terminated text.
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "hello", -2, wide, 8), 6);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, nullptr, -1, wide, 8), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, "hello", -1, nullptr, 8), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, "hello", -1, wide, -1), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(MultiByteToWideChar(12345, 0, "hello", -1, wide, 8), ERROR_INVALID_PARAMETER);
    if (!RunningUnderWine())  // Wine takes MB_PRECOMPOSED with UTF-8
        EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "a", -1, wide, 8), ERROR_INVALID_FLAGS);
    EXPECT_FAILS(MultiByteToWideChar(1252, 0x10000, "a", -1, wide, 8), ERROR_INVALID_FLAGS);
    char shared[16] = "overlap";  // source and destination the same buffer
    if (!RunningUnderWine())  // Wine converts in place
        EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, 0, shared, -1, reinterpret_cast<LPWSTR>(shared), 8),
                     ERROR_INVALID_PARAMETER);

    char bytes[8];
    std::fill(std::begin(bytes), std::end(bytes), '#');
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"\xD55C", -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"\xD55C", -1, bytes, 0, nullptr, nullptr), 4);
    EXPECT_EQ(bytes[0], '#');
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"\xD55C", -1, bytes, 3, nullptr, nullptr),
                 ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"\xD55C", -1, bytes, 4, nullptr, nullptr), 4);
    EXPECT_EQ(std::string(bytes, 5), "\xED\x95\x9C\0#"s);
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"a", 0, bytes, 8, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, nullptr, -1, bytes, 8, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"a", -1, bytes, -3, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a", -3, bytes, 8, nullptr, nullptr), 2);
}

TEST(CodePages, InvalidBytesBecomeReplacementsOrFailWhenStrict) {
    // A malformed piece gives one U+FFFD and the text goes on: a byte that starts no sequence, or
    // the longest start of a sequence that a wrong or missing byte cuts short. After a lead byte
    // with a bad trail, the trail byte is read again on its own.
    struct {
        UINT codePage;
        std::string bytes;
        std::u16string wide;
        // false where Wine departs: it cuts some UTF-8 into other pieces, gives '?' for broken
        // double-byte text, and drops the top bit of bytes above ASCII in 20127.
        bool wineAgrees = true;
    } cases[] = {
        {CP_UTF8, "a\x80z", u"a\xFFFDz"},
        {CP_UTF8, "\xC0\x80", u"\xFFFD\xFFFD"},                                   // overlong
        {CP_UTF8, "\xED\xA0\x80!", u"\xFFFD\xFFFD\xFFFD!", false},                // an encoded surrogate
        {CP_UTF8, "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false},        // above U+10FFFF
        {CP_UTF8, "x\xE2\x82", u"x\xFFFD"}, {CP_UTF8, "\xF0\x9F\x98y", u"\xFFFDy"},  // cut short
        {949, "\xB0 \xB0\xA1", u"\xFFFD \xAC00", false}, {949, "ab\xB0", u"ab\xFFFD", false},
        {20127, "A\xC1", u"A\xFFFD", false},
        // In the combination code page, too, the bytes below 0x80 are ASCII: a path keeps its separators.
        {1361, "a\\b\xD0\x65\\", u"a\\b\xD55C\\"}, {1361, "\xD0\x65\\", u"\xD55C\\"},
    };
    for (const auto& c : cases) {
        if (!c.wineAgrees && RunningUnderWine()) continue;
        EXPECT_EQ(ToWide(c.codePage, c.bytes), c.wide) << c.bytes;
    }
    EXPECT_EQ(ToBytes(1361, u"a\\b\xD55C\\"), "a\\b\xD0\x65\\");  // and back, after a syllable too

    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\x80z", 3, nullptr, 0),
                 ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xE2\x82", 3, nullptr, 0),
                 ERROR_NO_UNICODE_TRANSLATION);
    WCHAR wide[16];
    EXPECT_FAILS(MultiByteToWideChar(949, MB_ERR_INVALID_CHARS, "\xB0", 1, wide, 16), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(ToWide(949, "\xB0\xA1", MB_ERR_INVALID_CHARS), u"\xAC00");

    // Lone surrogates become U+FFFD in UTF-8 and a default character elsewhere, or fail when strict.
    EXPECT_EQ(ToBytes(CP_UTF8, u"a\xD800" u"b\xDC00"), "a\xEF\xBF\xBD" "b\xEF\xBF\xBD");
    EXPECT_EQ(ToBytes(CP_UTF8, u"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToBytes(1252, u"\xDC00" u"a\xD800" u"b\xD800"), "?a?b?");
    EXPECT_EQ(ToBytes(CP_UTF8, u"\xD83D\xDE00", WC_ERR_INVALID_CHARS), "\xF0\x9F\x98\x80");
    char bytes[8];
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, u"a\xD800", 2, bytes, 8, nullptr, nullptr),
                 ERROR_NO_UNICODE_TRANSLATION);
    // Strictness is for UTF-8 and GB18030 only.
    if (!RunningUnderWine())  // Wine takes the flag with any code page
        EXPECT_FAILS(WideCharToMultiByte(1252, WC_ERR_INVALID_CHARS, u"a", 1, bytes, 8, nullptr, nullptr),
                     ERROR_INVALID_FLAGS);
}

TEST(CodePages, DefaultCharacterIsReportedOnlyWhenUsed) {
    BOOL used = -1;
    EXPECT_EQ(ToBytes(1252, u"caf\xE9 \x20AC", 0, nullptr, &used), "caf\xE9 \x80");
    EXPECT_EQ(used, FALSE);
    EXPECT_EQ(ToBytes(1252, u"a\xD55C" u"b", 0, nullptr, &used), "a?b");
    EXPECT_EQ(used, TRUE);
    used = -1;
    EXPECT_EQ(ToBytes(1252, u"\xD55C\xAE00", 0, "*", &used), "**");
    EXPECT_EQ(used, TRUE);
    EXPECT_EQ(ToBytes(949, u"x\x0E01", 0, "\xA1\xA1"), "x\xA1\xA1");  // a two-byte default
    EXPECT_EQ(ToBytes(949, u"\xD83D\xDE00!", 0, nullptr, &used), "?" "?!");  // an unmappable pair: one per unit

    // UTF-7 and UTF-8 have no default character to report.
    char bytes[8];
    if (!RunningUnderWine()) {  // Wine takes both with UTF-8
        EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"a", -1, bytes, 8, nullptr, &used), ERROR_INVALID_PARAMETER);
        EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"a", -1, bytes, 8, "?", nullptr), ERROR_INVALID_PARAMETER);
    }
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF7, 0, u"a", -1, bytes, 8, "?", nullptr), ERROR_INVALID_PARAMETER);
}

TEST(CodePages, TextRoundTrips) {
    struct {
        UINT codePage;
        std::u16string wide;
        std::string bytes;
        bool inWine = true;  // Wine lacks EUC-KR and GB18030
    } cases[] = {
        // 한국어 text 똠 (an extended syllable) \ .
        {949, u"\xD55C\xAD6D\xC5B4 text \xB620 \\", "\xC7\xD1\xB1\xB9\xBE\xEE text \x8C\x63 \\"},
        {51949, u"\xD55C", "\xC7\xD1", false},
        {1361, u"\xD55C\xAD6D\xC5B4", "\xD0\x65\x8A\x82\xB4\xE1"},
        // 日本語 ソ表 ｱ a\b: ソ and 表 end in the byte 0x5C, which is no backslash there.
        {932, u"\x65E5\x672C\x8A9E \x30BD\x8868 \xFF71 a\\b", "\x93\xFA\x96\x7B\x8C\xEA \x83\x5C\x95\x5C \xB1 a\\b"},
        {20932, u"\x65E5", "\xC6\xFC"},
        {936, u"\x4E2D\x6587", "\xD6\xD0\xCE\xC4"},
        {950, u"\x7E41\x9AD4", "\xC1\x63\xC5\xE9"},
        {54936, u"\xD83D\xDE00", "\x94\x39\xFC\x36", false},  // GB18030 has every character: a pair is four bytes
        {CP_UTF8, u"\x20AC\xD83D\xDE00", "\xE2\x82\xAC\xF0\x9F\x98\x80"},
    };
    for (const auto& c : cases) {
        if (!c.inWine && RunningUnderWine()) continue;
        EXPECT_EQ(ToBytes(c.codePage, c.wide), c.bytes) << c.codePage;
        EXPECT_EQ(ToWide(c.codePage, c.bytes), c.wide) << c.codePage;
    }
    // UTF-16 and UTF-32 are code pages of managed programs only.
    for (UINT codePage : {1200u, 1201u, 12000u, 12001u})
        EXPECT_FAILS(MultiByteToWideChar(codePage, 0, "a\0", 2, nullptr, 0), ERROR_INVALID_PARAMETER);

    std::u16string mixed = u"Hi \xD55C\xAE00 + 1";
    EXPECT_EQ(ToWide(CP_UTF7, ToBytes(CP_UTF7, mixed)), mixed);
    // In UTF-7 too a terminator stays one zero.
    char bytes[16];
    EXPECT_EQ(WideCharToMultiByte(CP_UTF7, 0, u"\xD55C", -1, bytes, 16, nullptr, nullptr), 6);
    EXPECT_EQ(std::string(bytes, 6), "+1Vw-\0"s);
    WCHAR wide[4];
    EXPECT_EQ(MultiByteToWideChar(CP_UTF7, 0, "+1Vw", -1, wide, 4), 2);
    EXPECT_EQ(std::u16string(wide, 2), u"\xD55C\0"s);
}

TEST(CodePages, LongTextCrossesInternalChunks) {
    std::u16string text;
    for (int i = 0; i < 3000; ++i) text += (i % 7 == 0) ? u'.' : static_cast<WCHAR>(0xAC00 + i % 11172);
    EXPECT_EQ(ToWide(CP_UTF8, ToBytes(CP_UTF8, text + u"\xD83D\xDE00")), text + u"\xD83D\xDE00");
    std::string cp949 = ToBytes(949, text);
    EXPECT_EQ(cp949.size(), 3000u * 2 - 3000u / 7 - 1);
    EXPECT_EQ(ToWide(949, cp949), text);
}

TEST(CodePages, AnsiCodePageFollowsTheSystemLanguage) {
    struct {
        const char* lcid;
        const char *ansi, *oem;
    } cases[] = {
        {"0x412", "949", "949"}, {"0x411", "932", "932"},  {"0x804", "936", "936"},   {"0x1004", "936", "936"},
        {"0x404", "950", "950"}, {"0xC04", "950", "950"},  {"0x1404", "950", "950"},  {"0x409", "1252", "437"},
        {"0x407", "1252", "437"},
    };
    for (const auto& c : cases) {
        // On POSIX the language alone decides; on Windows each case is checked in the run of its locale.
        ScopedEnv acp("ZEL_ACP", std::nullopt), oemcp("ZEL_OEMCP", std::nullopt);
        zeltest::SystemLocale locale({.systemLcid = c.lcid});
        if (!locale.active()) continue;
        EXPECT_EQ(GetACP(), std::stoul(c.ansi)) << c.lcid;
        EXPECT_EQ(GetOEMCP(), std::stoul(c.oem)) << c.lcid;
    }

    {
        zeltest::SystemLocale korean({.acp = "949"});
        if (korean.active()) {
            EXPECT_EQ(GetACP(), 949u);
            EXPECT_EQ(ToWide(CP_ACP, "\xC7\xD1"), u"\xD55C");
            EXPECT_EQ(ToWide(CP_THREAD_ACP, "\xC7\xD1"), u"\xD55C");
            ZelAnsiArg arg = ZelPlatformAnsiToWide("\xC7\xD1\xB1\xB9");
            EXPECT_FALSE(arg.null);
            EXPECT_EQ(arg.text, u"\xD55C\xAD6D");
            EXPECT_EQ(ZelPlatformWideToAnsi(u"\xD55C\xAD6D"), "\xC7\xD1\xB1\xB9");
        }
    }
    {
        zeltest::SystemLocale western({.acp = "1252", .oemcp = "437"});
        if (western.active()) {
            EXPECT_EQ(ToWide(CP_OEMCP, "\x82"), u"\xE9");
            EXPECT_EQ(ZelPlatformAnsiToWide("caf\xE9").text, u"caf\xE9");
            EXPECT_EQ(ZelPlatformWideToAnsi(u"\xD55C"), "?");
        }
    }
#ifndef _WIN32  // the POSIX layer's own settings over the language
    {
        ScopedEnv system("ZEL_SYSTEM_LCID", std::string("0x409"));
        ScopedEnv korean("ZEL_ACP", std::string("949")), oem("ZEL_OEMCP", std::string("850"));
        EXPECT_EQ(GetACP(), 949u);
        EXPECT_EQ(GetOEMCP(), 850u);
        // Not a number, or no code page that converts: the language decides.
        for (const char* bad : {"949x", "4242"}) {
            ScopedEnv override("ZEL_ACP", std::string(bad));
            EXPECT_EQ(GetACP(), 1252u) << bad;
        }
    }
#endif
    EXPECT_TRUE(ZelPlatformAnsiToWide(nullptr).null);
    EXPECT_EQ(ZelPlatformAnsiToWide(nullptr).get(), nullptr);
    EXPECT_EQ(ZelPlatformAnsiToWide("").text, u"");
    EXPECT_EQ(ZelPlatformWideToAnsi(nullptr), "");
}

TEST(CodePages, ThreadsConvertIndependently) {
    const std::u16string texts[] = {u"\x65E5\x672C\x8A9E", u"\xD55C\xAD6D\xC5B4"};
    std::vector<int> failures(4, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            UINT page = t % 2 ? 949 : 932;
            for (int i = 0; i < 500; ++i) {
                std::string bytes = ToBytes(page, texts[t % 2]);
                failures[t] += bytes.size() != 6 || ToWide(page, bytes) != texts[t % 2];
            }
        });
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}

}  // namespace
