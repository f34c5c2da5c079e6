// Text toward the system, through its own conversions: the ANSI code page for the A calls, and
// UTF-8 for names on disk and text on standard error.
#include <cstring>

#include "platform/win32.h"
#include "strings/wstr.h"

ZelAnsiArg ZelPlatformAnsiToWide(LPCSTR text, UINT codePage) {
    ZelAnsiArg result;
    if (!text) return result;
    result.null = false;
    // No byte of any code page gives more than one 16-bit unit.
    size_t length = std::strlen(text);
    result.text.resize(length + 1);
    int n = MultiByteToWideChar(codePage, 0, text, static_cast<int>(length + 1), result.text.data(),
                                static_cast<int>(length + 1));
    result.text.resize(n > 0 ? static_cast<size_t>(n) - 1 : 0);
    return result;
}

std::string ZelPlatformWideToAnsi(LPCWSTR text, UINT codePage) {
    if (!text) return {};
    int length = static_cast<int>(wcslen(text)) + 1;
    int size = WideCharToMultiByte(codePage, 0, text, length, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(codePage, 0, text, length, result.data(), size, nullptr, nullptr);
    result.resize(static_cast<size_t>(size) - 1);
    return result;
}

std::string ZelPlatformWideToUtf8(const std::u16string& text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string out(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, out.data(), size, nullptr, nullptr);
    return out;
}

std::u16string ZelPlatformUtf8ToWide(const std::string& text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    if (size <= 0) return {};
    std::u16string out(static_cast<size_t>(size), u'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, out.data(), size);
    return out;
}
