// zel paths: the paths that the library registered at its start, in table order.
#include <zel/paths.h>

#include <cstdio>
#include <string>

#include "commands.h"
#include "report.h"
#include "text.h"

const char kPathsUsage[] =
    "Usage: zel paths\n\n"
    "The paths registered when the library starts, in table order, as NAME=VALUE:\n"
    "the directories of the program and the library, shared data, temporary files\n"
    "(TMP, then TEMP), user data, and the language extensions.\n";

namespace {

// The defaults in the order of registration, which is the order ${...} values are matched in.
constexpr const WCHAR* kDefaultNames[] = {u"App",      u"Common",      u"Zel",    u"SharedData", u"Temp",
                                          u"UserData", u"AllUserData", u"SysExt", u"ResExt",     u"DsoExt"};

}  // namespace

int RunPaths(const Args& args) {
    if (!args.empty()) return Misuse("no arguments are taken");
    for (const WCHAR* name : kDefaultNames) {
        if (!ZelIsRegisterPath(name)) continue;
        WCHAR value[MAX_PATH];
        ZelPathToAbsolute((std::u16string(u"${") + name + u"}").c_str(), value);
        printf("%s=%s\n", ToUtf8(name).c_str(), ToUtf8(value).c_str());
    }
    return 0;
}
