// MultiByteToWideChar and WideCharToMultiByte on iconv, with the Win32 counting rules, and the
// ANSI and OEM code pages of the system's language.
//
// The conversions themselves are in codepage_decode.cpp and codepage_encode.cpp; this file checks
// the arguments, counts and reports.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/nls/codepage_convert.h"
#include "platform/posix/nls/codepage_names.h"
#include "platform/win32.h"
#include "strings/wstr.h"

using zelcp::ByteSink;
using zelcp::Decode;
using zelcp::DefaultChar;
using zelcp::Encode;
using zelcp::WideSink;

namespace {

// ---------------------------------------------------------------------------------------------
// Arguments

const ZelCodePage* Resolve(UINT codePage) {
    switch (codePage) {
    case CP_ACP:
    case CP_THREAD_ACP:
        codePage = GetACP();
        break;
    case CP_OEMCP:
        codePage = GetOEMCP();
        break;
    case CP_MACCP:
        codePage = 10000;
        break;
    default:
        break;
    }
    return ZelFindCodePage(codePage);
}

bool IsUnicode(const ZelCodePage& page) { return page.kind != ZelCodePageKind::Iconv; }

bool Overlaps(const void* a, size_t aSize, const void* b, size_t bSize) {
    auto x = reinterpret_cast<uintptr_t>(a);
    auto y = reinterpret_cast<uintptr_t>(b);
    return x < y + bSize && y < x + aSize;
}

int Fail(DWORD error) {
    SetLastError(error);
    return 0;
}

// A code page from the environment: decimal, and one that the conversions know.
UINT CodePageFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || !*value) return 0;
    char* end = nullptr;
    unsigned long number = std::strtoul(value, &end, 10);
    if (*end || number > UINT_MAX || !ZelFindCodePage(static_cast<UINT>(number))) return 0;
    return static_cast<UINT>(number);
}

// The ANSI code page that Windows gives a system of this language.
UINT LanguageAnsiCodePage(LANGID language) {
    switch (PRIMARYLANGID(language)) {
    case LANG_KOREAN:
        return 949;
    case LANG_JAPANESE:
        return 932;
    case LANG_CHINESE:
        switch (SUBLANGID(language)) {
        case 0x01:  // Taiwan
        case 0x03:  // Hong Kong
        case 0x05:  // Macao
            return 950;
        default:  // PRC, Singapore
            return 936;
        }
    default:
        return 1252;
    }
}

}  // namespace

UINT GetACP() {
    if (UINT fromEnvironment = CodePageFromEnvironment("ZEL_ACP")) return fromEnvironment;
    return LanguageAnsiCodePage(LANGIDFROMLCID(GetSystemDefaultLCID()));
}

UINT GetOEMCP() {
    if (UINT fromEnvironment = CodePageFromEnvironment("ZEL_OEMCP")) return fromEnvironment;
    UINT ansi = LanguageAnsiCodePage(LANGIDFROMLCID(GetSystemDefaultLCID()));
    return ansi == 1252 ? 437 : ansi;  // the East Asian systems use one code page for both
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByte, int multiByteCount, LPWSTR wide,
                        int wideCount) {
    if (!multiByte || multiByteCount == 0 || wideCount < 0 || (wideCount > 0 && !wide))
        return Fail(ERROR_INVALID_PARAMETER);
    const ZelCodePage* page = Resolve(codePage);
    if (!page) return Fail(ERROR_INVALID_PARAMETER);

    constexpr DWORD known = MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS;
    DWORD allowed = known;
    if (page->kind == ZelCodePageKind::Utf7)
        allowed = 0;
    else if (IsUnicode(*page))
        allowed = MB_ERR_INVALID_CHARS;
    if ((flags & ~allowed) || ((flags & MB_PRECOMPOSED) && (flags & MB_COMPOSITE)))
        return Fail(ERROR_INVALID_FLAGS);

    // Any negative length, not only -1, stands for a terminated text, as on Windows.
    size_t length = multiByteCount >= 0 ? static_cast<size_t>(multiByteCount) : std::strlen(multiByte) + 1;
    if (length > static_cast<size_t>(INT_MAX)) return Fail(ERROR_INVALID_PARAMETER);
    if (wideCount > 0 && Overlaps(multiByte, length, wide, static_cast<size_t>(wideCount) * sizeof(WCHAR)))
        return Fail(ERROR_INVALID_PARAMETER);

    WideSink sink{wideCount > 0 ? wide : nullptr, static_cast<size_t>(wideCount)};
    if (DWORD error = Decode(*page, multiByte, length, (flags & MB_ERR_INVALID_CHARS) != 0, sink))
        return Fail(error);
    if (sink.count > static_cast<size_t>(INT_MAX)) return Fail(ERROR_ARITHMETIC_OVERFLOW);
    return static_cast<int>(sink.count);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR multiByte,
                        int multiByteCount, LPCSTR defaultChar, LPBOOL usedDefaultChar) {
    if (!wide || wideCount == 0 || multiByteCount < 0 || (multiByteCount > 0 && !multiByte))
        return Fail(ERROR_INVALID_PARAMETER);
    const ZelCodePage* page = Resolve(codePage);
    if (!page) return Fail(ERROR_INVALID_PARAMETER);
    // UTF-7 and UTF-8 have no default character: every character has a form.
    if (IsUnicode(*page) && (defaultChar || usedDefaultChar)) return Fail(ERROR_INVALID_PARAMETER);

    constexpr DWORD known = WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR | WC_ERR_INVALID_CHARS |
                            WC_NO_BEST_FIT_CHARS;
    // Strictness about lone surrogates is for UTF-8 and GB18030 alone.
    DWORD allowed = known & ~DWORD{WC_ERR_INVALID_CHARS};
    if (page->kind == ZelCodePageKind::Utf7)
        allowed = 0;
    else if (IsUnicode(*page))
        allowed = WC_ERR_INVALID_CHARS;
    else if (page->codePage == 54936)
        allowed |= WC_ERR_INVALID_CHARS;
    if (flags & ~allowed) return Fail(ERROR_INVALID_FLAGS);

    size_t length = wideCount >= 0 ? static_cast<size_t>(wideCount) : wcslen(wide) + 1;  // any negative: terminated
    if (length > static_cast<size_t>(INT_MAX)) return Fail(ERROR_INVALID_PARAMETER);
    if (multiByteCount > 0 &&
        Overlaps(wide, length * sizeof(WCHAR), multiByte, static_cast<size_t>(multiByteCount)))
        return Fail(ERROR_INVALID_PARAMETER);

    DefaultChar fallback{{'?', 0}, 1};
    if (defaultChar) {
        fallback.bytes[0] = defaultChar[0];
        // A lead byte and its trail in a double-byte code page.
        if (page->doubleByte && static_cast<unsigned char>(defaultChar[0]) >= 0x80 && defaultChar[1]) {
            fallback.bytes[1] = defaultChar[1];
            fallback.length = 2;
        }
    }

    ByteSink sink{multiByteCount > 0 ? multiByte : nullptr, static_cast<size_t>(multiByteCount)};
    if (DWORD error = Encode(*page, wide, length, (flags & WC_ERR_INVALID_CHARS) != 0, fallback, sink))
        return Fail(error);
    if (sink.count > static_cast<size_t>(INT_MAX)) return Fail(ERROR_ARITHMETIC_OVERFLOW);
    if (usedDefaultChar) *usedDefaultChar = fallback.used ? TRUE : FALSE;
    return static_cast<int>(sink.count);
}
