// Helpers that the test suites share: temporary directories, environment overrides and child
// processes.
#ifndef ZEL_TESTS_SUPPORT_H
#define ZEL_TESTS_SUPPORT_H

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zeltest {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
public:
    TempDir();
    // A directory that a test run again in a new process for RunInChild (Windows) finds as the
    // first process made it, as a forked child would; the first process removes it.
    struct SharedWithReruns {};
    explicit TempDir(SharedWithReruns);
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    void Make();
    std::string path_;
    bool owned_ = true;
};

// Sets (or with nullopt unsets) an environment variable and restores the old value at scope end.
class ScopedEnv {
public:
    ScopedEnv(const std::string& name, const std::optional<std::string>& value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

// Runs body in a forked child and gives its exit status, or -1 when it did not exit normally.
int RunInChild(const std::function<int()>& body);

struct ProgramResult {
    int status = -1;  // exit status, or -1 when the program did not exit normally
    std::string out;
    std::string err;
    bool skipped = false;  // the system cannot give the run what it asked for; err says why
};

// Runs a program with the given arguments and environment changes (nullopt removes a variable),
// feeding it stdinText, and collects what it writes.
ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& args,
                         const std::map<std::string, std::optional<std::string>>& env = {},
                         const std::string& stdinText = {});

// Runs the tests that filter names in a new process of this test program, with the environment
// changes in force from its start: for settings that the library reads once per process. On
// Windows a 95-family system (ZEL_OS_VERSION "1.x.y") is the program's copy that Wine reports as
// one, in the current ANSI code page; where that cannot be had the result is `skipped`.
ProgramResult RunTestsInNewProcess(const std::string& filter,
                                   const std::map<std::string, std::optional<std::string>>& env);

// The system's locale as a test needs it: ANSI and OEM code page, user and system locale, given as
// the POSIX layer's knobs take them ("949", "0x412"). On POSIX the object sets the knobs for its
// life, and the layer reads them at every call. Windows fixes them when a process starts (under
// Wine from its LANG; the suite runs in several), so there the object only compares, and
// `active()` is false in a process of another locale: the case is checked in the run of its own.
struct LocaleSettings {
    std::optional<std::string> acp = {}, oemcp = {}, lcid = {}, systemLcid = {};
};
class SystemLocale {
public:
    explicit SystemLocale(const LocaleSettings& wanted);
    bool active() const { return active_; }

private:
    std::vector<std::unique_ptr<ScopedEnv>> knobs_;
    bool active_ = true;
};

// Paths in these helpers are UTF-8 on both systems, as the library's ZelPlatformPathToSystem gives
// them; the system's narrow calls would read them in the ANSI code page on Windows.
std::filesystem::path SystemPath(const std::string& utf8);
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
// Whether a file or directory of that name exists, asked of the system past the library.
bool Exists(const std::string& path);

// Where every TempDir of a run lies: the test main's own directory, which a rerun of the program in
// a new process inherits, so that what a rerun leaves behind goes with the first process's.
inline constexpr char kTestTemp[] = "ZEL_TEST_TEMP";

// The registry directory and runtime directory that the test main set up for this run.
const std::string& TestRoot();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_H
