// Debug output and message boxes. There are no windows here: a box is its caption and text on
// standard error, or whatever the host's handler makes of them.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include <zel/host.h>

#include "platform/win32.h"

namespace {

std::mutex handlerLock;
ZelMessageBoxHandler handler = nullptr;
void* handlerContext = nullptr;

}  // namespace

ZEL_API void ZelSetMessageBoxHandler(ZelMessageBoxHandler newHandler, void* context) {
    std::lock_guard<std::mutex> guard(handlerLock);
    handler = newHandler;
    handlerContext = context;
}

void OutputDebugStringA(LPCSTR text) {
    const char* debug = getenv("ZEL_DEBUG");
    if (!text || !debug || !*debug || strcmp(debug, "0") == 0) return;
    fputs(text, stderr);
    fflush(stderr);
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
    ZelMessageBoxHandler current;
    void* context;
    {
        std::lock_guard<std::mutex> guard(handlerLock);
        current = handler;
        context = handlerContext;
    }
    // A box without a caption is captioned "Error", as Win32 does.
    static const WCHAR defaultCaption[] = u"Error";
    if (!caption) caption = defaultCaption;
    if (!text) text = u"";
    if (current) return current(text, caption, style, context);
    fprintf(stderr, "%s: %s\n", ZelPlatformWideToUtf8(caption).c_str(), ZelPlatformWideToUtf8(text).c_str());
    fflush(stderr);
    return IDOK;
}

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
    return MessageBoxW(owner, ZelPlatformAnsiToWide(text).get(), ZelPlatformAnsiToWide(caption).get(), style);
}
