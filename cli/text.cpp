#include "text.h"

#include <zel/frame.h>
#include <zel/platform.h>
#include <zel/strings.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

std::string ToUtf8(const WCHAR* text) {
    if (!text) return {};
    size_t length = 0;
    while (text[length]) ++length;
    std::string out(length * 3, '\0');
    const ZelUTF16* source = text;
    auto* target = reinterpret_cast<ZelUTF8*>(out.data());
    ZelConvertUTF16toUTF8(&source, text + length, &target, target + out.size(), ZelConvLenient);
    out.resize(static_cast<size_t>(target - reinterpret_cast<ZelUTF8*>(out.data())));
    return out;
}

std::u16string FromUtf8(const std::string& text) {
    std::u16string out(text.size(), u'\0');
    const auto* source = reinterpret_cast<const ZelUTF8*>(text.data());
    const ZelUTF8* end = source + text.size();
    ZelUTF16* target = out.data();
    // A malformed sequence stops the converter: it stands for one U+FFFD, and the rest goes on.
    while (ZelConvertUTF8toUTF16(&source, end, &target, out.data() + out.size(), ZelConvLenient) !=
           ZelConvOk) {
        if (source >= end) break;
        *target++ = u'\uFFFD';
        ++source;
    }
    out.resize(static_cast<size_t>(target - out.data()));
    return out;
}

std::string Hex(unsigned long value) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "0x%lX", value);
    return buffer;
}

std::string SystemErrorText(LONG code) {
    ZelErrorInfo saved;
    ZelStoreError(&saved);
    ZelSetError((static_cast<DWORD>(code) & 0xFFFF) | 0x80070000);
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    ZelRestoreError(&saved);
    std::string text = ToUtf8(detail.text);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r' || text.back() == '\n')) text.pop_back();
    return text.empty() ? "error " + std::to_string(code) : text;
}

// The last error that the library's platform calls set on this thread, in the system's words;
// where they set none, the system's error number that they leave behind.
std::string LastErrorText() {
    const DWORD code = GetLastError();
    if (code) return SystemErrorText(static_cast<LONG>(code));
    return errno ? strerror(errno) : "no reason given";
}
