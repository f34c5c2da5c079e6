// ShellExecute: an executable file runs with its parameters, anything else that exists, and any
// URL, goes to the desktop's opener when the system has one. The program is started through an
// intermediate child that exits at once, so that no zombie is left and nothing waits for it.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace {

HINSTANCE ShellResult(INT_PTR code) { return reinterpret_cast<HINSTANCE>(code); }

constexpr INT_PTR kStarted = 33;
constexpr DWORD kErrorNoAssociation = 1155;  // ERROR_NO_ASSOCIATION

bool EqualsIgnoringCase(LPCWSTR text, const char16_t* lowerWord) {
    for (; *text && *lowerWord; ++text, ++lowerWord) {
        char16_t c = *text;
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
        if (c != *lowerWord) return false;
    }
    return !*text && !*lowerWord;
}

// A scheme of two letters or more ("http:", "mailto:"), so that a drive "c:" is not one.
bool IsUrl(const std::u16string& file) {
    const size_t colon = file.find(u':');
    if (colon == std::u16string::npos || colon < 2) return false;
    for (size_t i = 0; i < colon; ++i) {
        const char16_t c = file[i];
        const bool letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
        if (!letter && !(i > 0 && ((c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.'))) return false;
    }
    return true;
}

bool IsExecutableFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string SearchPath(const std::string& name) {
    const char* path = getenv("PATH");
    std::string list = path ? path : "/usr/local/bin:/usr/bin:/bin";
    for (size_t start = 0; start <= list.size();) {
        size_t end = list.find(':', start);
        if (end == std::string::npos) end = list.size();
        const std::string directory = end > start ? list.substr(start, end - start) : ".";
        const std::string candidate = directory + "/" + name;
        if (IsExecutableFile(candidate)) return candidate;
        start = end + 1;
    }
    return {};
}

// The file that a name means: beside the given directory first, then as it stands, then a bare
// name on the search path.
std::string Locate(const std::string& file, const std::string& directory) {
    struct stat status;
    if (file[0] != '/' && !directory.empty() && stat((directory + "/" + file).c_str(), &status) == 0)
        return directory + "/" + file;
    if (stat(file.c_str(), &status) == 0) return file;
    if (file.find('/') == std::string::npos) return SearchPath(file);
    return {};
}

std::vector<std::string> SplitParameters(LPCWSTR parameters) {
    std::vector<std::string> arguments;
    if (!parameters || !*parameters) return arguments;
    // The split rules treat the first token as a program name: put one in front.
    const std::u16string line = u"program " + std::u16string(parameters);
    int count = 0;
    LPWSTR* split = CommandLineToArgvW(line.c_str(), &count);
    if (!split) return arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(ZelPlatformWideToUtf8(split[i]));
    LocalFree(split);
    return arguments;
}

INT_PTR ShellErrorOf(int error) {
    switch (error) {
        case ENOENT: return SE_ERR_FNF;
        case ENOTDIR: return SE_ERR_PNF;
        case EACCES:
        case EPERM: return SE_ERR_ACCESSDENIED;
        case ENOMEM: return SE_ERR_OOM;
        default: return SE_ERR_NOASSOC;
    }
}

// Starts program with arguments in directory and doesn't wait for it. The grandchild reports a
// failed exec through a pipe that closes by itself when the exec succeeds.
INT_PTR Start(const std::string& program, const std::vector<std::string>& arguments, const std::string& directory) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    // A file without a known binary form runs as a shell script, as the shell itself does.
    std::vector<char*> shellArgv{const_cast<char*>("/bin/sh"), const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) shellArgv.push_back(const_cast<char*>(argument.c_str()));
    shellArgv.push_back(nullptr);

    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) return SE_ERR_OOM;
    const pid_t middle = fork();
    if (middle < 0) {
        close(report[0]);
        close(report[1]);
        return SE_ERR_OOM;
    }
    if (middle == 0) {
        close(report[0]);
        if (fork() == 0) {
            setsid();
            int error = 0;
            if (!directory.empty() && chdir(directory.c_str()) != 0) {
                error = errno;
            } else {
                execv(argv[0], argv.data());
                error = errno;
                if (error == ENOEXEC) {
                    execv(shellArgv[0], shellArgv.data());
                    error = errno;
                }
            }
            ssize_t ignored = write(report[1], &error, sizeof error);
            (void)ignored;
            _exit(127);
        }
        _exit(0);
    }
    close(report[1]);
    int status = 0;
    while (waitpid(middle, &status, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t got;
    while ((got = read(report[0], &error, sizeof error)) < 0 && errno == EINTR) {
    }
    close(report[0]);
    if (got == static_cast<ssize_t>(sizeof error)) return ShellErrorOf(error);
    return kStarted;
}

INT_PTR OpenWithDesktop(const std::string& target, const std::string& directory) {
    const std::string opener = SearchPath("xdg-open");
    if (opener.empty()) return SE_ERR_NOASSOC;
    return Start(opener, {target}, directory);
}

INT_PTR Execute(LPCWSTR operation, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory) {
    const bool open = !operation || !*operation || EqualsIgnoringCase(operation, u"open");
    const bool explore = operation && EqualsIgnoringCase(operation, u"explore");
    if (!file || !*file) return SE_ERR_FNF;
    const std::string workDirectory = directory && *directory ? ZelPlatformPathToSystem(directory) : std::string();
    struct stat status;
    if (!workDirectory.empty() && (stat(workDirectory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)))
        return SE_ERR_PNF;
    if (IsUrl(file)) return open ? OpenWithDesktop(ZelPlatformWideToUtf8(file), workDirectory) : SE_ERR_NOASSOC;
    // The file is looked for before the verb: a missing file is missing whatever was asked of it.
    const std::string path = Locate(ZelPlatformPathToSystem(file), workDirectory);
    if (path.empty() || stat(path.c_str(), &status) != 0) return SE_ERR_FNF;
    if (!open && !explore) return SE_ERR_NOASSOC;
    if (explore) return S_ISDIR(status.st_mode) ? OpenWithDesktop(path, workDirectory) : SE_ERR_NOASSOC;
    if (IsExecutableFile(path)) {
        // The program's own name must hold a slash, or exec would not find a relative one.
        const std::string program = path.find('/') == std::string::npos ? "./" + path : path;
        return Start(program, SplitParameters(parameters), workDirectory);
    }
    return OpenWithDesktop(path, workDirectory);
}

}  // namespace

HINSTANCE ShellExecuteW(HWND, LPCWSTR operation, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory, int) {
    const INT_PTR result = Execute(operation, file, parameters, directory);
    if (result <= 32) {
        SetLastError(result == SE_ERR_FNF                ? ERROR_FILE_NOT_FOUND
                     : result == SE_ERR_PNF              ? ERROR_PATH_NOT_FOUND
                     : result == SE_ERR_ACCESSDENIED     ? ERROR_ACCESS_DENIED
                     : result == SE_ERR_OOM              ? ERROR_NOT_ENOUGH_MEMORY
                                                         : kErrorNoAssociation);
    }
    return ShellResult(result);
}

HINSTANCE ShellExecuteA(HWND owner, LPCSTR operation, LPCSTR file, LPCSTR parameters, LPCSTR directory, int show) {
    return ShellExecuteW(owner, ZelPlatformAnsiToWide(operation).get(), ZelPlatformAnsiToWide(file).get(),
                         ZelPlatformAnsiToWide(parameters).get(), ZelPlatformAnsiToWide(directory).get(), show);
}
