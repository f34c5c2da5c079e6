// zel error: the text of an error code, as a client gets it for the thread's current error.
#include <zel/frame.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {

int Usage(int status) {
    printf("Usage: zel error CODE\n\nSets CODE (decimal, or hexadecimal with 0x) as the current error and prints its\n"
           "text in the user's language (ZEL_LCID, or the suite's own setting). Codes of the\n"
           "library: 1 to 15; 0x8007xxxx are system errors, 0x4000xxxx run-time errors.\n");
    return status;
}

}  // namespace

int RunError(const Args& args) {
    if (WantsHelp(args)) return Usage(0);
    if (args.size() != 1 || args[0].empty()) return Usage(2);
    char* end = nullptr;
    errno = 0;
    const unsigned long long code = strtoull(args[0].c_str(), &end, 0);
    if (*end || errno || code > 0xFFFFFFFFULL || args[0][0] == '-') {
        fprintf(stderr, "zel error: '%s' is no 32-bit code\n", args[0].c_str());
        return 2;
    }
    ZelSetError(static_cast<DWORD>(code));
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    if (!detail.text[0]) {
        fprintf(stderr, "zel error: no text for %s\n", Hex(static_cast<unsigned long>(code)).c_str());
        return 1;
    }
    printf("%s\n", ToUtf8(detail.text).c_str());
    return 0;
}
