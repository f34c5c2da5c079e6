// Environment and child processes on Windows. The system's header stays in this file: its types
// would clash with the library's.
#include <windows.h>

#include <cstdlib>
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

bool RunningUnderWine() {
    HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll && GetProcAddress(ntdll, "wine_get_version");
}

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

// Windows has no fork: a test that needs a copy of its own process runs on POSIX only.
int RunInChild(const std::function<int()>&) { return -1; }

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
