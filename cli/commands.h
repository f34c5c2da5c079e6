// The subcommands of zel. Each takes the arguments after its name and returns the exit status.
#ifndef ZEL_CLI_COMMANDS_H
#define ZEL_CLI_COMMANDS_H

#include <string>
#include <vector>

using Args = std::vector<std::string>;

struct Command {
    const char* name;
    const char* summary;
    int (*run)(const Args& args);
};

int RunDemo(const Args& args);
int RunModules(const Args& args);
int RunUtf(const Args& args);
int RunBase64(const Args& args);
int RunHex(const Args& args);
int RunKana(const Args& args);
int RunWidth(const Args& args);
int RunBidi(const Args& args);
int RunShape(const Args& args);
int RunPath(const Args& args);
int RunSys(const Args& args);
int RunConv(const Args& args);
int RunCodeTables(const Args& args);
int RunKChar(const Args& args);
int RunSortKey(const Args& args);
int RunJamo(const Args& args);
int RunPua(const Args& args);
int RunReg(const Args& args);
int RunIni(const Args& args);
int RunProfile(const Args& args);
int RunPaths(const Args& args);
int RunError(const Args& args);
int RunLocale(const Args& args);
int RunDefined(const Args& args);

// Every subcommand, in the order zel --help lists them.
const std::vector<Command>& Commands();

#endif  // ZEL_CLI_COMMANDS_H
