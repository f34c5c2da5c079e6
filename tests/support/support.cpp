#include "support/support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "platform/win32.h"
#include "support/system.h"

namespace zeltest {

TempDir::TempDir() {
    std::random_device random;
    const std::filesystem::path base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
        const std::filesystem::path candidate = base / ("zeltest-" + std::to_string(random()));
        if (std::filesystem::create_directory(candidate)) path_ = candidate.generic_string();
    }
    if (path_.empty()) throw std::runtime_error("cannot make a temporary directory");
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

ScopedEnv::ScopedEnv(const std::string& name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = getenv(name.c_str())) old_ = old;
    SetEnvironment(name, value);
}

ScopedEnv::~ScopedEnv() { SetEnvironment(name_, old_); }

SystemLocale::SystemLocale(const Settings& settings) {
#ifdef _WIN32
    auto matches = [](const std::optional<std::string>& wanted, unsigned long actual) {
        return !wanted || std::stoul(*wanted, nullptr, 0) == actual;
    };
    active_ = matches(settings.acp, GetACP()) && matches(settings.oemcp, GetOEMCP()) &&
              matches(settings.lcid, GetUserDefaultLCID()) && matches(settings.systemLcid, GetSystemDefaultLCID());
#else
    if (settings.acp) acp_.emplace("ZEL_ACP", settings.acp);
    if (settings.oemcp) oemcp_.emplace("ZEL_OEMCP", settings.oemcp);
    if (settings.lcid) lcid_.emplace("ZEL_LCID", settings.lcid);
    if (settings.systemLcid) systemLcid_.emplace("ZEL_SYSTEM_LCID", settings.systemLcid);
#endif
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

ProgramResult RunTestsInNewProcess(const std::string& filter,
                                   const std::map<std::string, std::optional<std::string>>& env) {
    // A rerun never starts another: where the system ignores the settings that the rerun is for,
    // the test fails at once instead of starting itself again and again.
    static constexpr char kRerun[] = "ZEL_TEST_RERUN";
    if (getenv(kRerun)) return {-1, {}, "a test run again in a new process asked for another one"};
    std::map<std::string, std::optional<std::string>> rerun = env;
    rerun[kRerun] = "1";
    return RunProgram(OwnProgramPath(), {"--gtest_filter=" + filter}, rerun);
}

}  // namespace zeltest
