// Debug output: standard error, when ZEL_DEBUG asks for it.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/win32.h"

void OutputDebugStringA(LPCSTR text) {
    const char* debug = getenv("ZEL_DEBUG");
    if (!text || !debug || !*debug || strcmp(debug, "0") == 0) return;
    fputs(text, stderr);
    fflush(stderr);
}
