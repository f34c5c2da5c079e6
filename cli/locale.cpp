// zel locale: the language that the library chose for this user and what follows from it.
#include <zel/frame.h>
#include <zel/paths.h>

#include <cstdio>

#include "commands.h"
#include "report.h"
#include "text.h"

const char kLocaleUsage[] =
    "Usage: zel locale\n\n"
    "The user's language id and code page (the suite's setting, else the system's\n"
    "language; the code page only when set), the extension of the library's resource\n"
    "file, the system language's extension, and the layout direction.\n";

int RunLocale(const Args& args) {
    if (!args.empty()) return Misuse("no arguments are taken");
    WCHAR resourceExt[MAX_PATH] = {};
    ZelGetResourceExt(0xFFFF, resourceExt);
    WCHAR systemExt[MAX_PATH] = {};
    ZelPathToAbsolute(u"${SysExt}", systemExt);
    printf("language %s\ncode-page %u\nresource-ext %s\nsystem-ext %s\nlayout %s\n", Hex(ZelGetUserLCID()).c_str(),
           ZelGetUserCP(), ToUtf8(resourceExt).c_str(), ToUtf8(systemExt).c_str(),
           ZelLayoutIsR2L() ? "right-to-left" : "left-to-right");
    return 0;
}
