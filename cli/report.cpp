#include "report.h"

#include <cstdio>

namespace {
const Command* running = nullptr;

const char* Name() { return running ? running->name : ""; }
}  // namespace

void SetRunningCommand(const Command* command) { running = command; }

int Fail(const std::string& message) {
    fflush(stdout);
    fprintf(stderr, "zel%s%s: %s\n", running ? " " : "", Name(), message.c_str());
    return kExitFailed;
}

int Misuse(const std::string& problem) {
    fflush(stdout);
    fprintf(stderr, "zel%s%s: %s\n\n%s", running ? " " : "", Name(), problem.c_str(), running ? running->usage : "");
    return kExitMisuse;
}

int ShowUsage() {
    fputs(running ? running->usage : "", stdout);
    return kExitDone;
}

int ActionMisuse(const Args& args, std::initializer_list<const char*> actions) {
    if (args.empty()) return Misuse("no action given");
    for (const char* action : actions)
        if (args[0] == action) return Misuse("wrong number of arguments for " + args[0]);
    return Misuse("unknown action '" + args[0] + "'");
}
