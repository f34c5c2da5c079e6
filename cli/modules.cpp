// zel modules: the module table as a client walks it.
#include <zel/frame.h>

#include <cstdio>

#include "commands.h"
#include "report.h"
#include "text.h"

const char kModulesUsage[] =
    "Usage: zel modules\n\n"
    "Lists the records in the module table of this process: slot, module id, name\n"
    "and flags. Only the library's own record is there unless a module registers.\n";

int RunModules(const Args& args) {
    if (!args.empty()) return Misuse("no arguments are taken");
    for (int position = ZelGetFirstModule(); position != 0;) {
        const int slot = position - 1;
        ZelModuleDef* module = ZelGetNextModule(&position);
        printf("slot %2d  id %3d  flags %s  %s\n", slot, module->moduleId, Hex(module->flags).c_str(),
               ToUtf8(module->name).c_str());
    }
    return 0;
}
