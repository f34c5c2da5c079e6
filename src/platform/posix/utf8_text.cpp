// UTF-8 toward the system: names on disk and text on standard error.
#include "platform/win32.h"

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
