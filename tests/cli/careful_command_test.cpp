// zel under misuse and bad input: every refusal says why and exits with 1, every misuse says what
// was wrong and exits with 2, and nothing is cut on the way to the library.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "cli/zel_runs.h"
#include "support/support.h"

using zelcli::Zel;
using zeltest::ProgramResult;

namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(CarefulCommand, ADirectoryAsInputIsRefusedWithTheSystemsReason) {
    zeltest::TempDir dir;
    const std::string d = dir.path();
    const std::vector<std::vector<std::string>> runs = {
        {"utf", "--from", "utf8", "--to", "utf16", d}, {"conv", "-f", "949", "-t", "utf-8", d},
        {"sortkey", "--sort", d},                      {"reg", "dump", d},
        {"reg", "load", d},                            {"ini", "import", d, dir.file("x.ini")},
        {"ini", "list", d},                            {"base64", "encode"}};
    for (const auto& args : runs) {
        // base64 reads its standard input, here the directory too.
        ProgramResult r = args[0] == "base64" ? zelcli::ZelInShell("exec", args, "< " + d) : Zel(args);
        EXPECT_EQ(r.status, 1) << args[0] << " " << args[1];
        EXPECT_TRUE(Has(r.err, "zel " + args[0] + ": cannot read ") && Has(r.err, ": Is a directory\n")) << r.err;
    }
}

TEST(CarefulCommand, WhatWouldMeetTheLibrarysBoundsIsRefusedNamingTheBound) {
    zeltest::TempDir dir;
    const std::string longFile = dir.file(std::string(250, 'f'));  // beyond 252 with the directory
    const std::string key = "HKCU\\Software\\ZelCareful";
    std::string longKey = key;
    while (longKey.size() < 655) longKey += "\\" + std::string(100, 'k');
    std::string deepKey = key + "\\Deep";
    for (int i = 0; i < 3; ++i) deepKey += "\\" + std::string(90, 'd');
    ASSERT_EQ(Zel({"reg", "set", deepKey, "v", "sz", "x"}).status, 0);
    struct Case {
        std::vector<std::string> args;
        std::string bound;
    } cases[] = {
        {{"ini", "add", longFile, "S"}, "at most 252"},
        {{"reg", "save", key, longFile}, "at most 252"},
        {{"reg", "set", longKey, "v", "sz", "x"}, "at most 519"},
        {{"reg", "get", longKey, "v"}, "at most 519"},
        {{"reg", "set", key + "\\" + std::string(256, 'n'), "v", "sz", "x"}, "at most 255"},
        {{"reg", "set", key, std::string(300, 'v'), "sz", "x"}, "at most 259"},
        {{"reg", "save", key + "\\Deep", dir.file("deep.reg")}, "259 bytes"},
        {{"ini", "add", dir.file("a.ini"), std::string(256, 's')}, "at most 257"},
        {{"path", "abs", std::string(260, 'p')}, "at most 259"},
        {{"path", "-D", "Data=" + std::string(260, 'p'), "list"}, "at most 259"},
        {{"path", "abs", "${Temp}\\" + std::string(250, 'p')}, "as its macros expand"},
        {{"path", "temp", std::string(250, 'p')}, "a temporary name"},
        {{"profile", "get", std::string(260, 'p'), "S", "K"}, "at most 259"},
        {{"sys", "serial", std::string(260, 'p')}, "at most 259"},
    };
    for (const Case& c : cases) {
        ProgramResult r = Zel(c.args);
        EXPECT_EQ(r.status, 1) << c.args[0] << " " << c.args[1];
        EXPECT_TRUE(Has(r.err, c.bound)) << r.err;
    }
    EXPECT_TRUE(zelcli::Snapshot(dir.path()).empty());
}

TEST(CarefulCommand, IniImportTakesEveryLineEndAndEncoding) {
    zeltest::TempDir dir;
    auto utf16 = [](const std::string& ascii, bool little, bool mark) {
        std::string bytes = mark ? (little ? "\xFF\xFE" : "\xFE\xFF") : "";
        for (char c : ascii) bytes += little ? std::string{c, '\0'} : std::string{'\0', c};
        return bytes;
    };
    const std::string lf = "; note\n[S]\nk=old\n[T]\nt=after\n";
    std::string cr = lf, crlf;
    for (char& c : cr) c = c == '\n' ? '\r' : c;
    for (char c : lf) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    const std::string texts[] = {lf, cr, crlf, "\xEF\xBB\xBF" + lf, utf16(lf, true, true), utf16(cr, false, true),
                                 utf16(crlf, true, false), utf16(lf, false, false)};
    for (const std::string& text : texts) {
        zeltest::WriteFile(dir.file("in.txt"), text);
        ProgramResult imported = Zel({"ini", "import", dir.file("in.txt"), dir.file("x.ini")});
        ASSERT_EQ(imported.status, 0) << imported.err;
        EXPECT_EQ(Zel({"ini", "list", dir.file("x.ini")}).out, "[S]\n  k=old\n[T]\n  t=after\n") << text;
    }
}

TEST(CarefulCommand, ImportAndExportLeaveOtherFilesAloneAndNoCopiesBehind) {
    zeltest::TempDir dir;
    for (const char* name : {"x.ini.import", "out.txt.export"}) zeltest::WriteFile(dir.file(name), "keep");
    zeltest::WriteFile(dir.file("in.txt"), "[S]\nk=v\n");
    ASSERT_EQ(Zel({"ini", "import", dir.file("in.txt"), dir.file("x.ini")}).status, 0);
    ASSERT_EQ(Zel({"ini", "export", dir.file("x.ini"), dir.file("out.txt")}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", "HKCU\\Software\\ZelCareful\\Tree", "n", "dword", "1"}).status, 0);
    ASSERT_EQ(Zel({"reg", "save", "HKCU\\Software\\ZelCareful\\Tree", dir.file("t.reg")}).status, 0);
    EXPECT_EQ(zelcli::Snapshot(dir.path()).size(), 6u);  // no copy left beside a file
    EXPECT_EQ(zeltest::ReadFile(dir.file("x.ini.import")), "keep");
    EXPECT_EQ(zeltest::ReadFile(dir.file("out.txt")), "[S]\r\nk=v\r\n\r\n");
    // A value that the file form can't carry is refused by the check, the old file kept.
    const std::string before = zeltest::ReadFile(dir.file("x.ini"));
    ProgramResult lineEnd = Zel({"ini", "set", dir.file("x.ini"), "S", "k", "two\r\nlines"});
    EXPECT_EQ(lineEnd.status, 1);
    EXPECT_TRUE(Has(lineEnd.err, "does not read back")) << lineEnd.err;
    EXPECT_EQ(zeltest::ReadFile(dir.file("x.ini")), before);
}

TEST(CarefulCommand, MisuseSaysWhatWasWrongThenTheUsageOnStandardError) {
    const std::vector<std::vector<std::string>> misuses = {
        {},           {"utf", "--from"},  {"utf", "--bogus"},  {"conv", "-f", "949"}, {"ini"},
        {"ini", "get", "f"}, {"reg", "frob", "x"}, {"kchar", "sideways"}, {"path", "-D"}, {"sys", "muldiv", "1"},
        {"modules", "x"}, {"sortkey", "--sort", "a", "b"}, {"hex", "to", "--help"}, {"--help", "x"}, {"profile"}};
    for (const auto& args : misuses) {
        ProgramResult r = Zel(args);
        EXPECT_EQ(r.status, 2) << (args.empty() ? "" : args[0]);
        EXPECT_EQ(r.out, "");
        const size_t firstLineEnd = r.err.find('\n');
        ASSERT_NE(firstLineEnd, std::string::npos);
        EXPECT_EQ(r.err.rfind("zel", 0), 0u) << r.err;
        EXPECT_TRUE(Has(r.err.substr(firstLineEnd), "Usage: zel")) << r.err;
    }
    for (const char* command : {"ini", "reg", "utf"}) {
        ProgramResult help = Zel({command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_EQ(help.out.rfind(std::string("Usage: zel ") + command, 0), 0u);
    }
    ProgramResult help = Zel({"--help"});
    EXPECT_TRUE(Has(help.out, "Exit status: 0 done; 1 failed or refused")) << help.out;
}

// A number out of its form or range is a misuse; text that is no U+ form, or a refused name, a
// failure.
TEST(CarefulCommand, NumbersAreReadWholeInTheirBaseAndRange) {
    const std::string key = "HKCU\\Software\\ZelCareful";
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out;
    } cases[] = {
        {{"sys", "muldiv", "x", "y", "z"}, 2, ""},           {{"sys", "muldiv", "7", "1", "-2"}, 0, "-3\n"},
        {{"sys", "muldiv", "2147483648", "1", "1"}, 2, ""},  {{"sys", "muldiv", "+1", "1", "1"}, 2, ""},
        {{"path", "abbrev", "c:\\a\\b", "abc"}, 2, ""},      {{"path", "abbrev", "c:\\a\\b", "0"}, 2, ""},
        {{"sys", "time", "-1"}, 2, ""},                       {{"sys", "time", "0x7FFFFFFFFFFFFFFF0"}, 2, ""},
        {{"kchar", "from", "-1"}, 2, ""},                     {{"kchar", "from", "10000"}, 2, ""},
        {{"kchar", "from", "0x41", "42"}, 0, "AB\n"},        {{"reg", "set", key, "d", "dword", "-1"}, 2, ""},
        {{"reg", "set", key, "d", "dword", " 1"}, 2, ""},     {{"conv", "-f", "0x3B5", "-t", "utf-8"}, 2, ""},
        {{"error", "0x2 "}, 2, ""},                           {{"hex", "from", "U+12345"}, 1, ""},
        {{"hex", "from", "U+0041"}, 0, "A\n"},               {{"path", "-D", "ThisNameIsTooLong=c:\\x", "list"}, 1, ""},
    };
    for (const Case& c : cases) {
        ProgramResult r = Zel(c.args, "A");
        EXPECT_EQ(r.status, c.status) << c.args[0] << " " << c.args[1] << " " << r.err;
        if (c.status == 0) {
            EXPECT_EQ(r.out, c.out) << c.args[0];
        } else {
            EXPECT_EQ(r.out, "") << c.args[0];
            EXPECT_EQ(r.err.rfind("zel " + c.args[0] + ": ", 0), 0u) << r.err;
        }
    }
}

TEST(CarefulCommand, OptionsAreCheckedBeforeStandardInputIsRead) {
    zeltest::TempDir dir;
    ASSERT_EQ(zeltest::RunProgram("/usr/bin/mkfifo", {dir.file("fifo")}).status, 0);
    // Read and write on a pipe of its own: standard input never ends.
    for (const auto& args : std::vector<std::vector<std::string>>{{"utf", "--from", "utf8", "--to", "utf9"},
                                                                   {"conv", "-f", "949", "-t", "x1"}}) {
        ProgramResult r = zelcli::ZelInShell("exec timeout -s KILL 5", args, "<> " + dir.file("fifo"));
        EXPECT_NE(r.status, -1);
        EXPECT_TRUE(r.status == 1 || r.status == 2) << r.status << r.err;
    }
}

TEST(CarefulCommand, FailuresOfTheSystemCarryItsText) {
    zeltest::TempDir dir;
    ProgramResult profile = Zel({"profile", "set", dir.file("none/x.ini"), "S", "K", "V"});
    EXPECT_EQ(profile.status, 1);
    EXPECT_TRUE(Has(profile.err, "could not write " + dir.file("none/x.ini") + ": ")) << profile.err;
    EXPECT_FALSE(Has(profile.err, ": \n"));
    ProgramResult full = zelcli::ZelInShell("exec", {"--version"}, "> /dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(Has(full.err, "No space left on device")) << full.err;
}

TEST(CarefulCommand, VersionTellsTheLibraryAndTheDataItCarries) {
    ProgramResult version = Zel({"--version"});
    ASSERT_EQ(version.status, 0) << version.err;
    for (const char* line : {"zel 0.1.0\n", "library ZelBL70KT 0.1.0", "character properties Unicode 3.2.0\n",
                             "code tables 320 (Unicode 3.2.0):", "resources libZelBL70KT."})
        EXPECT_TRUE(Has(version.out, line)) << line << "\n" << version.out;
}

// Sorting an 8 MB input holds about 4 bytes a byte at most: the lines go to runs on disk.
TEST(CarefulCommand, SortingLinesKeepsMemoryBounded) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's shadow memory hides the program's own";
#endif
    zeltest::TempDir dir;
    std::string input;
    const char* words[] = {"가나다", "abc", "한국어 텍스트", "ㄱ", "zeta", "힣", "옛한글"};
    for (unsigned i = 0; input.size() < (8u << 20); ++i)
        input += std::string(words[i * 7919 % 7]) + std::to_string(i % 1000) + "\n";
    zeltest::WriteFile(dir.file("in.txt"), input);
    const int megabytes = zeltest::RunInChild([&] {
        ProgramResult sorted = Zel({"sortkey", "--sort", dir.file("in.txt")});
        if (sorted.status != 0 || sorted.out.size() != input.size()) return 255;
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return static_cast<int>(usage.ru_maxrss / 1024);
    });
    EXPECT_LT(megabytes, 40);  // the input is 8 MB; a copy of it in memory with its keys was 147 MB
    ProgramResult small = Zel({"sortkey", "--sort"}, "하\n가\nb\na\n\n");
    EXPECT_EQ(small.out, "\n가\n하\na\nb\n");
}

}  // namespace
