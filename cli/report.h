// How zel reports: help to standard output, misuse and failures to standard error, each with the
// name of the running subcommand. Exit status 0 done, 1 failed or refused, 2 misused.
#ifndef ZEL_CLI_REPORT_H
#define ZEL_CLI_REPORT_H

#include <initializer_list>
#include <string>

#include "commands.h"

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitMisuse = 2;

// The subcommand that runs; its name prefixes every message and its usage follows a misuse.
void SetRunningCommand(const Command* command);

// "zel NAME: message" on standard error; gives kExitFailed.
int Fail(const std::string& message);

// "zel NAME: problem", then the subcommand's usage, on standard error; gives kExitMisuse.
int Misuse(const std::string& problem);

// The misuse of a subcommand with actions: no action, an unknown one, or a known one with the
// wrong number of arguments.
int ActionMisuse(const Args& args, std::initializer_list<const char*> actions);

// The subcommand's usage on standard output; gives kExitDone.
int ShowUsage();

#endif  // ZEL_CLI_REPORT_H
