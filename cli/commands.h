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
    const char* usage;  // what zel NAME --help prints, and a misuse after its one line
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

// Their usage texts.
extern const char kDemoUsage[];
extern const char kModulesUsage[];
extern const char kUtfUsage[];
extern const char kBase64Usage[];
extern const char kHexUsage[];
extern const char kKanaUsage[];
extern const char kWidthUsage[];
extern const char kBidiUsage[];
extern const char kShapeUsage[];
extern const char kPathUsage[];
extern const char kSysUsage[];
extern const char kConvUsage[];
extern const char kCodeTablesUsage[];
extern const char kKCharUsage[];
extern const char kSortKeyUsage[];
extern const char kJamoUsage[];
extern const char kPuaUsage[];
extern const char kRegUsage[];
extern const char kIniUsage[];
extern const char kProfileUsage[];
extern const char kPathsUsage[];
extern const char kErrorUsage[];
extern const char kLocaleUsage[];
extern const char kDefinedUsage[];

// zel --version.
int ShowVersion();

// Every subcommand, in the order zel --help lists them.
const std::vector<Command>& Commands();

#endif  // ZEL_CLI_COMMANDS_H
