// zel: the command line face of ZelBL70KT.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

int Help() {
    printf("Usage: zel <command> [arguments]\n\nCommands:\n");
    for (const Command& command : Commands()) printf("  %-10s %s\n", command.name, command.summary);
    printf("\nzel <command> --help tells more of a command.\n");
    return 0;
}

}  // namespace

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"demo", "run the bundled samples through the library's services", RunDemo},
        {"modules", "list the module table of this process", RunModules},
        {"utf", "convert between UTF-8, UTF-16 and UTF-32", RunUtf},
        {"base64", "Base64 of bytes, and back", RunBase64},
        {"hex", "the \"U+\" form of text, and /uXXXX escapes", RunHex},
        {"kana", "Kana to full or half width, to Hiragana or Katakana", RunKana},
        {"width", "exchange half-width and full-width characters", RunWidth},
        {"bidi", "a line of mixed-direction text in display order, with its levels", RunBidi},
        {"shape", "a line with Arabic presentation forms, in display order", RunShape},
        {"path", "${Name} macros, path transforms and temporary names", RunPath},
        {"sys", "the system's version, constants, arguments, times and volumes", RunSys},
        {"conv", "convert text between code pages and UTF-8", RunConv},
        {"codetables", "the code table files found and the state of each group", RunCodeTables},
        {"kchar", "text to KChar units and back", RunKChar},
        {"sortkey", "the sort keys of Hangul text, and lines sorted by them", RunSortKey},
        {"jamo", "a Hangul syllable into its Jamo and back", RunJamo},
        {"pua", "text to and from the plane 15 form of its Yi and private-use characters", RunPua},
        {"reg", "keys and values of the system registry, and registry files", RunReg},
        {"ini", "sections and values of UTF-16 INI files", RunIni},
        {"profile", "values of 8-bit INI files through the profile calls", RunProfile},
        {"paths", "the registered paths, in table order", RunPaths},
        {"error", "the text of an error code in the user's language", RunError},
        {"locale", "the user's language, code page, resource extensions and layout direction", RunLocale},
        {"defined", "whether a symbol is defined for this installation (1 or 0)", RunDefined},
    };
    return commands;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        Help();
        return 2;
    }
    if (!strcmp(argv[1], "--help") || !strcmp(argv[1], "-h") || !strcmp(argv[1], "help")) return Help();
    for (const Command& command : Commands())
        if (!strcmp(argv[1], command.name)) return command.run(Args(argv + 2, argv + argc));
    fprintf(stderr, "zel: unknown command '%s' (see zel --help)\n", argv[1]);
    return 2;
}
