// zel: the command line face of ZelBL70KT.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "report.h"
#include "system.h"

namespace {

constexpr char kUsage[] =
    "Usage: zel <command> [arguments]\n"
    "       zel --help | --version\n\n"
    "Commands:\n";

constexpr char kExitStatus[] =
    "\nzel <command> --help tells more of a command.\n\n"
    "Exit status: 0 done; 1 failed or refused (a message on standard error says why); 2 misused\n"
    "(a line on standard error says what was wrong, then the usage).\n";

void Help(FILE* out) {
    fputs(kUsage, out);
    for (const Command& command : Commands()) fprintf(out, "  %-10s %s\n", command.name, command.summary);
    fputs(kExitStatus, out);
}

bool IsHelp(const char* arg) { return !strcmp(arg, "--help") || !strcmp(arg, "-h"); }

// What the command wrote to standard output must have gone out: a full disk or a closed pipe is
// a failure too.
int Finish(int status) {
    if (fflush(stdout) != 0 || ferror(stdout)) {
        const int error = errno;
        Fail(std::string("cannot write standard output: ") + strerror(error));
        return kExitFailed;
    }
    return status;
}

}  // namespace

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"demo", "run the bundled samples through the library's services", RunDemo, kDemoUsage},
        {"modules", "list the module table of this process", RunModules, kModulesUsage},
        {"utf", "convert between UTF-8, UTF-16 and UTF-32", RunUtf, kUtfUsage},
        {"base64", "Base64 of bytes, and back", RunBase64, kBase64Usage},
        {"hex", "the \"U+\" form of text, and /uXXXX escapes", RunHex, kHexUsage},
        {"kana", "Kana to full or half width, to Hiragana or Katakana", RunKana, kKanaUsage},
        {"width", "exchange half-width and full-width characters", RunWidth, kWidthUsage},
        {"bidi", "a line of mixed-direction text in display order, with its levels", RunBidi, kBidiUsage},
        {"shape", "a line with Arabic presentation forms, in display order", RunShape, kShapeUsage},
        {"path", "${Name} macros, path transforms and temporary names", RunPath, kPathUsage},
        {"sys", "the system's version, constants, arguments, times and volumes", RunSys, kSysUsage},
        {"conv", "convert text between code pages and UTF-8", RunConv, kConvUsage},
        {"codetables", "the code table files found and the state of each group", RunCodeTables, kCodeTablesUsage},
        {"kchar", "text to KChar units and back", RunKChar, kKCharUsage},
        {"sortkey", "the sort keys of Hangul text, and lines sorted by them", RunSortKey, kSortKeyUsage},
        {"jamo", "a Hangul syllable into its Jamo and back", RunJamo, kJamoUsage},
        {"pua", "text to and from the plane 15 form of its Yi and private-use characters", RunPua, kPuaUsage},
        {"reg", "keys and values of the system registry, and registry files", RunReg, kRegUsage},
        {"ini", "sections and values of UTF-16 INI files", RunIni, kIniUsage},
        {"profile", "values of 8-bit INI files through the profile calls", RunProfile, kProfileUsage},
        {"paths", "the registered paths, in table order", RunPaths, kPathsUsage},
        {"error", "the text of an error code in the user's language", RunError, kErrorUsage},
        {"locale", "the user's language, code page, resource extensions and layout direction", RunLocale,
         kLocaleUsage},
        {"defined", "whether a symbol is defined for this installation (1 or 0)", RunDefined, kDefinedUsage},
    };
    return commands;
}

int main(int argc, char** argv) {
    KeepRunningOverFileSizeLimit();
    const std::vector<std::string> all = StartCommand(argc, argv);
    if (all.size() < 2) {
        fputs("zel: no command given\n\n", stderr);
        Help(stderr);
        return kExitMisuse;
    }
    const std::string& name = all[1];
    if (IsHelp(name.c_str()) || name == "help") {
        if (all.size() > 2) return fputs("zel: --help stands alone\n\n", stderr), Help(stderr), kExitMisuse;
        Help(stdout);
        return Finish(kExitDone);
    }
    if (name == "--version") {
        if (all.size() > 2) return fputs("zel: --version stands alone\n\n", stderr), Help(stderr), kExitMisuse;
        return Finish(ShowVersion());
    }
    for (const Command& command : Commands()) {
        if (name != command.name) continue;
        SetRunningCommand(&command);
        const Args args(all.begin() + 2, all.end());
        if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) return Finish(ShowUsage());
        for (const std::string& arg : args)
            if (arg == "--help") return Misuse("--help stands alone: zel " + std::string(command.name) + " --help");
        return Finish(command.run(args));
    }
    fprintf(stderr, "zel: unknown command '%s' (see zel --help)\n", name.c_str());
    return kExitMisuse;
}
