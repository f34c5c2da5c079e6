// Message boxes: the host's handler answers them, or without one the caption and text go to
// standard error and the box answers IDOK, on every system, so that no box waits for a user who
// isn't there.
#include <cstdio>
#include <mutex>

#include <zel/host.h>

#include "platform/process_object.h"
#include "platform/win32.h"

namespace {

constinit ZelProcessObjectLock handlerLock;
ZelMessageBoxHandler handler = nullptr;
void* handlerContext = nullptr;

}  // namespace

ZEL_API void ZelSetMessageBoxHandler(ZelMessageBoxHandler newHandler, void* context) {
    std::lock_guard<ZelProcessObjectLock> guard(handlerLock);
    handler = newHandler;
    handlerContext = context;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
    ZelMessageBoxHandler current;
    void* context;
    {
        std::lock_guard<ZelProcessObjectLock> guard(handlerLock);
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
