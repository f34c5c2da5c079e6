// Helpers that the test suites share: temporary directories, environment overrides and child
// processes.
#ifndef ZEL_TESTS_SUPPORT_H
#define ZEL_TESTS_SUPPORT_H

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zeltest {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
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
};

// Runs a program with the given arguments and environment changes (nullopt removes a variable),
// feeding it stdinText, and collects what it writes.
ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& args,
                         const std::map<std::string, std::optional<std::string>>& env = {},
                         const std::string& stdinText = {});

// Runs the tests that filter names in a new process of this test program, with the environment
// changes in force from its start: for settings that the library reads once per process.
ProgramResult RunTestsInNewProcess(const std::string& filter,
                                   const std::map<std::string, std::optional<std::string>>& env);

// Paths in these helpers are UTF-8 on both systems, as the library's ZelPlatformPathToSystem gives
// them; the system's narrow calls would read them in the ANSI code page on Windows.
std::filesystem::path SystemPath(const std::string& utf8);
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
// Whether a file or directory of that name exists, asked of the system past the library.
bool Exists(const std::string& path);

// The registry directory and runtime directory that the test main set up for this run.
const std::string& TestRoot();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_H
