#include "support/support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "support/system.h"

namespace zeltest {

namespace {

// The run's own directory once the test main has made it (tests change TMP and TEMP, and a rerun
// of the program in a new process starts with their values); before that the system's.
std::filesystem::path TempBase() {
    if (const char* fixed = getenv(kTestTemp)) return SystemPath(fixed);
    return std::filesystem::temp_directory_path();
}

}  // namespace

TempDir::TempDir(SharedWithReruns) {
    if (std::optional<std::string> first = TempDirOfFirstRun()) {
        path_ = *first;
        owned_ = false;
        return;
    }
    Make();
    NoteTempDirForReruns(path_);
}

TempDir::TempDir() { Make(); }

void TempDir::Make() {
    std::random_device random;
    const std::filesystem::path base = TempBase();
    for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
        const std::filesystem::path candidate = base / ("zeltest-" + std::to_string(random()));
        if (std::filesystem::create_directory(candidate)) {
            const std::u8string utf8 = candidate.generic_u8string();
            path_.assign(utf8.begin(), utf8.end());
        }
    }
    if (path_.empty()) throw std::runtime_error("cannot make a temporary directory");
}

TempDir::~TempDir() {
    if (!owned_) return;
    std::error_code ignored;
    std::filesystem::remove_all(SystemPath(path_), ignored);
}

ScopedEnv::ScopedEnv(const std::string& name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = getenv(name.c_str())) old_ = old;
    SetEnvironment(name, value);
}

ScopedEnv::~ScopedEnv() { SetEnvironment(name_, old_); }

std::filesystem::path SystemPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(SystemPath(path), std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(SystemPath(path), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

bool Exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(SystemPath(path), ignored);
}

ProgramResult RunTestsInNewProcess(const std::string& filter,
                                   const std::map<std::string, std::optional<std::string>>& env) {
    // A rerun never starts another: where the system ignores the settings that the rerun is for,
    // the test fails at once instead of starting itself again and again.
    static constexpr char kRerun[] = "ZEL_TEST_RERUN";
    if (getenv(kRerun)) return {-1, {}, "a test run again in a new process asked for another one"};
    std::map<std::string, std::optional<std::string>> rerun = env;
    rerun[kRerun] = "1";
    std::string whyNot;
    const std::string program = ProgramForRerun(env, &whyNot);
    if (program.empty()) return {0, {}, whyNot, true};
    return RunProgram(program, {"--gtest_filter=" + filter}, rerun);
}

SystemLocale::SystemLocale(const LocaleSettings& wanted) {
    const std::pair<const char*, const std::optional<std::string>*> knobs[] = {
        {"ZEL_ACP", &wanted.acp}, {"ZEL_OEMCP", &wanted.oemcp}, {"ZEL_LCID", &wanted.lcid},
        {"ZEL_SYSTEM_LCID", &wanted.systemLcid}};
    for (const auto& [knob, value] : knobs) {
        if (!*value) continue;
        if (LocaleFixedPerProcess())
            active_ = active_ && LocaleSettingIs(knob, **value);
        else
            knobs_.push_back(std::make_unique<ScopedEnv>(knob, *value));
    }
}

}  // namespace zeltest
