#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

std::vector<std::u16string> Split(const std::u16string& line) {
    int count = -1;
    LPWSTR* arguments = CommandLineToArgvW(line.c_str(), &count);
    std::vector<std::u16string> result;
    if (!arguments) return result;
    for (int i = 0; i < count; ++i) result.emplace_back(arguments[i]);
    EXPECT_EQ(arguments[count], nullptr);
    EXPECT_EQ(LocalFree(arguments), nullptr);
    return result;
}

using Arguments = std::vector<std::u16string>;

TEST(CommandLine, SplitsByTheWin32Rules) {
    const struct {
        const char16_t* line;
        Arguments expected;
    } cases[] = {
        {u"prog a  b", {u"prog", u"a", u"b"}},
        {u"\"c:\\Program Files\\x.exe\" arg", {u"c:\\Program Files\\x.exe", u"arg"}},
        {u"c:\\dir\\\\prog.exe\\\" x", {u"c:\\dir\\\\prog.exe\\\"", u"x"}},  // no escapes in the name
        {u"prog \"a b\"\tc", {u"prog", u"a b", u"c"}},
        {u"prog a\\\\\\\"b", {u"prog", u"a\\\"b"}},            // 2n+1 backslashes: a literal quote
        {u"prog a\\\\\\\\\"b c\"", {u"prog", u"a\\\\b c"}},   // 2n backslashes: the quote opens
        {u"prog a\\b\\\\c", {u"prog", u"a\\b\\\\c"}},         // backslashes alone stay
        {u"prog \"a\"\"b\" \"\"", {u"prog", u"a\"b \""}},  // "" inside quotes: a quote, and the quotes end
        {u"prog \"a\"\"\"b c\"", {u"prog", u"a\"b c"}}, {u"prog \"\" x", {u"prog", u"", u"x"}},
        {u"prog   ", {u"prog"}},
        {u" lead", {u"", u"lead"}},
    };
    for (const auto& c : cases) EXPECT_EQ(Split(c.line), c.expected) << std::string(c.line, c.line + 0);
}

TEST(CommandLine, AnEmptyLineGivesTheExecutable) {
    WCHAR executable[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, executable, MAX_PATH);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(Split(u""), Arguments{std::u16string(executable, length)});
    // Null pointers, which the documentation leaves open: no count refuses, no line is an empty
    // one. Wine dereferences them (README, "Windows").
    if (zeltest::RunningUnderWine()) return;
    int count = 0;
    EXPECT_EQ(CommandLineToArgvW(u"x", nullptr), nullptr);
    LPWSTR* none = CommandLineToArgvW(nullptr, &count);
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(count, 1);
    GlobalFree(none);
}

// In a child started with awkward arguments, the line splits back into exactly the arguments.
TEST(CommandLine, TheProcessLineSplitsBackIntoItsArguments) {
    const std::vector<std::string> awkward = {"plain", "two words", "quote\"inside", "trailing\\", "\\\\server\\x y\\",
                                              "", "tab\there", "한글"};
    if (getenv("ZEL_TEST_COMMAND_LINE_CHILD")) {
        const int count = crt::ArgumentCount();
        const Arguments split = Split(GetCommandLineW());
        ASSERT_EQ(static_cast<int>(split.size()), count);
        ASSERT_GE(count, static_cast<int>(awkward.size()));
        for (int i = 0; i < count; ++i) EXPECT_EQ(ZelPlatformWideToAnsi(split[i].c_str()), crt::Argument(i));
        const Arguments tail(split.end() - static_cast<long>(awkward.size()), split.end());
        for (size_t i = 0; i < awkward.size(); ++i) EXPECT_EQ(ZelPlatformWideToUtf8(tail[i]), awkward[i]);
        EXPECT_EQ(crt::Argument(count), nullptr);
        EXPECT_EQ(crt::Argument(-1), nullptr);
        return;
    }
    std::vector<std::string> arguments = {"--gtest_filter=CommandLine.TheProcessLineSplitsBackIntoItsArguments"};
    arguments.insert(arguments.end(), awkward.begin(), awkward.end());
    const auto result = zeltest::RunProgram("/proc/self/exe", arguments, {{"ZEL_TEST_COMMAND_LINE_CHILD", "1"}});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

}  // namespace
