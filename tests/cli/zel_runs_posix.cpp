// The runs of zel that need POSIX: through the shell, with resource limits, killed at a moment.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "cli/zel_runs.h"

extern char** environ;

namespace zelcli {

namespace {

// zel refuses a misuse before it reads its standard input, so a test that hands it input may
// find the pipe closed: the write fails and the test goes on, rather than end by SIGPIPE.
[[maybe_unused]] const bool pipeSignalIgnored = (signal(SIGPIPE, SIG_IGN), true);

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

}  // namespace

zeltest::ProgramResult ZelInShell(const std::string& shellPrefix, const std::vector<std::string>& args,
                                  const std::string& shellSuffix) {
    std::string line = shellPrefix + " " + Quoted(ZEL_TEST_ZEL_PATH);
    for (const std::string& arg : args) line += " " + Quoted(arg);
    return zeltest::RunProgram("/bin/sh", {"-c", line + " " + shellSuffix});
}

void ZelKilledAfter(const std::vector<std::string>& args, long microseconds) {
    std::vector<std::string> all = {ZEL_TEST_ZEL_PATH};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& arg : all) argv.push_back(arg.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, all[0].c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) return;
    usleep(static_cast<useconds_t>(microseconds));
    kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
}

std::map<std::string, std::string> Snapshot(const std::string& directory) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        struct stat st {};
        if (!entry.is_regular_file() || stat(entry.path().c_str(), &st) != 0) continue;
        files[entry.path().string()] = std::to_string(st.st_ino) + " " + std::to_string(st.st_size) + " " +
                                       std::to_string(st.st_mtim.tv_sec) + "." + std::to_string(st.st_mtim.tv_nsec);
    }
    return files;
}

}  // namespace zelcli
