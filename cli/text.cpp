#include "text.h"

#include <cstdio>

std::string ToUtf8(const WCHAR* text) {
    std::string out;
    if (!text) return out;
    for (size_t i = 0; text[i]; ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

std::u16string FromUtf8(const std::string& text) {
    std::u16string out;
    for (size_t i = 0; i < text.size();) {
        unsigned char b = static_cast<unsigned char>(text[i]);
        int extra = b < 0x80 ? 0 : b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : -1;
        char32_t c = extra == 0 ? b : extra == 1 ? (b & 0x1F) : extra == 2 ? (b & 0x0F) : (b & 0x07);
        bool ok = extra >= 0 && i + static_cast<size_t>(extra) < text.size() + (extra == 0 ? 1 : 0);
        for (int k = 1; ok && k <= extra; ++k) {
            unsigned char t = static_cast<unsigned char>(text[i + static_cast<size_t>(k)]);
            ok = (t & 0xC0) == 0x80;
            c = (c << 6) | (t & 0x3F);
        }
        if (!ok || c > 0x10FFFF) {
            out += u'\uFFFD';
            ++i;
            continue;
        }
        i += static_cast<size_t>(extra) + 1;
        if (c >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(c);
        }
    }
    return out;
}

std::string Hex(unsigned long value) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "0x%lX", value);
    return buffer;
}
