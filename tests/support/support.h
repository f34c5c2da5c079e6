// Helpers that the test suites share: temporary directories, environment overrides and child
// processes.
#ifndef ZEL_TESTS_SUPPORT_H
#define ZEL_TESTS_SUPPORT_H

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

// The system's locale for a test: on POSIX set through the layer's variables for the object's
// life; on Windows only compared with the process's own, and active() tells whether it matches.
class SystemLocale {
public:
    struct Settings {
        std::optional<std::string> acp{}, oemcp{}, lcid{}, systemLcid{};
    };
    explicit SystemLocale(const Settings& settings);
    bool active() const { return active_; }

private:
    std::optional<ScopedEnv> acp_, oemcp_, lcid_, systemLcid_;
    bool active_ = true;
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

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);

// The registry directory and runtime directory that the test main set up for this run.
const std::string& TestRoot();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_H
