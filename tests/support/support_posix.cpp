// Environment and child processes on POSIX.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/support.h"
#include "support/system.h"

extern char** environ;

namespace zeltest {

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
    if (value)
        setenv(name.c_str(), value->c_str(), 1);
    else
        unsetenv(name.c_str());
}

std::string OwnProgramPath() { return "/proc/self/exe"; }

bool SetFileTimes(const std::string& path, std::int64_t accessSeconds, std::int64_t writeSeconds,
                  long writeNanoseconds) {
    const struct timespec times[2] = {{accessSeconds, 0}, {writeSeconds, writeNanoseconds}};
    return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

std::string ProgramForRerun(const std::map<std::string, std::optional<std::string>>&, std::string*) {
    return OwnProgramPath();
}

// A forked child has the directories of its parent.
void NoteTempDirForReruns(const std::string&) {}
std::optional<std::string> TempDirOfFirstRun() { return std::nullopt; }

// The layer reads its knobs at every call.
bool LocaleFixedPerProcess() { return false; }
bool LocaleSettingIs(const std::string&, const std::string&) { return true; }
bool RunningUnderWine() { return false; }
bool HoldBackupRight() { return true; }
bool DescriptorIsOpen(int fd) { return fcntl(fd, F_GETFD) != -1; }
void UsePrivateRegistry() {}
void RemovePrivateRegistry() {}
void EndOnCrash() {}  // a signal ends the process with a failing status already

int RunInChild(const std::function<int()>& body) {
    fflush(nullptr);
    pid_t pid = fork();
    if (pid < 0) return -1;
    if (pid == 0) {
        int code = body();
        fflush(nullptr);
        _exit(code);
    }
    int status = 0;
    if (waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& args,
                         const std::map<std::string, std::optional<std::string>>& env,
                         const std::string& stdinText) {
    std::map<std::string, std::string> merged;
    for (char** e = environ; *e; ++e) {
        std::string entry = *e;
        auto eq = entry.find('=');
        if (eq != std::string::npos) merged[entry.substr(0, eq)] = entry.substr(eq + 1);
    }
    for (const auto& [name, value] : env) {
        if (value)
            merged[name] = *value;
        else
            merged.erase(name);
    }
    std::vector<std::string> envStrings;
    for (const auto& [name, value] : merged) envStrings.push_back(name + "=" + value);
    std::vector<char*> envp;
    for (auto& s : envStrings) envp.push_back(s.data());
    envp.push_back(nullptr);
    std::vector<std::string> argStrings{path};
    argStrings.insert(argStrings.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& s : argStrings) argv.push_back(s.data());
    argv.push_back(nullptr);

    int in[2], out[2], err[2];
    if (pipe2(in, O_CLOEXEC) || pipe2(out, O_CLOEXEC) || pipe2(err, O_CLOEXEC)) return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    pid_t pid = -1;
    int rc = posix_spawn(&pid, path.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    close(err[1]);
    ProgramResult result;
    if (rc != 0) {
        close(in[1]);
        close(out[0]);
        close(err[0]);
        return result;
    }
    size_t written = 0;
    if (stdinText.empty()) {
        close(in[1]);
        in[1] = -1;
    }
    pollfd fds[3] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}, {in[1], POLLOUT, 0}};
    int open = 2;
    while (open > 0 || fds[2].fd >= 0) {
        if (poll(fds, 3, -1) < 0) break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd >= 0 && (fds[i].revents & (POLLIN | POLLHUP))) {
                char buffer[4096];
                ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
                if (n <= 0) {
                    close(fds[i].fd);
                    fds[i].fd = -1;
                    --open;
                } else {
                    (i == 0 ? result.out : result.err).append(buffer, static_cast<size_t>(n));
                }
            }
        }
        if (fds[2].fd >= 0 && (fds[2].revents & (POLLOUT | POLLERR | POLLHUP))) {
            ssize_t n = write(fds[2].fd, stdinText.data() + written, stdinText.size() - written);
            if (n > 0) written += static_cast<size_t>(n);
            if (n <= 0 || written == stdinText.size()) {
                close(fds[2].fd);
                fds[2].fd = -1;
            }
        }
    }
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

}  // namespace zeltest
