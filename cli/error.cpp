// zel error: the text of an error code, as a client gets it for the thread's current error.
#include <zel/frame.h>

#include <cstdio>

#include "commands.h"
#include "numbers.h"
#include "report.h"
#include "text.h"

const char kErrorUsage[] =
    "Usage: zel error CODE\n\n"
    "Sets CODE (0 to 0xFFFFFFFF, decimal or hexadecimal with 0x) as the current error and prints\n"
    "its text in the user's language (ZEL_LCID, or the suite's own setting). Codes of the\n"
    "library: 1 to 15; 0x8007xxxx are system errors, 0x4000xxxx run-time errors.\n";

int RunError(const Args& args) {
    if (args.size() != 1) return Misuse("one CODE is taken");
    long long code = 0;
    std::string problem;
    if (!ParseNumber("the code", args[0], 0, 0xFFFFFFFF, NumberBase::kDecimalOrHex, code, problem)) return Misuse(problem);
    ZelSetError(static_cast<DWORD>(code));
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    if (!detail.text[0]) return Fail("no text for " + Hex(static_cast<unsigned long>(code)));
    printf("%s\n", ToUtf8(detail.text).c_str());
    return 0;
}
