// Environment and child processes on Windows. The system's header stays in this file: its types
// would clash with the library's.
#include <windows.h>

#include <gtest/gtest.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

#include "support/support.h"
#include "support/system.h"

namespace zeltest {
namespace {

std::wstring Wide(const std::string& text) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), int(text.size()), nullptr, 0);
    std::wstring wide(size_t(size > 0 ? size : 0), L'\0');
    if (size > 0) MultiByteToWideChar(CP_UTF8, 0, text.data(), int(text.size()), wide.data(), size);
    return wide;
}

std::string Utf8(const std::wstring& text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), int(text.size()), nullptr, 0, nullptr, nullptr);
    std::string bytes(size_t(size > 0 ? size : 0), '\0');
    if (size > 0) WideCharToMultiByte(CP_UTF8, 0, text.data(), int(text.size()), bytes.data(), size, nullptr, nullptr);
    return bytes;
}

// One argument as the run-time splits a command line back: quoted, with backslashes doubled
// before a quote and at the end.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring out = L"\"";
    size_t backslashes = 0;
    for (wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        out.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        backslashes = 0;
        out += c;
    }
    out.append(2 * backslashes, L'\\');
    return out + L"\"";
}

// The process's environment with the changes, as the block CreateProcessW takes: sorted, each
// entry ended by a null, the block by another.
std::wstring EnvironmentBlock(const std::map<std::string, std::optional<std::string>>& changes) {
    std::map<std::wstring, std::wstring> merged;
    if (wchar_t* block = GetEnvironmentStringsW()) {
        for (const wchar_t* entry = block; *entry; entry += wcslen(entry) + 1) {
            const std::wstring text = entry;
            const size_t eq = text.find(L'=', 1);
            if (eq != std::wstring::npos) merged[text.substr(0, eq)] = text.substr(eq + 1);
        }
        FreeEnvironmentStringsW(block);
    }
    for (const auto& [name, value] : changes) {
        if (value)
            merged[Wide(name)] = Wide(*value);
        else
            merged.erase(Wide(name));
    }
    std::wstring block;
    for (const auto& [name, value] : merged) block += name + L"=" + value + L'\0';
    return block + L'\0';
}

void ReadAll(HANDLE pipe, std::string* into) {
    char buffer[4096];
    DWORD n = 0;
    while (::ReadFile(pipe, buffer, sizeof buffer, &n, nullptr) && n > 0) into->append(buffer, n);
    CloseHandle(pipe);
}

}  // namespace

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
    // An empty value removes the variable from the run-time's copy, as a missing one.
    _putenv_s(name.c_str(), value ? value->c_str() : "");
    SetEnvironmentVariableW(Wide(name).c_str(), value ? Wide(*value).c_str() : nullptr);
}

std::string OwnProgramPath() {
    wchar_t path[32768];
    const DWORD length = GetModuleFileNameW(nullptr, path, 32768);
    return Utf8(std::wstring(path, length));
}

bool SetFileTimes(const std::string& path, std::int64_t accessSeconds, std::int64_t writeSeconds,
                  long writeNanoseconds) {
    // 100-nanosecond units since 1601.
    auto fileTime = [](std::int64_t seconds, long nanoseconds) {
        const std::uint64_t units = std::uint64_t(seconds) * 10000000u + 116444736000000000u + nanoseconds / 100;
        return FILETIME{DWORD(units), DWORD(units >> 32)};
    };
    HANDLE file = CreateFileW(Wide(path).c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const FILETIME access = fileTime(accessSeconds, 0), write = fileTime(writeSeconds, writeNanoseconds);
    const BOOL done = SetFileTime(file, nullptr, &access, &write);
    CloseHandle(file);
    return done;
}

// Windows has no fork: the test program runs the current test again in a new process, and there
// the n-th call runs its body and ends the process with the body's result. The calls before it
// answer what they answered here, so the test takes the same road up to that call.
// ZEL_TEST_CHILD is "n:result,result,...".
int RunInChild(const std::function<int()>& body) {
    static constexpr char kChild[] = "ZEL_TEST_CHILD";
    static std::string test;
    static std::vector<int> results;
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = info ? std::string(info->test_suite_name()) + "." + info->name() : std::string();
    if (name != test) {
        test = name;
        results.clear();
    }
    if (const char* child = getenv(kChild)) {
        std::istringstream calls(child);
        size_t wanted = 0;
        char separator = 0;
        calls >> wanted >> separator;
        std::vector<int> earlier;
        for (int result; calls >> result; calls >> separator) earlier.push_back(result);
        const size_t call = results.size() + 1;
        if (call == wanted) {
            const int code = body();
            fflush(nullptr);
            _exit(code);
        }
        const int answer = call <= earlier.size() ? earlier[call - 1] : -1;
        results.push_back(answer);
        return answer;
    }
    std::string calls = std::to_string(results.size() + 1) + ":";
    for (int result : results) calls += std::to_string(result) + ",";
    const ProgramResult run = RunProgram(OwnProgramPath(), {"--gtest_filter=" + name}, {{kChild, calls}});
    fputs(run.out.c_str(), stdout);
    fputs(run.err.c_str(), stderr);
    // A process ended by an exception has the exception's code, which reads as negative.
    const int status = run.status < 0 ? -1 : run.status;
    results.push_back(status);
    return status;
}

namespace {

constexpr char kTempDirs[] = "ZEL_TEST_DIRS";  // "suite.test|path|path..."

std::string CurrentTest() {
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    return info ? std::string(info->test_suite_name()) + "." + info->name() : std::string();
}

}  // namespace

void NoteTempDirForReruns(const std::string& path) {
    const std::string test = CurrentTest();
    if (test.empty() || getenv("ZEL_TEST_CHILD")) return;
    const char* noted = getenv(kTempDirs);
    std::string list = noted ? noted : "";
    if (list.compare(0, test.size() + 1, test + "|") != 0) list = test;
    SetEnvironment(kTempDirs, list + "|" + path);
}

std::optional<std::string> TempDirOfFirstRun() {
    static size_t taken = 0;  // a rerun runs one test
    const std::string test = CurrentTest();
    const char* noted = getenv(kTempDirs);
    if (test.empty() || !getenv("ZEL_TEST_CHILD") || !noted) return std::nullopt;
    std::vector<std::string> fields;
    std::istringstream list(noted);
    for (std::string field; std::getline(list, field, '|');) fields.push_back(field);
    if (fields.empty() || fields[0] != test || taken + 1 >= fields.size()) return std::nullopt;
    return fields[++taken];
}

// A 95-family system is a copy of the program that Wine reports as one (the build makes the copy,
// the emulator's prefix names it): Windows itself never reports that family.
std::string ProgramForRerun(const std::map<std::string, std::optional<std::string>>& env, std::string* whyNot) {
    std::string program = OwnProgramPath();
    const auto version = env.find("ZEL_OS_VERSION");
    if (version != env.end() && version->second && version->second->rfind("1.", 0) == 0) {
        if (!RunningUnderWine()) {
            *whyNot = "only Wine can report a 95-family system";
            return {};
        }
        program.insert(program.size() - 4, "_95");  // before ".exe"
        if (!std::filesystem::exists(std::filesystem::u8path(program))) {
            *whyNot = "no 95-family copy " + program;
            return {};
        }
    }
    for (const char* knob : {"ZEL_ACP", "ZEL_OEMCP", "ZEL_LCID", "ZEL_SYSTEM_LCID"}) {
        const auto wanted = env.find(knob);
        if (wanted != env.end() && wanted->second && !LocaleSettingIs(knob, *wanted->second)) {
            *whyNot = std::string(knob) + " " + *wanted->second + " is the locale of another run";
            return {};
        }
    }
    return program;
}

bool LocaleFixedPerProcess() { return true; }

bool LocaleSettingIs(const std::string& knob, const std::string& value) {
    unsigned long current = 0;
    if (knob == "ZEL_ACP") current = GetACP();
    if (knob == "ZEL_OEMCP") current = GetOEMCP();
    if (knob == "ZEL_LCID") current = GetUserDefaultLCID();
    if (knob == "ZEL_SYSTEM_LCID") current = GetSystemDefaultLCID();
    return current == std::stoul(value, nullptr, 0);
}

namespace {
constexpr char kPrivateRegistry[] = "ZEL_TEST_REGISTRY";
bool ownsPrivateRegistry = false;
}  // namespace

void UsePrivateRegistry() {
    std::string name;
    if (const char* shared = getenv(kPrivateRegistry)) {
        name = shared;
    } else {
        name = "Software\\ZelTestRuns\\" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount64());
        SetEnvironment(kPrivateRegistry, name);
        ownsPrivateRegistry = true;
    }
    // Both keys are made before either root is redirected, each with a lasting Software key as
    // every system has: a volatile key made first would otherwise make it volatile too.
    HKEY keys[2] = {};
    const wchar_t* parts[2] = {L"\\user", L"\\machine"};
    for (int i = 0; i < 2; ++i) {
        const std::wstring root = Wide(name) + parts[i];
        HKEY software = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, (root + L"\\Software").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &software, nullptr) == ERROR_SUCCESS)
            RegCloseKey(software);
        RegCreateKeyExW(HKEY_CURRENT_USER, root.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &keys[i], nullptr);
    }
    // The keys stay open for the process's life: Wine keeps the handle itself rather than a copy.
    const HKEY roots[2] = {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE};
    for (int i = 0; i < 2; ++i)
        if (keys[i]) RegOverridePredefKey(roots[i], keys[i]);
}

void RemovePrivateRegistry() {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) RegOverridePredefKey(root, nullptr);
    if (ownsPrivateRegistry) RegDeleteTreeW(HKEY_CURRENT_USER, Wide(getenv(kPrivateRegistry)).c_str());
}

bool HoldBackupRight() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token)) return false;
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    BOOL held = LookupPrivilegeValueW(nullptr, L"SeBackupPrivilege", &privileges.Privileges[0].Luid) &&
                AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
    // The call succeeds also when it could not enable the right, and says so only here.
    held = held && GetLastError() == ERROR_SUCCESS;
    CloseHandle(token);
    return held;
}

void EndOnCrash() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* exception) -> LONG {
        const DWORD code = exception->ExceptionRecord->ExceptionCode;
        fprintf(stderr, "unhandled exception 0x%08lX at %p\n", static_cast<unsigned long>(code),
                exception->ExceptionRecord->ExceptionAddress);
        fflush(stderr);
        TerminateProcess(GetCurrentProcess(), code);
        return EXCEPTION_EXECUTE_HANDLER;
    });
}

bool DescriptorIsOpen(int fd) { return _get_osfhandle(fd) != -1; }

bool RunningUnderWine() {
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll && GetProcAddress(ntdll, "wine_get_version");
}

ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& args,
                         const std::map<std::string, std::optional<std::string>>& env,
                         const std::string& stdinText) {
    ProgramResult result;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE inRead, inWrite, outRead, outWrite, errRead, errWrite;
    if (!CreatePipe(&inRead, &inWrite, &inherit, 0)) return result;
    CreatePipe(&outRead, &outWrite, &inherit, 0);
    CreatePipe(&errRead, &errWrite, &inherit, 0);
    for (HANDLE ours : {inWrite, outRead, errRead}) SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);

    std::wstring line = Quoted(Wide(path));
    for (const std::string& arg : args) line += L" " + Quoted(Wide(arg));
    std::wstring block = EnvironmentBlock(env);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = inRead;
    start.hStdOutput = outWrite;
    start.hStdError = errWrite;
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessW(Wide(path).c_str(), line.data(), nullptr, nullptr, TRUE,
                                        CREATE_UNICODE_ENVIRONMENT, block.data(), nullptr, &start, &process);
    for (HANDLE theirs : {inRead, outWrite, errWrite}) CloseHandle(theirs);
    std::thread out(ReadAll, outRead, &result.out), err(ReadAll, errRead, &result.err);
    if (started) {
        DWORD written = 0;
        if (!stdinText.empty()) ::WriteFile(inWrite, stdinText.data(), DWORD(stdinText.size()), &written, nullptr);
    }
    CloseHandle(inWrite);
    out.join();
    err.join();
    if (!started) return result;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    result.status = int(code);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return result;
}

}  // namespace zeltest
