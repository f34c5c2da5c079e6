// Running zel as its users do, for the suites of the command: with a time limit, a file size
// limit, or killed at a chosen moment; and the files of a directory, to see what a run changed.
#ifndef ZEL_TESTS_CLI_ZEL_RUNS_H
#define ZEL_TESTS_CLI_ZEL_RUNS_H

#include <map>
#include <string>
#include <vector>

#include "support/support.h"

namespace zelcli {

// zel with args and standard input, ended when it runs past seconds: then, or when it dies of a
// signal, the status is not 0, 1 or 2.
zeltest::ProgramResult Zel(const std::vector<std::string>& args, const std::string& input = {}, int seconds = 30);

// The runs below need POSIX (zel_runs_posix.cpp).

// The same through the shell: shellPrefix goes in front of zel ("exec", "ulimit -f 8; exec"),
// shellSuffix behind its arguments (a redirection).
zeltest::ProgramResult ZelInShell(const std::string& shellPrefix, const std::vector<std::string>& args,
                                  const std::string& shellSuffix = {});

// Starts zel with args, kills it after microseconds and waits for it.
void ZelKilledAfter(const std::vector<std::string>& args, long microseconds);

// Every file below directory with what tells a change of it: its inode, size and time of change.
std::map<std::string, std::string> Snapshot(const std::string& directory);

}  // namespace zelcli

#endif  // ZEL_TESTS_CLI_ZEL_RUNS_H
