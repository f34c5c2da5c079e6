// zel modules: the module table as a client walks it.
#include <zel/frame.h>

#include <cstdio>

#include "commands.h"
#include "text.h"

int RunModules(const Args& args) {
    if (!args.empty()) {
        printf("Usage: zel modules\n\nLists the records in the module table of this process: slot, module id, name\n"
               "and flags. Only the library's own record is there unless a module registers.\n");
        return args[0] == "--help" ? 0 : 2;
    }
    for (int position = ZelGetFirstModule(); position != 0;) {
        const int slot = position - 1;
        ZelModuleDef* module = ZelGetNextModule(&position);
        printf("slot %2d  id %3d  flags %s  %s\n", slot, module->moduleId, Hex(module->flags).c_str(),
               ToUtf8(module->name).c_str());
    }
    return 0;
}
