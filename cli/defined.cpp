// zel defined: whether a symbol is defined for this installation, application or language.
#include <zel/frame.h>

#include <cstdio>

#include "commands.h"
#include "report.h"
#include "text.h"

const char kDefinedUsage[] =
    "Usage: zel defined NAME\n\n"
    "Prints 1 and exits with 0 when NAME is defined (a value name below the\n"
    "SymbolDefine key, for all applications or this one, or a name of the language's\n"
    "resource file); prints 0 and exits with 1 otherwise. Case counts.\n";

int RunDefined(const Args& args) {
    if (args.size() != 1) return Misuse("one NAME is taken");
    const BOOL defined = ZelIsDefined(FromUtf8(args[0]).c_str());
    printf("%d\n", defined ? 1 : 0);
    return defined ? 0 : 1;
}
