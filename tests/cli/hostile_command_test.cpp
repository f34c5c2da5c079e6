// zel against a hostile user: every subcommand with arguments missing, added, or replaced by a
// directory, an empty, binary, big or damaged file, a long path or a bad number; a full disk; and
// kills in the middle of a save. Never a crash, a hang, a refusal with status 0, or a file
// changed by a command that failed; after a kill the old file or the new one, whole.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "cli/zel_runs.h"
#include "support/support.h"

using zelcli::Zel;
using zeltest::ProgramResult;

namespace {

std::string Utf16Ini(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    for (char c : ascii) bytes += std::string{c, '\0'};
    return bytes;
}

// A registry file: the key path, then sections of a path and values of a name, type and data.
std::string RegistryFile(const std::string& key, const std::vector<std::string>& sections, int values,
                         size_t dataBytes = 16) {
    auto number = [](size_t n) { return std::string{char(n), char(n >> 8), char(n >> 16), char(n >> 24)}; };
    auto text = [&](const std::string& t) { return number(t.size()) + t; };
    std::string bytes = text(key);
    for (const std::string& section : sections) {
        bytes += text(section) + number(static_cast<size_t>(values));
        for (int i = 0; i < values; ++i)
            bytes += text("value" + std::to_string(i)) + number(3) + text(std::string(dataBytes, 'd'));
    }
    return bytes;
}

// INI text of about bytes bytes, a section with one entry after another.
std::string ManySections(size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i) text += "[S" + std::to_string(i) + "]\nk=value " + std::to_string(i) + "\n";
    return text;
}

// The directory that zel runs in for a while: names without a directory land there.
struct WorkingDirectory {
    std::filesystem::path old = std::filesystem::current_path();
    explicit WorkingDirectory(const std::string& path) { std::filesystem::current_path(path); }
    ~WorkingDirectory() { std::filesystem::current_path(old); }
};

struct Fixture {
    zeltest::TempDir dir;
    WorkingDirectory cwd{dir.path()};
    std::string goodText, goodIni, goodReg, profile, bigIni;
    std::vector<std::string> kinds;

    Fixture() {
        goodText = dir.file("good.txt");
        goodIni = dir.file("good.ini");
        goodReg = dir.file("good.reg");
        profile = dir.file("p.ini");
        zeltest::WriteFile(goodText, "[S]\nk=한국어\n");
        zeltest::WriteFile(goodIni, Utf16Ini("[S]\r\nk=v\r\n"));
        zeltest::WriteFile(goodReg, RegistryFile("Software\\ZelHostile\\Tree", {"Tree\\A", "Tree"}, 2));
        zeltest::WriteFile(profile, "[S]\nk=v\n");
        std::filesystem::create_directory(dir.file("sub"));
        zeltest::WriteFile(dir.file("empty"), "");
        std::string binary(4096, '\0');
        std::mt19937 random(7);
        for (char& c : binary) c = static_cast<char>(random());
        zeltest::WriteFile(dir.file("binary"), binary);
        std::string big;
        while (big.size() < (3u << 20)) big += "[섹션 " + std::to_string(big.size()) + "]\nid=값 value\n";
        zeltest::WriteFile(dir.file("big"), big);
        const std::string deep = dir.file(std::string(200, 'd'));
        std::filesystem::create_directory(deep);
        zeltest::WriteFile(deep + "/" + std::string(100, 'f') + ".ini", Utf16Ini("[S]\r\nk=v\r\n"));
        const std::string reg = zeltest::ReadFile(goodReg);
        zeltest::WriteFile(dir.file("cut.reg"), reg.substr(0, reg.size() / 2));
        zeltest::WriteFile(dir.file("huge.reg"), std::string("\xFF\xFF\xFF\xFF", 4) + "x");
        zeltest::WriteFile(dir.file("broken.ini"), Utf16Ini("[S\r\nk=") + "\xFF");
        zeltest::WriteFile(dir.file("longsection.ini"), Utf16Ini("[" + std::string(300, 's') + "]\r\nk=v\r\n"));
        std::string longKey = "HKCU\\Software\\ZelHostile";
        while (longKey.size() < 655) longKey += "\\" + std::string(100, 'k');
        kinds = {dir.file("sub"),      dir.file("empty"),         dir.file("binary"),
                 dir.file("big"),      deep + "/" + std::string(100, 'f') + ".ini",
                 dir.file("missing"),  dir.file("cut.reg"),       dir.file("huge.reg"),
                 dir.file("broken.ini"), dir.file("longsection.ini"), longKey,
                 "-1",                 "x",                       "",
                 "0x",                 "\xFF\xFE",                "99999999999999999999"};
    }
};

// Runs one invocation and checks what every run of zel must hold.
void Check(const Fixture& f, const std::vector<std::string>& args) {
    std::string shown;
    for (const std::string& arg : args) shown += " [" + arg.substr(0, 40) + "]";
    const auto before = zelcli::Snapshot(f.dir.path());
    ProgramResult r = Zel(args, "", 20);
    ASSERT_TRUE(r.status >= 0 && r.status <= 2) << "crash or hang, status " << r.status << ":" << shown << "\n" << r.err;
    // A sanitizer's report exits with 1 too: it counts as a crash.
    ASSERT_EQ(r.err.find("Sanitizer"), std::string::npos) << shown << "\n" << r.err;
    ASSERT_EQ(r.err.find("runtime error:"), std::string::npos) << shown << "\n" << r.err;
    if (r.status == 0) {
        EXPECT_EQ(r.err, "") << "a message with status 0:" << shown;
        return;
    }
    // zel defined answers by its status: 1 and "0" for a name that is not defined.
    if (args[0] == "defined" && r.status == 1 && r.out == "0\n") return;
    EXPECT_NE(r.err, "") << "a failure without a message:" << shown;
    if (r.status == 2) {
        EXPECT_NE(r.err.find("Usage: zel"), std::string::npos) << shown;
    }
    EXPECT_TRUE(before == zelcli::Snapshot(f.dir.path())) << "a failed command changed a file:" << shown;
}

// Under a sanitizer each run is slow: every third replacement is tried, a different third for each
// invocation, so that each kind still meets each subcommand.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kStride = 3;
#else
constexpr size_t kStride = 1;
#endif

TEST(HostileCommand, BadInvocationsOfEverySubcommand) {
    Fixture f;
    const std::string key = "HKCU\\Software\\ZelHostile\\Tree";
    ASSERT_EQ(Zel({"reg", "set", key, "n", "sz", "v"}).status, 0);
    const std::vector<std::vector<std::string>> valid = {
        {"utf", "--from", "utf8", "--to", "utf16", f.goodText}, {"conv", "-f", "949", "-t", "utf-8", f.goodText},
        {"sortkey", "--sort", f.goodText}, {"sortkey", "가나"}, {"reg", "dump", f.goodReg}, {"reg", "load", f.goodReg},
        {"reg", "save", key, f.dir.file("out.reg")}, {"reg", "set", key, "n", "dword", "5"}, {"reg", "get", key, "n"},
        {"reg", "list", key}, {"reg", "delete", key, "n"}, {"ini", "list", f.goodIni}, {"ini", "get", f.goodIni, "S", "k"},
        {"ini", "set", f.goodIni, "S", "k", "v"}, {"ini", "add", f.goodIni, "S", "k2", "v"},
        {"ini", "remove", f.goodIni, "S", "k"}, {"ini", "import", f.goodText, f.dir.file("out.ini")},
        {"ini", "export", f.goodIni, f.dir.file("out.txt")}, {"profile", "get", f.profile, "S", "k"},
        {"profile", "set", f.profile, "S", "k", "v"}, {"profile", "sections", f.profile},
        {"path", "abs", "${Temp}\\x"}, {"path", "abbrev", "c:\\a\\b\\c.txt", "10"}, {"path", "title", "c:\\a.txt"},
        {"path", "temp", "zel", "tmp"}, {"sys", "time", "0"}, {"sys", "muldiv", "1", "2", "3"}, {"sys", "serial", "/"},
        {"kchar", "from", "41"}, {"kchar", "to", "가"}, {"hex", "from", "U+0041"}, {"hex", "to", "a"},
        {"base64", "decode", "TWFu"}, {"error", "2"}, {"kana", "full", "a"}, {"width", "half", "a"}, {"bidi", "a"},
        {"shape", "a"}, {"jamo", "ks", "가"}, {"pua", "to", "a"}, {"codetables"}, {"defined", "X"}, {"locale"},
        {"paths"}, {"modules"}, {"demo"}, {"--version"}};
    size_t combination = 0;
    for (const auto& args : valid) {
        Check(f, std::vector<std::string>(args.begin(), args.end() - (args.size() > 1 ? 1 : 0)));
        auto extra = args;
        extra.push_back("extra");
        Check(f, extra);
        for (size_t slot = 1; slot < args.size(); ++slot) {
            for (const std::string& kind : f.kinds) {
                if (++combination % kStride != 0) continue;
                auto bad = args;
                bad[slot] = kind;
                Check(f, bad);
            }
        }
    }
}

// A write that fails part way, as on a full disk, changes nothing and says so.
TEST(HostileCommand, AFullDiskLeavesTheOldFileWhole) {
    zeltest::TempDir dir;
    const std::string text = ManySections(200000);
    zeltest::WriteFile(dir.file("in.txt"), text);
    ASSERT_EQ(Zel({"ini", "import", dir.file("in.txt"), dir.file("a.ini")}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", "HKCU\\Software\\ZelHostile\\Full\\x", "v", "binary", std::string(4000, 'a')}).status, 0);
    ASSERT_EQ(Zel({"reg", "save", "HKCU\\Software\\ZelHostile\\Full", dir.file("a.reg")}).status, 0);
    // The registry file comes to about 80 KB.
    for (const char* name : {"y", "z"})
        ASSERT_EQ(Zel({"reg", "set", std::string("HKCU\\Software\\ZelHostile\\Full\\") + name, "v", "binary",
                       std::string(80000, 'b')}).status,
                  0);
    const auto before = zelcli::Snapshot(dir.path());
    // Blocks of 512 bytes: 64 KB, less than any of the new files, more than the registry's database
    // needs for its shared memory at start.
    for (const auto& args : std::vector<std::vector<std::string>>{
             {"ini", "add", dir.file("a.ini"), "Last", "k", "v"},
             {"ini", "import", dir.file("in.txt"), dir.file("a.ini")},
             {"ini", "export", dir.file("a.ini"), dir.file("in.txt")},
             {"reg", "save", "HKCU\\Software\\ZelHostile\\Full", dir.file("a.reg")}}) {
        ProgramResult r = zelcli::ZelInShell("ulimit -f 128; exec", args);
        EXPECT_EQ(r.status, 1) << args[0] << " " << args[1] << r.err;
        EXPECT_NE(r.err, "") << args[1];
        EXPECT_TRUE(before == zelcli::Snapshot(dir.path())) << args[1];
    }
}

// Kills at random moments of a save: the file is the old one or the new one, never a cut one.
TEST(HostileCommand, KillsDuringSavesLeaveTheOldOrTheNewFile) {
    zeltest::TempDir dir;
    const std::string text = ManySections(300000);
    zeltest::WriteFile(dir.file("in.txt"), text);
    ASSERT_EQ(Zel({"ini", "import", dir.file("in.txt"), dir.file("old.ini")}).status, 0);
    zeltest::WriteFile(dir.file("in.txt"), text + "[New]\nk=v\n");
    ASSERT_EQ(Zel({"ini", "import", dir.file("in.txt"), dir.file("imported.ini")}).status, 0);
    const std::string oldIni = zeltest::ReadFile(dir.file("old.ini"));
    zeltest::WriteFile(dir.file("added.ini"), oldIni);
    ASSERT_EQ(Zel({"ini", "add", dir.file("added.ini"), "Added", "k", "v"}).status, 0);

    const std::string key = "HKCU\\Software\\ZelHostile\\Killed";
    std::vector<std::string> sections;
    for (int i = 0; i < 20; ++i) sections.push_back("Killed\\K" + std::to_string(i));
    zeltest::WriteFile(dir.file("load.reg"), RegistryFile("Software\\ZelHostile\\Killed", sections, 5, 20000));
    ASSERT_EQ(Zel({"reg", "load", dir.file("load.reg")}).status, 0);
    ASSERT_EQ(Zel({"reg", "save", key, dir.file("old.reg")}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\K0", "extra", "sz", "x"}).status, 0);
    ASSERT_EQ(Zel({"reg", "save", key, dir.file("new.reg")}).status, 0);

    struct Trial {
        std::vector<std::string> args;
        std::string target, oldBytes, newBytes;
    };
    const std::string target = dir.file("target");
    const Trial trials[] = {
        {{"ini", "add", target, "Added", "k", "v"}, target, oldIni, zeltest::ReadFile(dir.file("added.ini"))},
        {{"ini", "import", dir.file("in.txt"), target}, target, oldIni, zeltest::ReadFile(dir.file("imported.ini"))},
        {{"reg", "save", key, target}, target, zeltest::ReadFile(dir.file("old.reg")), zeltest::ReadFile(dir.file("new.reg"))},
    };
    std::mt19937 random(16);
    for (const Trial& trial : trials) {
        ASSERT_NE(trial.oldBytes, trial.newBytes);
        // How long an undisturbed run takes sets the range of the kill's moment.
        zeltest::WriteFile(trial.target, trial.oldBytes);
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(Zel(trial.args).status, 0);
        const long whole =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count();
        int sawOld = 0, sawNew = 0;
        for (int i = 0; i < 50; ++i) {
            zeltest::WriteFile(trial.target, trial.oldBytes);
            zelcli::ZelKilledAfter(trial.args, static_cast<long>(random() % static_cast<unsigned long>(whole + 1)));
            const std::string now = zeltest::ReadFile(trial.target);
            ASSERT_TRUE(now == trial.oldBytes || now == trial.newBytes)
                << trial.args[0] << " " << trial.args[1] << ": a cut file of " << now.size() << " bytes";
            (now == trial.oldBytes ? sawOld : sawNew)++;
            for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
                if (entry.path().string().rfind(target + ".", 0) == 0) std::filesystem::remove(entry.path());
        }
        EXPECT_GT(sawOld, 0) << trial.args[1];
    }
}

}  // namespace
